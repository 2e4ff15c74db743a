// Growable arrays: heap arrays for what cannot be bounded in advance (the
// model tables, the work arrays of the ordering, the generators as read).
//
// Two layers.  reallocate() sets an array to an exact size: it always lays
// out a new block, copies the first min(oldsize, newsize) elements, and fills
// oldsize + 1 .. newsize with zero (blanks for text).  A shrink loses the
// tail.  The caller's oldsize is trusted as the count of valid elements.
// redim() makes sure of a wanted size and grows in whole steps of dadd from
// the present size, so that tables filled row by row are copied seldom.
//
// A failed allocation ends the process with "Fail to allocate memory!".
// Arrays are never given back; a later calculation reuses them as they are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <utility>

#include "support/arr.hpp"

namespace lf {

// The growth step of redim(); starts at 100.
extern int32_t dadd;

// Sets the growth step; a step that is not above 0 is ignored.
void setdadd(int32_t step);
void getdadd(int32_t& step);

// Ends the process after a failed allocation.
[[noreturn]] void alloc_failed();

namespace detail {
template <typename F>
auto guarded_alloc(F make) {
  try {
    return make();
  } catch (const std::bad_alloc&) {
    alloc_failed();
  } catch (const std::length_error&) {
    alloc_failed();
  }
}
inline std::size_t count(long long n) {
  return n > 0 ? static_cast<std::size_t>(n) : 0;
}
}  // namespace detail

// Two-dimensional 1-based array, the first index running fastest.
template <typename T>
class Arr2 {
 public:
  Arr2() = default;
  Arr2(std::size_t rows, std::size_t cols) : rows_(rows), cols_(cols), v_(rows * cols) {}

  T& operator()(std::ptrdiff_t i, std::ptrdiff_t j) { return v_[index(i, j)]; }
  const T& operator()(std::ptrdiff_t i, std::ptrdiff_t j) const { return v_[index(i, j)]; }
  std::size_t rows() const { return rows_; }
  std::size_t cols() const { return cols_; }

 private:
  std::size_t index(std::ptrdiff_t i, std::ptrdiff_t j) const {
    assert(i >= 1 && static_cast<std::size_t>(i) <= rows_);
    assert(j >= 1 && static_cast<std::size_t>(j) <= cols_);
    return static_cast<std::size_t>(i - 1) + rows_ * static_cast<std::size_t>(j - 1);
  }
  std::size_t rows_ = 0, cols_ = 0;
  std::vector<T> v_;
};

// Exact resize of a 1-based array: a new block of newsize elements (none when
// newsize is negative), the first min(oldsize, newsize) elements copied, the
// elements oldsize + 1 .. newsize filled.
template <typename T>
void reallocate(Arr<T>& a, long long oldsize, long long newsize) {
  std::size_t n = detail::count(newsize);
  Arr<T> fresh = detail::guarded_alloc([n] { return Arr<T>(n); });
  std::size_t keep = std::min({detail::count(oldsize), n, a.size()});
  for (std::size_t i = 1; i <= keep; ++i) fresh[i] = std::move(a[i]);
  a = std::move(fresh);
}

// Exact resize of an array counted from 0: it holds newsize elements, indices
// 0 .. newsize - 1, and the copy starts at index 0.
template <typename T>
void reallocate0(std::vector<T>& a, long long oldsize, long long newsize) {
  std::size_t n = detail::count(newsize);
  std::vector<T> fresh = detail::guarded_alloc([n] { return std::vector<T>(n); });
  std::size_t keep = std::min({detail::count(oldsize), n, a.size()});
  for (std::size_t i = 0; i < keep; ++i) fresh[i] = std::move(a[i]);
  a = std::move(fresh);
}

// Exact resize of a two-dimensional array: each element inside both the old
// extents and the new ones keeps its place, every other element is filled.
template <typename T>
void reallocate2(Arr2<T>& a, long long oldrows, long long oldcols, long long newrows,
                 long long newcols) {
  std::size_t nr = detail::count(newrows), nc = detail::count(newcols);
  Arr2<T> fresh = detail::guarded_alloc([nr, nc] { return Arr2<T>(nr, nc); });
  std::size_t kr = std::min({detail::count(oldrows), nr, a.rows()});
  std::size_t kc = std::min({detail::count(oldcols), nc, a.cols()});
  for (std::size_t j = 1; j <= kc; ++j)
    for (std::size_t i = 1; i <= kr; ++i)
      fresh(static_cast<std::ptrdiff_t>(i), static_cast<std::ptrdiff_t>(j)) =
          std::move(a(static_cast<std::ptrdiff_t>(i), static_cast<std::ptrdiff_t>(j)));
  a = std::move(fresh);
}

// The size that redim() gives: the present size plus whole steps until n is
// reached.
inline long long redim_target(long long present, long long n, int32_t step) {
  if (present < 0) present = 0;
  if (n <= present) return present;
  long long steps = (n - present + step - 1) / step;
  return present + steps * step;
}

// Makes sure that a holds at least n elements, growing in steps of dadd from
// its present size; nothing changes when n is not above the present size.
template <typename T>
void redim(Arr<T>& a, long long n) {
  long long present = static_cast<long long>(a.size());
  if (n <= present) return;
  reallocate(a, present, redim_target(present, n, dadd));
}

// Two-dimensional form: the first extent grows by steps of dadd to at least
// rows, the second becomes cols as given.  Nothing at all happens when rows is
// not above the present first extent.  All old columns are kept.
template <typename T>
void redim2(Arr2<T>& a, long long rows, long long cols) {
  long long present = static_cast<long long>(a.rows());
  if (rows <= present) return;
  reallocate2(a, present, static_cast<long long>(a.cols()), redim_target(present, rows, dadd),
              cols);
}

}  // namespace lf
