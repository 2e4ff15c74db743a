// The files of the model output: their units and names.
#pragma once

#include <string>

#include "support/units.hpp"

namespace lf {

constexpr int kSampleUnit = 70;      // LFUDOUT.DDD, open from udopio to udclio
constexpr int kTempUnit = 8;         // the short-lived files
constexpr int kFirstTableUnit = 71;  // FL1.DAT, FL2.DAT, ...
constexpr const char* kSampleFile = "LFUDOUT.DDD";

// Makes a file new: an old one of that name is deleted first.
void make_new(int unit, const std::string& path, FileForm form);

}  // namespace lf
