#include "sparse/ordering.hpp"

#include <algorithm>
#include <vector>

#include "sparse/ymatrix.hpp"
#include "store/store.hpp"
#include "support/growarr.hpp"

namespace lf {

namespace {

// The neighbour lists of the elimination: singly linked cells, head[n] the
// first cell of node n, next[c] the following one (0 at the end), node[c] the
// neighbour.  tail[n] is the last cell of n's list, kept so that appending
// needs no walk.
struct Links {
  Arr<int32_t> node, next, head, tail;
  int32_t used = 0;

  // A fresh cell holding nb, not yet linked.
  int32_t take(int32_t nb) {
    if (used + 1 > static_cast<int32_t>(node.size())) {
      // Grow in whole steps, at least doubling, so that a large fill-in is
      // copied a few times only.
      long long want = std::max<long long>(used + 1, 2LL * static_cast<long long>(node.size()));
      redim(node, want);
      redim(next, want);
    }
    ++used;
    node[used] = nb;
    next[used] = 0;
    return used;
  }
  void append(int32_t owner, int32_t cell) {
    if (tail[owner] == 0) {
      head[owner] = cell;
    } else {
      next[tail[owner]] = cell;
    }
    tail[owner] = cell;
  }
  void unlink(int32_t owner, int32_t cell, int32_t prev) {
    if (prev == 0) {
      head[owner] = next[cell];
    } else {
      next[prev] = next[cell];
    }
    if (tail[owner] == cell) tail[owner] = prev;
  }
  void prepend(int32_t owner, int32_t cell) {
    next[cell] = head[owner];
    head[owner] = cell;
    if (tail[owner] == 0) tail[owner] = cell;
  }
};

// The candidates of the selection: smaller degree first, then smaller level,
// then lower number.  One bucket per degree.  The nodes still at their first
// level come in ascending number from the start and wait in a plain queue;
// every later entry goes to a min-heap of level and number packed into one
// key.  Entries go stale when a node's degree or level changes (a fresh entry
// is pushed then); the caller skips them when they come up.
class Candidates {
 public:
  // A node at the first level; nodes are seeded in ascending number.
  void seed(int32_t deg, int32_t node) { at(deg).queue.push_back(node); }
  void push(int32_t deg, int32_t level, int32_t node) {
    auto& h = at(deg).heap;
    h.push_back(key(level, node));
    std::push_heap(h.begin(), h.end(), std::greater<>());
  }
  // The least entry; false when none is left.
  bool pop(int32_t& deg, int32_t& level, int32_t& node) {
    while (low_ < bucket_.size() && bucket_[low_].empty()) ++low_;
    if (low_ == bucket_.size()) return false;
    Bucket& b = bucket_[low_];
    uint64_t k;
    if (b.head < b.queue.size() && (b.heap.empty() || key(1, b.queue[b.head]) < b.heap.front())) {
      k = key(1, b.queue[b.head++]);
    } else {
      std::pop_heap(b.heap.begin(), b.heap.end(), std::greater<>());
      k = b.heap.back();
      b.heap.pop_back();
    }
    deg = static_cast<int32_t>(low_);
    level = static_cast<int32_t>(k >> 32);
    node = static_cast<int32_t>(k & 0xffffffffu);
    return true;
  }

