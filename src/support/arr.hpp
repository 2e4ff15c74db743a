// Arrays that count from 1 and fixed-width blank-padded text: the two shapes
// in which the engine keeps all of its records.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace lf {

// Storage for arrays of numbers: memory comes zeroed, so a new element is
// not written again since it is zero already, and a large array costs
// nothing until it is touched.  Large blocks are cut from a few big mappings
// of the system's (see arr.cpp), whose pages are zero and become resident
// only when first written; small ones come from calloc.  The arrays below keep the spare room
// behind their last element zero.
namespace detail {
// Bytes from which a block is cut from the mappings.
constexpr std::size_t kMapFrom = std::size_t{1} << 14;
void* zeroed_block(std::size_t bytes);
void free_block(void* p, std::size_t bytes);
}  // namespace detail

template <typename T>
struct ZeroAlloc {
  using value_type = T;
  ZeroAlloc() = default;
  template <typename U>
  ZeroAlloc(const ZeroAlloc<U>&) {}  // NOLINT: rebinding
  T* allocate(std::size_t n) { return static_cast<T*>(detail::zeroed_block(n * sizeof(T))); }
  void deallocate(T* p, std::size_t n) { detail::free_block(p, n * sizeof(T)); }
  template <typename U>
  void construct(U*) {}
  template <typename U, typename... A>
  void construct(U* p, A&&... a) {
    ::new (static_cast<void*>(p)) U(std::forward<A>(a)...);
  }
  bool operator==(const ZeroAlloc&) const = default;
};

// A 1-based array: valid indices are 1..size(); index 0 exists but is unused.
// grow() keeps the contents and fills the new tail with T{} (zero or blanks).
template <typename T>
class Arr {
 public:
  Arr() : v_(1) {}
  explicit Arr(std::size_t n) : v_(n + 1) {}
  Arr(const Arr&) = default;
  Arr(Arr&&) = default;
  // A fresh copy, so that no stale values stay in spare room.
  Arr& operator=(const Arr& o) {
    if (this != &o) Arr(o).v_.swap(v_);
    return *this;
  }
  Arr& operator=(Arr&&) = default;

  T& operator[](std::ptrdiff_t i) {
    assert(i >= 0 && static_cast<std::size_t>(i) < v_.size());
    return v_[static_cast<std::size_t>(i)];
  }
  const T& operator[](std::ptrdiff_t i) const {
    assert(i >= 0 && static_cast<std::size_t>(i) < v_.size());
    return v_[static_cast<std::size_t>(i)];
  }

  // Highest valid index.
  std::size_t size() const { return v_.size() - 1; }

  // Makes sure that indices 1..n are valid; never shrinks.  An array of
  // numbers that holds nothing yet (element 0 zero) takes new storage
  // without copying into it, so that its pages stay untouched until used.
  void grow(std::size_t n) {
    if (n + 1 <= v_.size()) return;
    if constexpr (std::is_arithmetic_v<T>) {
      const T zero{};
      if (v_.size() == 1 && std::memcmp(v_.data(), &zero, sizeof(T)) == 0) {
        std::vector<T, Alloc>(n + 1).swap(v_);
        return;
      }
    }
    v_.resize(n + 1);
  }
  // Sets the size to exactly n, keeping the first min(size, n) elements.
  void resize(std::size_t n) {
    if (n < size()) std::fill(v_.begin() + static_cast<std::ptrdiff_t>(n) + 1, v_.end(), T{});
    v_.resize(n + 1);
  }
  // Sets elements 1..n (at most size()) to T{}.
  void clear(std::size_t n) { std::fill_n(v_.begin() + 1, std::min(n, size()), T{}); }
  void fill(const T& x) { std::fill(v_.begin() + 1, v_.end(), x); }

  T* data() { return v_.data(); }  // address of element 0
  const T* data() const { return v_.data(); }

 private:
  using Alloc = std::conditional_t<std::is_arithmetic_v<T>, ZeroAlloc<T>, std::allocator<T>>;
  std::vector<T, Alloc> v_;
};

// N bytes of text, blank padded, without a terminator.
template <std::size_t N>
struct Text {
  char c[N];

  Text() { std::memset(c, ' ', N); }
  Text(std::string_view s) { assign(s); }  // NOLINT: implicit by design
  Text& operator=(std::string_view s) {
    assign(s);
    return *this;
  }
  Text& operator=(const char* s) {
    assign(s ? std::string_view(s) : std::string_view());
    return *this;
  }

  void assign(std::string_view s) {
    std::size_t n = std::min(s.size(), N);
    std::memcpy(c, s.data(), n);
    std::memset(c + n, ' ', N - n);
  }
  static constexpr std::size_t size() { return N; }
  std::string_view view() const { return std::string_view(c, N); }
  std::string str() const { return std::string(c, N); }
  // The text without its trailing blanks.
  std::string trimmed() const {
    std::size_t n = N;
    while (n > 0 && c[n - 1] == ' ') --n;
    return std::string(c, n);
  }
  bool blank() const { return trimmed().empty(); }
  char& operator[](std::size_t i) { return c[i]; }  // 0-based byte access
  const char& operator[](std::size_t i) const { return c[i]; }
  friend bool operator==(const Text& a, const Text& b) { return std::memcmp(a.c, b.c, N) == 0; }
};

// Grows every array of a record to hold n elements.
template <typename... A>
void grow_all(std::size_t n, A&... a) {
  (a.grow(n), ...);
}

// A record whose arrays hold n elements from the start.
template <typename R>
R sized(std::size_t n) {
  R r;
  r.grow(n);
  return r;
}

}  // namespace lf
