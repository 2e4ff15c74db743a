#include "udmodel/lfudot.hpp"

#include "engine/store.hpp"

namespace lf {

void LFUDOTRec::grow(std::size_t n) {
  for (Arr<double>* a : {&UDPINJ, &UDQINJ, &UDGINJ, &UDBINJ}) a->grow(n);
}

namespace {
LFUDOTRec sized_lfudot() {
  LFUDOTRec r;
  r.grow(kCapBus);
  return r;
}
}  // namespace

LFUDOTRec LFUDOT = sized_lfudot();

}  // namespace lf
