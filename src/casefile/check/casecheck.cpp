#include "casefile/check/casecheck.hpp"

#include "casefile/check/encoding.hpp"
#include "casefile/check/family.hpp"
#include "casefile/check/rules.hpp"
#include "casefile/check/topology.hpp"

namespace lf::check {

std::vector<std::string> check_case(const std::string& stem, const std::string& dat_stem) {
  Warnings w;
  for (const char* ext : {".L0", ".L1", ".L2", ".L3", ".NL4", ".L5", ".L6", ".L7", ".L10", ".L13"})
    check_encoding(stem + ext, w);
  const Family f = read_family(stem, dat_stem, w);
  if (f.dat.present) check_encoding(f.dat.name, w);
  check_counts(f, w);
  check_records(f, w);
  check_topology(f, w);
  return w;
}

}  // namespace lf::check