 private:
  struct Bucket {
    std::vector<int32_t> queue;
    std::size_t head = 0;
    std::vector<uint64_t> heap;
    bool empty() const { return head == queue.size() && heap.empty(); }
  };
  static uint64_t key(int32_t level, int32_t node) {
    return static_cast<uint64_t>(level) << 32 | static_cast<uint32_t>(node);
  }
  Bucket& at(int32_t deg) {
    const std::size_t d = static_cast<std::size_t>(deg);
    if (d >= bucket_.size()) bucket_.resize(d + 1);
    low_ = std::min(low_, d);
    return bucket_[d];
  }
  std::vector<Bucket> bucket_;
  std::size_t low_ = 0;
};

}  // namespace

void maxnob(int32_t nb, const Arr<int32_t>& i, const Arr<int32_t>& j, int32_t& maxbus) {
  maxbus = 0;
  for (int32_t k = 1; k <= nb; ++k) maxbus = std::max({maxbus, i[k], j[k]});
}

void srhlink(int32_t target, int32_t owner, const Arr<int32_t>& head, const Arr<int32_t>& node,
             const Arr<int32_t>& next, int32_t& found, int32_t& pos, int32_t& prev) {
  found = 0;
  pos = 0;
  prev = 0;
  int32_t place = 0;
  for (int32_t c = head[owner]; c != 0; c = next[c]) {
    ++place;
    prev = pos;
    pos = c;
    if (node[c] == target) {
      found = place;
      return;
    }
  }
}

void optnob_mdml(int32_t nb, const Arr<int32_t>& i, const Arr<int32_t>& j, int32_t maxbus,
                 int32_t& n, Arr<int32_t>& newnum, int32_t& cells) {
  n = 0;
  cells = 0;
  if (maxbus < 1) return;
  newnum.grow(static_cast<std::size_t>(maxbus));

  const std::size_t nodes = static_cast<std::size_t>(maxbus) + 1;
  Links lk;
  lk.head.grow(static_cast<std::size_t>(maxbus));
  lk.tail.grow(static_cast<std::size_t>(maxbus));
  redim(lk.node, 4LL * nb);
  redim(lk.next, 4LL * nb);
  std::vector<int32_t> deg(nodes, 0), level(nodes, 0), mark(nodes, 0);

  // Neighbour lists; parallel branches and both directions give one entry.
  for (int32_t k = 1; k <= nb; ++k) {
    if (i[k] == j[k]) continue;
    for (int side = 0; side < 2; ++side) {
      int32_t owner = side == 0 ? i[k] : j[k];
      int32_t target = side == 0 ? j[k] : i[k];
      int32_t found = 0, pos = 0, prev = 0;
      srhlink(target, owner, lk.head, lk.node, lk.next, found, pos, prev);
      if (found == 0) {
        lk.append(owner, lk.take(target));
        ++deg[owner];
      }
    }
  }

  Candidates cand;
  for (int32_t v = 1; v <= maxbus; ++v) {
    if (deg[v] > 0) {
      level[v] = 1;
      ++n;
      cand.seed(deg[v], v);
    } else {
      deg[v] = -1;
      level[v] = 0;
      newnum[v] = 0;
    }
  }

  std::vector<int32_t> nbrs;  // best's neighbours in list order
  int32_t stamp = 0;
  int32_t numbered = 0;
  for (int32_t d = 0, l = 0, best = 0; cand.pop(d, l, best);) {
    if (deg[best] != d || level[best] != l) continue;  // stale entry

    newnum[best] = ++numbered;
    nbrs.clear();
    for (int32_t c = lk.head[best]; c != 0; c = lk.next[c]) nbrs.push_back(lk.node[c]);

    for (std::size_t t = 0; t < nbrs.size(); ++t) {
      int32_t a = nbrs[t];
      // One walk of a's list finds best's cell, to unlink it, and marks the
      // others: the lists are symmetric, so a mark on b answers whether a
      // stands in b's list.
      ++stamp;
      int32_t pos = 0, prev = 0;
      for (int32_t c = lk.head[a], before = 0; c != 0; before = c, c = lk.next[c]) {
        if (lk.node[c] == best && pos == 0) {
          pos = c;
          prev = before;
        }
        mark[lk.node[c]] = stamp;
      }
      if (pos != 0) lk.unlink(a, pos, prev);
      --deg[a];
      level[a] = std::max(level[a], level[best] + 1);
      for (std::size_t u = t + 1; u < nbrs.size(); ++u) {
        int32_t b = nbrs[u];
        if (mark[b] == stamp) continue;
        lk.prepend(a, lk.take(b));
        lk.append(b, lk.take(a));
        ++deg[a];
        ++deg[b];
      }
    }
    deg[best] = -1;
    for (int32_t a : nbrs) cand.push(deg[a], level[a], a);
  }
  cells = lk.used;
}

void upnum(int32_t nb, int32_t n, const Arr<int32_t>& newnum, Arr<int32_t>& iou, int32_t& ny,
           const Arr<int32_t>& i, const Arr<int32_t>& j) {
  n = std::max(n, 0);
  iou.grow(static_cast<std::size_t>(n));
  iou.clear(static_cast<std::size_t>(n));
  ny = 0;
  // The higher ends of the branches, grouped by their lower end (a counting
  // sort); a pair met again (parallel branches, either direction) counts once.
  Arr<int32_t> start(static_cast<std::size_t>(n) + 1), fill(static_cast<std::size_t>(n) + 1);
  Arr<int32_t> his(static_cast<std::size_t>(std::max(nb, 0))), seen(static_cast<std::size_t>(n));
  for (int32_t k = 1; k <= nb; ++k) {
    if (i[k] != j[k]) ++start[std::min(newnum[i[k]], newnum[j[k]]) + 1];
  }
  start[1] = 1;
  for (int32_t r = 2; r <= n + 1; ++r) start[r] += start[r - 1];
  for (int32_t r = 1; r <= n; ++r) fill[r] = start[r];
  for (int32_t k = 1; k <= nb; ++k) {
    if (i[k] == j[k]) continue;
    int32_t a = newnum[i[k]], c = newnum[j[k]];
    his[fill[std::min(a, c)]++] = std::max(a, c);
  }
  for (int32_t lo = 1; lo <= n; ++lo) {
    for (int32_t t = start[lo]; t < start[lo + 1]; ++t) {
      if (seen[his[t]] == lo) continue;
      seen[his[t]] = lo;
      ++iou[lo];
      ++ny;
    }
  }
  ny += n;
}

void fomy11() {
  maxnob(NO.nbranch, IJB.I, IJB.J, NO.MAXBUS);
  int32_t cells = 0;
  optnob_mdml(NO.nbranch, IJB.I, IJB.J, NO.MAXBUS, NO.nnode, NEW, cells);
  upnum(NO.nbranch, NO.nnode, NEW, IOU, NO.NYENT, IJB.I, IJB.J);
}

}  // namespace lf
