// The DC line report files: .nP4, the full operating point with base and
// per-unit data, and .LP4, the compact form.
#pragma once

#include "store/store.hpp"

namespace lf {

void nwlp4(const CaseName& casename);
void wlp4_new(const CaseName& casename);

}  // namespace lf
