// Quick conversion of the plain numbers of text files, without copies and
// without the C library for the common short forms.
//
// Both functions read a number at the start of [first, last) and give the
// end of what they took, or nullptr when the text there is not of the plain
// form or needs the full conversion; then nothing is written and the caller
// converts the slow way.  A number they do take has exactly the value strtod
// (std::from_chars) gives the same characters.
#pragma once

#include <cstdint>

namespace lf {

// The letters that may start an exponent: e and E only, or D and d as well
// (the case files write double-precision exponents that way).
enum class Exponents { E, EorD };

// An optional sign, digits with at most one point among them (at least one
// digit), and optionally an exponent letter, an optional sign and digits.
// Taken when its significant digits form an integer of at most 2^53 and its
// power of ten is within 10^-22..10^22: one exact operation on two exact
// doubles, so correctly rounded.  A zero is taken with any short exponent.
const char* quick_real(const char* first, const char* last, double& value,
                       Exponents exponents = Exponents::E);

// An optional sign and digits; nullptr also when the value does not fit in
// 32 bits.
const char* quick_int(const char* first, const char* last, int32_t& value);

}  // namespace lf
