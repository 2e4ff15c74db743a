// The factors between degrees and radians.  The values differ on purpose:
// each stage keeps the value that its results were defined with (a
// single-precision value kept in double, or a decimal of a given length),
// so each has its own name, and none may be replaced by another or by the
// exact value of pi / 180.
#pragma once

namespace lf {

// Degrees to radians as the single-precision value the data were made with:
// the start angles of slack buses (flat start, current-equation Jacobian,
// models).
constexpr double kDegToRadSingle = 0.0174532925239284;
// Degrees to radians in the DC converter equations (firing and extinction
// angles).
constexpr double kDegToRadDc = 0.017453292520882225;

// A full turn in degrees: the bus angles of the report files fold into
// -360 .. 360.
constexpr double kFullTurnDeg = 360.0;

// Radians to degrees, the short decimal 57.2957795: the bus angles of the
// report files and of the model output.
constexpr double kRadToDegShort = 57.2957795;
// Radians to degrees as the single-precision 57.29578: the angles written to
// the database.
constexpr double kRadToDegSingle = 57.295780181884766;
// Radians to degrees in the DC converter equations (the firing angle found
// from its cosine).
constexpr double kRadToDegDc = 57.29577951;

// Pi and its parts to the lengths that the two angle routines of the
// user-defined model blocks were written with.  The angle of a phasor in
// 0 .. 2 pi (packing phasors into one signal):
constexpr double kPiPhasor = 3.1415926535;
constexpr double kTwoPiPhasor = 6.283185307;
constexpr double kHalfPiPhasor = 1.57079632675;
constexpr double kThreeHalfPiPhasor = 4.71238898025;
// The angle of a point in -pi .. pi (the ANGL block):
constexpr double kPiPoint = 3.14159265;
constexpr double kHalfPiPoint = 1.570796327;

}  // namespace lf
