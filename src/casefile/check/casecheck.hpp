// The case checker: reads a case family strictly, as the engine's readers
// would take it, and tells in plain lines what the engine would pass over in
// silence: unreadable fields, counts that differ from the records, bus
// numbers outside the case, a missing slack bus, islands and lone buses,
// branches without impedance, limits the wrong way round, load types without
// a parameter set, byte-order marks and other encodings.  It changes nothing:
// the engine still reads the case as it always does.
#pragma once

#include <string>
#include <vector>

#include "casefile/check/family.hpp"

namespace lf::check {

// The warnings about the case at stem (its path without extension) with the
// load library dat_stem.DAT, one line each; none for a sound case.
std::vector<std::string> check_case(const std::string& stem, const std::string& dat_stem);
// The same, and the case family as read is left in `read` for the caller.
std::vector<std::string> check_case(const std::string& stem, const std::string& dat_stem,
                                    Family& read);

}  // namespace lf::check
