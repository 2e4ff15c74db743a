// Connectivity of small graphs given as edge lists: the incidence structure
// and a breadth-first walk over the edges that are in service.
#include <algorithm>

#include "netprep/netprep.hpp"
#include "support/growarr.hpp"

namespace lf {

void eqno12(int32_t m, int32_t n, const Arr<int32_t>& I, const Arr<int32_t>& J, Arr<int32_t>& ends,
            Arr<int32_t>& start, Arr<int32_t>& list) {
  int32_t two_m = 2 * m;
  redim(ends, two_m);
  redim(list, two_m);
  redim(start, n + 1);
  for (int32_t k = 1; k <= m; ++k) {
    ends[k] = I[k];
    ends[two_m + 1 - k] = J[k];
  }
  // Counts, then pointers one behind each node's segment, which the fill
  // moves back to the segment's start.
  for (int32_t v = 1; v <= n + 1; ++v) start[v] = 0;
  for (int32_t p = 1; p <= two_m; ++p) ++start[ends[p]];
  int32_t sum = 1;
  for (int32_t v = 1; v <= n; ++v) {
    sum += start[v];
    start[v] = sum;
  }
  start[n + 1] = two_m + 1;
  for (int32_t p = two_m; p >= 1; --p) list[--start[ends[p]]] = p;
}

void eqno4(int32_t n, int32_t m, const Arr<int32_t>& ends, const Arr<int32_t>& state,
           const Arr<int32_t>& start, const Arr<int32_t>& list, int32_t from, Arr<int32_t>& reached,
           int32_t& count) {
  std::vector<char> seen(static_cast<std::size_t>(n) + 1, 0);
  redim(reached, n);
  count = 0;
  reached[++count] = from;
  seen[static_cast<std::size_t>(from)] = 1;
  for (int32_t head = 1; head <= count; ++head) {
    int32_t v = reached[head];
    for (int32_t s = start[v]; s < start[v + 1]; ++s) {
      int32_t pos = list[s];
      int32_t partner = 2 * m + 1 - pos;
      int32_t edge = std::min(pos, partner);
      if (state[edge] == 0) continue;
      int32_t w = ends[partner];
      if (seen[static_cast<std::size_t>(w)]) continue;
      seen[static_cast<std::size_t>(w)] = 1;
      reached[++count] = w;
    }
  }
  std::sort(reached.data() + 1, reached.data() + 1 + count);
}

void inout(int32_t node, int32_t count, const Arr<int32_t>& reached, int32_t& flag) {
  flag = std::binary_search(reached.data() + 1, reached.data() + 1 + count, node) ? 0 : 1;
}

}  // namespace lf
