#include "casefile/check/casecheck.hpp"

#include "casefile/check/family.hpp"
#include "casefile/check/rules.hpp"
#include "casefile/check/topology.hpp"

namespace lf::check {

std::vector<std::string> check_case(const std::string& stem, const std::string& dat_stem) {
  Warnings w;
  const Family f = read_family(stem, dat_stem, w);
  check_counts(f, w);
  check_records(f, w);
  check_topology(f, w);
  return w;
}

}  // namespace lf::check
