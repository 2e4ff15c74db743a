// An allocator for the large work stores of the sparse routines: a store of
// several megabytes is placed on 2 MB boundaries and the system is asked to
// back it by huge pages, so that walking it misses the address translation
// cache far less on a large network.  Small stores come from the heap.
// A new element is left as the memory holds it: the stores that use this
// allocator (the factors' blocks, the work row) are written before they
// are read, so clearing them would only cost a pass over the memory.
#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdlib>
#include <new>
#include <utility>

namespace lf {

template <typename T>
struct HugePageAlloc {
  using value_type = T;
  static constexpr std::size_t kHuge = std::size_t{2} << 20;  // bytes of one huge page
  HugePageAlloc() = default;
  template <typename U>
  HugePageAlloc(const HugePageAlloc<U>&) {}  // NOLINT: rebinding
  T* allocate(std::size_t n) {
    const std::size_t bytes = n * sizeof(T);
    const bool huge = bytes >= 2 * kHuge;
    const std::size_t align = huge ? kHuge : (alignof(T) > 16 ? alignof(T) : 16);
    const std::size_t size = (bytes + align - 1) / align * align;
    void* p = std::aligned_alloc(align, size);
    if (!p) throw std::bad_alloc();
    if (huge) madvise(p, size, MADV_HUGEPAGE);  // a request: without huge pages all still works
    return static_cast<T*>(p);
  }
  void deallocate(T* p, std::size_t) { std::free(p); }
  template <typename U>
  void construct(U*) {}
  template <typename U, typename... A>
  void construct(U* p, A&&... a) {
    ::new (static_cast<void*>(p)) U(std::forward<A>(a)...);
  }
  bool operator==(const HugePageAlloc&) const = default;
};

}  // namespace lf
