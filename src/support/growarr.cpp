#include "support/growarr.hpp"

#include "support/stop.hpp"

namespace lf {

int32_t dadd = 100;

void setdadd(int32_t step) {
  if (step > 0) dadd = step;
}

void getdadd(int32_t& step) {
  step = dadd;
}

void alloc_failed() {
  stop_run("Fail to allocate memory!");
}

}  // namespace lf
