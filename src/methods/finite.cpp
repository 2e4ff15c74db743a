#include "methods/finite.hpp"

#include <algorithm>
#include <cmath>
#include <string>

#include "io/channels.hpp"
#include "methods/iteration.hpp"
#include "store/store.hpp"
#include "store/vpq.hpp"

namespace lf {

int32_t nonfinite_at(int32_t n, const Arr<double>& d) {
  for (int32_t i = 1; i <= n; ++i)
    if (!std::isfinite(d[i])) return i;
  return 0;
}

int32_t nonfinite_at(int32_t n, const Arr<double>& a, const Arr<double>& b) {
  for (int32_t i = 1; i <= n; ++i)
    if (!std::isfinite(a[i]) || !std::isfinite(b[i])) return i;
  return 0;
}

void BusState::save(int32_t n) {
  const auto size = static_cast<std::size_t>(std::max(n, 0));
  for (Arr<double>* a : {&V, &TH, &E, &F}) a->grow(size);
  std::copy_n(VPQ.V.data() + 1, n, V.data() + 1);
  std::copy_n(VPQ.TH.data() + 1, n, TH.data() + 1);
  std::copy_n(VPQ.E.data() + 1, n, E.data() + 1);
  std::copy_n(VPQ.F.data() + 1, n, F.data() + 1);
}

void BusState::restore(int32_t n) const {
  std::copy_n(V.data() + 1, n, VPQ.V.data() + 1);
  std::copy_n(TH.data() + 1, n, VPQ.TH.data() + 1);
  std::copy_n(E.data() + 1, n, VPQ.E.data() + 1);
  std::copy_n(F.data() + 1, n, VPQ.F.data() + 1);
}

void say_nonfinite(std::string_view what, int32_t bus) {
  std::string name = bus_label(bus, NO.nnode).trimmed();
  name.erase(0, name.find_first_not_of(' '));
  if (name.empty()) name = "number " + std::to_string(bus);
  wstring("Divergence: non-finite " + std::string(what) + " at bus " + name);
}

}  // namespace lf
