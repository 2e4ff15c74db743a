#include "store/lfudot.hpp"

#include "store/store.hpp"

namespace lf {

void LFUDOTRec::grow(std::size_t n) {
  for (Arr<double>* a : {&UDPINJ, &UDQINJ, &UDGINJ, &UDBINJ, &UDOVAL}) a->grow(n);
  for (Arr<int32_t>* a : {&UDOTYP, &UDOLOC1, &UDOLOC2}) a->grow(n);
}

LFUDOTRec LFUDOT = sized<LFUDOTRec>(kCapBus);
double UDWORK = 100;

}  // namespace lf
