// Record by record: what the engine would take differently from what the
// files seem to say.  Each rule adds its warnings in the order of the files.
#pragma once

#include "casefile/check/family.hpp"

namespace lf::check {

// Counts of .L0 against the records the files hold, files the counts leave
// unread, and optional files the counts name but which are missing.
void check_counts(const Family& f, Warnings& w);

// Bus numbers outside the case, branches without impedance or with negative
// resistance, limits the wrong way round, load types without a parameter set.
void check_records(const Family& f, Warnings& w);

}  // namespace lf::check
