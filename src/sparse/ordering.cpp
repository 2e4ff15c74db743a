#include "sparse/ordering.hpp"

#include <algorithm>
#include <vector>

#include "sparse/ymatrix.hpp"
#include "store/store.hpp"

namespace lf {

namespace {

// The neighbour lists of the elimination, each held in one run of a shared
// pool so that a walk reads consecutive memory: node v's neighbours are
// pool[beg[v] .. beg[v] + len[v] - 1], in no particular order (the order of
// a list has no bearing on the ordering).  A list that outgrows its room
// moves to the end of the pool with twice the room.
struct Lists {
  std::vector<int32_t> pool, beg, len, room;
  int32_t cells = 0;  // entries ever added: the link cells of the elimination

  explicit Lists(std::size_t nodes) : beg(nodes, 0), len(nodes, 0), room(nodes, 0) {}

  // Gives each node the room that its count asks for, one run after another.
  void lay_out(const std::vector<int32_t>& want) {
    std::size_t total = 0;
    for (std::size_t v = 0; v < want.size(); ++v) {
      beg[v] = static_cast<int32_t>(total);
      room[v] = want[v];
      total += static_cast<std::size_t>(want[v]);
    }
    pool.assign(total, 0);
  }
  const int32_t* of(int32_t v) const { return pool.data() + beg[static_cast<std::size_t>(v)]; }
  void add(int32_t v, int32_t nb) {
    const std::size_t k = static_cast<std::size_t>(v);
    if (len[k] == room[k]) {
      const int32_t from = beg[k];
      const int32_t grown = std::max(4, 2 * room[k]);
      beg[k] = static_cast<int32_t>(pool.size());
      pool.resize(pool.size() + static_cast<std::size_t>(grown));
      std::copy_n(pool.begin() + from, len[k], pool.begin() + beg[k]);
      room[k] = grown;
    }
    pool[static_cast<std::size_t>(beg[k] + len[k]++)] = nb;
    ++cells;
  }
  // Takes the entry at place t out of v's list; the last entry moves there.
  void take_out(int32_t v, int32_t t) {
    const std::size_t k = static_cast<std::size_t>(v);
    int32_t* list = pool.data() + beg[k];
    list[t] = list[--len[k]];
  }
};

// The candidates of the selection: smaller degree first, then smaller level,
// then lower number.  One bucket per degree.  The nodes still at their first
// level come in ascending number from the start and wait in a plain queue;
// every later entry goes to a min-heap of level and number packed into one
// key.  Entries go stale when a node's degree or level changes (a fresh entry
// is pushed then); the caller skips them when they come up.
// A min-heap of keys with four children to a node: half the levels of a
// binary heap, and the children of a node side by side in memory.
class QuadHeap {
 public:
  bool empty() const { return v_.empty(); }
  uint64_t top() const { return v_.front(); }
  void push(uint64_t k) {
    std::size_t i = v_.size();
    v_.push_back(k);
    while (i > 0) {
      const std::size_t up = (i - 1) / 4;
      if (v_[up] <= k) break;
      v_[i] = v_[up];
      i = up;
    }
    v_[i] = k;
  }
  // Takes the least key out.
  uint64_t pop() {
    const uint64_t least = v_.front(), last = v_.back();
    v_.pop_back();
    const std::size_t n = v_.size();
    if (n == 0) return least;
    std::size_t i = 0;
    for (std::size_t c = 1; c < n; c = 4 * i + 1) {
      std::size_t m = c;
      for (std::size_t j = c + 1; j < std::min(c + 4, n); ++j)
        if (v_[j] < v_[m]) m = j;
      if (v_[m] >= last) break;
      v_[i] = v_[m];
      i = m;
    }
    v_[i] = last;
    return least;
  }

