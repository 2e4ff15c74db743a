// An allocator for the large work stores of the sparse routines: a store of
// several megabytes is placed on 2 MB boundaries and the system is asked to
// back it by huge pages, so that walking it misses the address translation
// cache far less on a large network.  Small stores come from the heap.
#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdlib>
#include <new>

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
  bool operator==(const HugePageAlloc&) const = default;
};

}  // namespace lf
