#include "store/lfudot.hpp"

#include "store/store.hpp"

namespace lf {

void LFUDOTRec::grow(std::size_t n) {
  for (Arr<double>* a : {&UDPINJ, &UDQINJ, &UDGINJ, &UDBINJ}) a->grow(n);
}

LFUDOTRec LFUDOT = sized<LFUDOTRec>(kCapBus);

}  // namespace lf