 private:
  std::vector<uint64_t> v_;
};

class Candidates {
 public:
  // A node at the first level; nodes are seeded in ascending number.
  void seed(int32_t deg, int32_t node) { at(deg).queue.push_back(node); }
  void push(int32_t deg, int32_t level, int32_t node) { at(deg).heap.push(key(level, node)); }
  // The least entry; false when none is left.
  bool pop(int32_t& deg, int32_t& level, int32_t& node) {
    while (low_ < bucket_.size() && bucket_[low_].empty()) ++low_;
    if (low_ == bucket_.size()) return false;
    Bucket& b = bucket_[low_];
    uint64_t k;
    if (b.head < b.queue.size() && (b.heap.empty() || key(1, b.queue[b.head]) < b.heap.top())) {
      k = key(1, b.queue[b.head++]);
    } else {
      k = b.heap.pop();
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
    QuadHeap heap;
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

void optnob_mdml(int32_t nb, const Arr<int32_t>& i, const Arr<int32_t>& j, int32_t maxbus,
                 int32_t& n, Arr<int32_t>& newnum, int32_t& cells) {
  n = 0;
  cells = 0;
  if (maxbus < 1) return;
  newnum.grow(static_cast<std::size_t>(maxbus));

  const std::size_t nodes = static_cast<std::size_t>(maxbus) + 1;
  std::vector<int32_t> deg(nodes, 0), level(nodes, 0), mark(nodes, 0);

  // Neighbour lists; parallel branches and both directions give one entry.
  // The ends of the true branches grouped by node first, for the room of
  // each list, then entered once each.
  Lists lk(nodes);
  {
    std::vector<int32_t> ends(nodes, 0);
    for (int32_t k = 1; k <= nb; ++k) {
      if (i[k] == j[k]) continue;
      ++ends[static_cast<std::size_t>(i[k])];
      ++ends[static_cast<std::size_t>(j[k])];
    }
    lk.lay_out(ends);
    std::vector<int32_t> start(nodes + 1, 0), his(2 * static_cast<std::size_t>(std::max(nb, 0)));
    for (std::size_t v = 1; v < nodes; ++v) start[v + 1] = start[v] + ends[v];
    std::vector<int32_t> fill(start.begin(), start.end() - 1);
    for (int32_t k = 1; k <= nb; ++k) {
      if (i[k] == j[k]) continue;
      his[static_cast<std::size_t>(fill[static_cast<std::size_t>(i[k])]++)] = j[k];
      his[static_cast<std::size_t>(fill[static_cast<std::size_t>(j[k])]++)] = i[k];
    }
    for (int32_t v = 1; v <= maxbus; ++v) {
      const std::size_t vv = static_cast<std::size_t>(v);
      for (int32_t t = start[vv]; t < start[vv + 1]; ++t) {
        const int32_t b = his[static_cast<std::size_t>(t)];
        if (mark[static_cast<std::size_t>(b)] == v) continue;
        mark[static_cast<std::size_t>(b)] = v;
        lk.add(v, b);
        ++deg[vv];
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

  std::vector<int32_t> nbrs;  // best's neighbours
  int32_t stamp = maxbus;     // above every mark of the lists' set-up
  int32_t numbered = 0;
  for (int32_t d = 0, l = 0, best = 0; cand.pop(d, l, best);) {
    if (deg[best] != d || level[best] != l) continue;  // stale entry

    newnum[best] = ++numbered;
    nbrs.assign(lk.of(best), lk.of(best) + lk.len[static_cast<std::size_t>(best)]);

    for (std::size_t t = 0; t < nbrs.size(); ++t) {
      int32_t a = nbrs[t];
      // One walk of a's list finds best, to take it out, and marks the
      // others: the lists are symmetric, so a mark on b answers whether a
      // stands in b's list.
      ++stamp;
      const int32_t* list = lk.of(a);
      const int32_t count = lk.len[static_cast<std::size_t>(a)];
      int32_t at = -1;
      for (int32_t u = 0; u < count; ++u) {
        if (list[u] == best) at = u;
        mark[static_cast<std::size_t>(list[u])] = stamp;
      }
      if (at >= 0) lk.take_out(a, at);
      --deg[a];
      level[a] = std::max(level[a], level[best] + 1);
      for (std::size_t u = t + 1; u < nbrs.size(); ++u) {
        int32_t b = nbrs[u];
        if (mark[static_cast<std::size_t>(b)] == stamp) continue;
        lk.add(a, b);
        lk.add(b, a);
        ++deg[a];
        ++deg[b];
      }
    }
    deg[best] = -1;
    for (int32_t a : nbrs) cand.push(deg[a], level[a], a);
  }
  cells = lk.cells;
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
