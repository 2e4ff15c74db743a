#include "casefile/sequence.hpp"

#include <cstdint>

#include "casefile/checks.hpp"
#include "casefile/indexcheck.hpp"
#include "store/store.hpp"

namespace lf {

void read_case(CaseSource& source) {
  source.control();
  clamp_counts();
  if (source.ok() && LFINF.nbus > 0) source.buses();
  // Until the branches are read the two counts are those of the control
  // record and may each be as large as an int holds: test them one by one.
  if (source.ok() && (LFINF.nacline > 0 || LFINF.ntrans > 0)) source.branches();
  if (source.ok() && LFINF.ndcline > 0) source.dc_lines();
  if (source.ok() && LFINF.ngenerat > 0) source.generators();
  if (source.ok() && LFINF.nload > 0) source.loads();
  if (source.ok() && LFINF.narea > 0) source.areas();
  if (source.ok() && LF93.ctrl_fact > 0) {
    source.factors();
    if (source.ok() && LF93.ctrl_fact > 0) chpq();
  }
  if (source.ok() && LF93.ctrl_sub > 0) source.switches();
  int32_t flag = 0;
  if (source.ok() && LFINF.nload > 0) isrlib(flag);
  if (source.ok() && flag > 0) source.load_library();
  if (source.ok() && LFINF.nload > 0) check_load_types(source.load_origin());
  NO.nbranch = source.ok() ? LFINF.nacline + LFINF.ntrans : 0;
  NO.ndc = LFINF.ndcline;
}

}  // namespace lf
