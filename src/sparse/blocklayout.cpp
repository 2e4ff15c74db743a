#include "sparse/blocklayout.hpp"

#include <algorithm>
#include <memory_resource>
#include <vector>

namespace lf {

namespace {

// Counting sort: lays out the entries (key, row, pos) that each(put) hands
// to put in groups by key 1..keys, ascending key, each group in the order
// handed; start[k] is where group k begins, start[keys+1] the end.
template <typename Each>
void group_by(int32_t keys, std::vector<int32_t>& start, std::vector<Link>& out, Each&& each) {
  start.assign(static_cast<std::size_t>(keys) + 2, 0);
  std::size_t total = 0;
  each([&](int32_t key, int32_t, int32_t) {
    ++start[static_cast<std::size_t>(key) + 1];
    ++total;
  });
  for (std::size_t c = 1; c < start.size(); ++c) start[c] += start[c - 1];
  out.resize(total);
  each([&](int32_t key, int32_t row, int32_t pos) {
    out[static_cast<std::size_t>(start[static_cast<std::size_t>(key)]++)] = {row, pos};
  });
  for (std::size_t c = start.size() - 1; c > 0; --c) start[c] = start[c - 1];
  start[0] = 0;
}

// The first position right of the diagonal in row r of the matrix, the end
// of the row when there is none.
int32_t upper_from(const BlockPattern& A, int32_t r) {
  return A.chains->upfirst[r];
}

// Calls put(c, row, p) for each entry of the matrix on and below the
// diagonal, row by row in the order they are stored, so that each column's
// entries come in ascending row.
template <typename Put>
void each_lower(const BlockPattern& A, Put&& put) {
  for (int32_t r = 1; r <= A.n; ++r)
    for (int32_t p = A.ia[r]; p < upper_from(A, r); ++p) put(A.ja[p], r, p);
}

// The pattern of the factors by row number: row i at positions iu[i] ..
// iu[i+1]-1 of ju, its own number first, then its columns right of i
// ascending; parent[i] the first of them (0 for none), its parent in the
// elimination tree.
struct RowPattern {
  std::pmr::vector<int32_t> iu, ju, parent;
};

// The pattern found without values.  Row i of U, and column i of L at the
// same positions, holds the columns right of i of the matrix's row i (which,
// the pattern being structurally symmetric, are the rows below i of its
// column i), and the fill that the elimination of the earlier rows with an
// entry in column i brings: the columns right of i of those rows.  The rows
// whose parent is i are enough, as each such earlier row has handed its
// columns on to its parent, and so on up to row i.
RowPattern symbolic(const BlockPattern& A, std::pmr::memory_resource* mem) {
  const int32_t n = A.n;
  const std::size_t rows = static_cast<std::size_t>(std::max(n, 0)) + 1;
  RowPattern f{std::pmr::vector<int32_t>(mem), std::pmr::vector<int32_t>(mem),
               std::pmr::vector<int32_t>(mem)};
  f.iu.assign(rows + 1, 0);
  f.parent.assign(rows, 0);
  // The rows hold the diagonal and the part right of it, about half the
  // matrix's entries, and the fill-in: room for the whole matrix and one
  // more per row covers the fill of networks (a tenth or so above the
  // matrix), so that the pattern is seldom copied into twice the room.
  f.ju.reserve((n > 0 ? static_cast<std::size_t>(A.ia[n + 1]) : 1) + rows);
  f.ju.push_back(0);  // positions count from 1
  // Per row: the first of its children and the next child of its parent.
  std::pmr::vector<int32_t> child(rows, 0, mem), sibling(rows, 0, mem), mark(rows, 0, mem),
      cols(mem);
  f.iu[1] = 1;
  for (int32_t i = 1; i <= n; ++i) {
    const std::size_t ii = static_cast<std::size_t>(i);
    cols.clear();
    const auto add = [&](int32_t j) {
      if (mark[static_cast<std::size_t>(j)] == i) return;
      mark[static_cast<std::size_t>(j)] = i;
      cols.push_back(j);
    };
    for (int32_t p = upper_from(A, i); p < A.ia[i + 1]; ++p) add(A.ja[p]);
    for (int32_t k = child[ii]; k != 0; k = sibling[static_cast<std::size_t>(k)]) {
      const std::size_t kk = static_cast<std::size_t>(k);
      for (int32_t s = f.iu[kk] + 1; s < f.iu[kk + 1]; ++s)
        if (const int32_t j = f.ju[static_cast<std::size_t>(s)]; j > i) add(j);
    }
    std::sort(cols.begin(), cols.end());
    f.ju.push_back(i);
    f.ju.insert(f.ju.end(), cols.begin(), cols.end());
    f.iu[ii + 1] = static_cast<int32_t>(f.ju.size());
    if (!cols.empty()) {
      const std::size_t parent = static_cast<std::size_t>(cols.front());
      f.parent[ii] = cols.front();
      sibling[ii] = child[parent];
      child[parent] = i;
    }
  }
  return f;
}

// The working order, place 1..n to row number: a postorder of the
// elimination tree, the children of a row by ascending number, the trees by
// the ascending number of their roots.  Every row comes after the rows below
// it in its tree, which are the rows it takes from.
std::vector<int32_t> working_order(const std::pmr::vector<int32_t>& parent, int32_t n,
                                   std::pmr::memory_resource* mem) {
  const std::size_t rows = static_cast<std::size_t>(std::max(n, 0)) + 1;
  std::pmr::vector<int32_t> head(rows, 0, mem), next(rows, 0, mem), path(mem);
  std::vector<int32_t> order(rows, 0);
  for (int32_t i = n; i >= 1; --i) {
    const std::size_t p = static_cast<std::size_t>(parent[static_cast<std::size_t>(i)]);
    if (p == 0) continue;
    next[static_cast<std::size_t>(i)] = head[p];
    head[p] = i;
  }
  int32_t placed = 0;
  for (int32_t root = 1; root <= n; ++root) {
    if (parent[static_cast<std::size_t>(root)] != 0) continue;
    path.push_back(root);
    while (!path.empty()) {
      const std::size_t top = static_cast<std::size_t>(path.back());
      if (const int32_t c = head[top]; c != 0) {
        head[top] = next[static_cast<std::size_t>(c)];
        path.push_back(c);
      } else {
        order[static_cast<std::size_t>(++placed)] = static_cast<int32_t>(top);
        path.pop_back();
      }
    }
  }
  return order;
}

// Stores the rows of the pattern in the working order, their columns named
// by place.  Along the way up a tree both the numbers and the places rise,
// so each row's columns stay ascending.
void place_rows(const RowPattern& p, const std::pmr::vector<int32_t>& place, BlockStore& f) {
  const int32_t n = f.n;
  f.iu.assign(static_cast<std::size_t>(n) + 2, 0);
  f.ju.resize(p.ju.size());
  int32_t q = 1;
  for (int32_t c = 1; c <= n; ++c) {
    const std::size_t i = static_cast<std::size_t>(f.order[static_cast<std::size_t>(c)]);
    f.iu[static_cast<std::size_t>(c)] = q;
    for (int32_t s = p.iu[i]; s < p.iu[i + 1]; ++s)
      f.ju[static_cast<std::size_t>(q++)] =
          place[static_cast<std::size_t>(p.ju[static_cast<std::size_t>(s)])];
  }
  f.iu[static_cast<std::size_t>(n) + 1] = q;
  f.lval.resize(p.ju.size());
  f.uval.resize(p.ju.size() - static_cast<std::size_t>(n));
}

// Lays out the entries of U by the place of their column, each column's by
// ascending row number: the earlier rows that its elimination takes, in the
// order it takes them.
void lay_out_above(const std::pmr::vector<int32_t>& place, BlockStore& f) {
  const int32_t* iu = f.iu.data();
  const int32_t* ju = f.ju.data();
  group_by(f.n, f.start, f.above, [&](auto&& put) {
    for (int32_t k = 1; k <= f.n; ++k) {
      const int32_t pk = place[static_cast<std::size_t>(k)];
      for (int32_t s = iu[pk] + 1; s < iu[pk + 1]; ++s) put(ju[s], pk, s);
    }
  });
}

// Lays out the matrix's entries that each column's step loads, by the place
// of the column: first those on and below the diagonal of the column by
// ascending row, then those right of the diagonal of its row; with the place of
// each in value_at and room for their blocks in low.
void lay_out_loads(const BlockPattern& A, const std::pmr::vector<int32_t>& place, BlockStore& f) {
  const auto at = [&](int32_t i) { return place[static_cast<std::size_t>(i)]; };
  group_by(2 * A.n, f.load_start, f.loads, [&](auto&& put) {
    each_lower(A, [&](int32_t c, int32_t row, int32_t p) { put(2 * at(c) - 1, at(row), p); });
    for (int32_t r = 1; r <= A.n; ++r)
      for (int32_t p = upper_from(A, r); p < A.ia[r + 1]; ++p) put(2 * at(r), at(A.ja[p]), p);
  });
  f.value_at.assign((A.n > 0 ? static_cast<std::size_t>(A.ia[A.n + 1]) : 1) + kSinkAhead, 0);
  for (std::size_t t = 0; t < f.loads.size(); ++t)
    f.value_at[static_cast<std::size_t>(f.loads[t].pos)] = static_cast<int32_t>(t) + 1;
  // Each position is loaded at most once, so a store that holds the blocks
  // by position (position_sink) is large enough already and stays in place.
  if (f.low.size() < f.loads.size() + 1) f.low.resize(f.loads.size() + 1);
}

}  // namespace

void lay_out_factors(const BlockPattern& a, BlockStore& f) {
  f.n = a.n;
  // No step of a factorisation reads the work row before it has cleared or
  // written it, so until then its memory holds the work arrays of the
  // layout: they take no memory beside the factors, and what they leave is
  // overwritten.  Should they need more, the rest comes from the heap.
  f.work.fit(a.n);
  std::pmr::monotonic_buffer_resource scratch(f.work.cell.data(),
                                              f.work.cell.size() * sizeof(BlockWork::Cell),
                                              std::pmr::new_delete_resource());
  const RowPattern p = symbolic(a, &scratch);
  f.order = working_order(p.parent, a.n, &scratch);
  std::pmr::vector<int32_t> place(f.order.size(), 0, &scratch);
  for (int32_t c = 1; c <= a.n; ++c) place[static_cast<std::size_t>(f.order[c])] = c;
  place_rows(p, place, f);
  lay_out_above(place, f);
  lay_out_loads(a, place, f);
}

}  // namespace lf
