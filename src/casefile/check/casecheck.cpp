#include "casefile/check/casecheck.hpp"

#include "casefile/check/family.hpp"
#include "casefile/check/rules.hpp"
#include "casefile/check/topology.hpp"

namespace lf::check {

std::vector<std::string> check_case(const std::string& stem, const std::string& dat_stem) {
  Family f;
  return check_case(stem, dat_stem, f);
}

std::vector<std::string> check_case(const std::string& stem, const std::string& dat_stem,
                                    Family& f) {
  Warnings w;
  f = read_family(stem, dat_stem, w);
  check_counts(f, w);
  check_records(f, w);
  check_topology(f, w);
  return w;
}

}  // namespace lf::check
