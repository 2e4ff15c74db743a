// Numbers of the case data that index the network store are checked where
// they enter.  A bus number outside 1..nbus or a load type beyond the
// parameter library would make later stages read or write outside their
// arrays, so such a number stops the calculation with a text that names its
// source (a case file or a table), the record and the value.
#pragma once

#include <cstdint>
#include <string_view>

namespace lf {

// Stops unless 1 <= value <= top; `what` names the value ("bus number").
// `source` names the file or table, `record` counts its records from 1,
// dropped ones included.
void check_range(int32_t value, int32_t top, std::string_view what, std::string_view source,
                 int32_t record);

// Stops unless 1 <= bus <= nbus of LFINF.
void check_bus(int32_t bus, std::string_view source, int32_t record);

// Stops when one of the nload loads names a parameter set (type 2 and above)
// beyond the room of ABCLC; run after the library is read.
void check_load_types(std::string_view source);

}  // namespace lf
