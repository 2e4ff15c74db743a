#include "support/arr.hpp"

#include <sys/mman.h>

#include <cstdlib>
#include <new>

namespace lf::detail {

namespace {

// Under the address checker every block comes from calloc, so that the
// checker watches the bounds of large arrays too.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kMap = false;
#else
constexpr bool kMap = true;
#endif

}  // namespace

void* zeroed_block(std::size_t bytes) {
  if (kMap && bytes >= kMapFrom) {
    void* p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) throw std::bad_alloc();
    return p;
  }
  void* p = std::calloc(bytes, 1);
  if (!p && bytes != 0) throw std::bad_alloc();
  return p;
}

void free_block(void* p, std::size_t bytes) {
  if (!p) return;
  if (kMap && bytes >= kMapFrom)
    munmap(p, bytes);
  else
    std::free(p);
}

}  // namespace lf::detail
