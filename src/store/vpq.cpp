#include "store/vpq.hpp"

#include "store/store.hpp"

namespace lf {

void VPQRec::grow(std::size_t n) {
  for (Arr<double>* a : {&V, &TH, &E, &F, &PG, &QG, &PL, &QL, &PDC, &QDC}) a->grow(n);
}

void GLPRec::grow(std::size_t n) {
  IGEN.grow(n);
  ILOAD.grow(n);
}

VPQRec VPQ = sized<VPQRec>(kCapBus);
GLPRec GLP = sized<GLPRec>(kCapBus);

}  // namespace lf
