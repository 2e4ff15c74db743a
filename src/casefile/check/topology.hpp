// The network the case describes: a slack bus, islands that have none (or
// not even a source), and buses without any line or transformer in
// service, which the engine leaves out of the solution without a word.
// Substation switching is not followed: a split bus counts as one.
#pragma once

#include "casefile/check/family.hpp"

namespace lf::check {

void check_topology(const Family& f, Warnings& w);

}  // namespace lf::check
