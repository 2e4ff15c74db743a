#include "sparse/ymatrix.hpp"

#include "engine/store.hpp"

namespace lf {

void YRec::grow(std::size_t n, std::size_t ne) {
  IY.grow(n + 1);
  YG.grow(ne);
  YB.grow(ne);
  JY.grow(ne);
  LKROW.grow(ne);
  LKNEXT.grow(ne);
}

namespace {
YRec make_y() {
  YRec y;
  y.grow(kCapBus, kCapYEntries);
  return y;
}
}  // namespace

YRec Y = make_y();
Arr<int32_t> NEW(kCapBus);
Arr<int32_t> IOU(kCapBus);

}  // namespace lf
