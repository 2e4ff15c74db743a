// Checking and standardising a freshly read case, whichever source it came
// from: bus voltage limits, the fold of the extended bus type codes, the
// shared-bus flag of the loads, scaling by the factor records of L10 and the
// default static load parameter set.
#pragma once

#include <cstdint>

#include "store/store.hpp"

namespace lf {

// Repairs the per-unit voltage limits of bus i with the case defaults vmax
// and vmin of LFINF: no base voltage, a limit at or near zero, or limits
// the wrong way round give the defaults.
void repair_bus_limits(int32_t i);

// Without user-defined models the extended bus type codes fold into the
// plain ones: -4 and -6 become -1 (P and V given); -5, -7, -8 become 1.
void fold_mode_ctrl(int32_t& mode_ctrl);

// A negative element count of the case header reads as none, so that no
// stage takes a count whose file or table was never read for rows.
void clamp_counts();

// Sets loadshare of LF93 to 1 when two of the nload loads stand on one bus,
// else to 0.
void set_loadshare();

// Scales generators (by area, voltage level or name) and loads (by area
// only) with the first factor record of L10 that fits.
void chpq();

// The standard voltage level (0, 10, 35, 110, ... 1000 kV) of a voltage.
void vstand(double kv, int32_t& level);

// The run of non-blank characters that ends a 20-character name; 0 when
// the name ends in a blank.
void lcha(const BusName& name, int32_t& length);

// Sets up parameter set 1 of ABCLC (constant power) when there are loads;
// flag becomes 1 when some load names a set above 1, so that the library
// has to be read.
void isrlib(int32_t& flag);

}  // namespace lf
