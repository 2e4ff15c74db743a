#include "support/arr.hpp"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace lf::detail {

namespace {

// Under the address checker every block comes from calloc, so that the
// checker watches the bounds of large arrays too (g++ and clang++ tell of
// the checker each in its own way).
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kPool = false;
#elif defined(__has_feature)
constexpr bool kPool = !__has_feature(address_sanitizer);
#else
constexpr bool kPool = true;
#endif

// Large blocks come from a pool of a few big mappings, cut into whole pages:
// a process makes one mapping (or a few, when a large case needs more) in
// place of one per array, and gives none back one by one at exit.  Pages of
// a mapping are zero until first written, so an array costs nothing where it
// is not touched.  A block given back becomes free room for later blocks;
// room that was written must be zeroed again before it is handed out, by
// clearing it when small, by giving its pages back to the system when large.
// Clearing pages that are resident costs far less than the faults that
// bring given-back pages in again, so only blocks of some hundred kilobytes
// go back: most of a block that large is seldom written again.
// Written free room is given back to the system as a whole when it exceeds
// kDirtyLimit and fresh pages are wanted, so that resident memory stays
// close to what the live arrays use.
constexpr std::size_t kPage = 4096;
constexpr std::size_t kFirstChunk = std::size_t{32} << 20;  // bytes of the first mapping
constexpr std::size_t kOwnMapping = std::size_t{16} << 20;  // a block this large is mapped alone
constexpr std::size_t kClearFrom = std::size_t{256} << 10;  // written room this large goes back
constexpr std::size_t kDirtyLimit = std::size_t{4} << 20;   // written free room kept at most
constexpr int kMaxChunks = 64;
constexpr int kMaxFree = 1024;

struct Room {
  char* begin;
  std::size_t size;
  bool dirty;  // may hold written pages
};

struct Pool {
  char* chunks[kMaxChunks][2] = {};  // [begin, end) of each mapping
  int nchunks = 0;
  char* top = nullptr;       // next free byte of the last mapping
  char* end = nullptr;       // end of the last mapping
  char* clean = nullptr;     // from here to end the last mapping was never written
  Room free[kMaxFree] = {};  // free room below top, by address, adjacent rooms joined
  int nfree = 0;
  std::size_t dirty = 0;  // bytes of written free room (free rooms and top..clean)
};

constinit Pool pool;

std::size_t pages(std::size_t bytes) {
  return (bytes + kPage - 1) / kPage * kPage;
}

// A new mapping; at gives the address it must have, else none is made.
char* map(std::size_t bytes, char* at = nullptr) {
  const int fixed = at ? MAP_FIXED_NOREPLACE : 0;
  void* p = mmap(at, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | fixed, -1, 0);
  if (p == MAP_FAILED) return nullptr;
  if (at && p != at) {  // a system that took the address for a hint
    munmap(p, bytes);
    return nullptr;
  }
  return static_cast<char*>(p);
}

// Zeroes written room.
void wipe(char* p, std::size_t bytes) {
  if (bytes < kClearFrom)
    std::memset(p, 0, bytes);
  else
    madvise(p, bytes, MADV_DONTNEED);
}

// Gives every written free room back to the system.
void release_dirty() {
  for (int k = 0; k < pool.nfree; ++k) {
    Room& r = pool.free[k];
    if (r.dirty) madvise(r.begin, r.size, MADV_DONTNEED), r.dirty = false;
  }
  if (pool.clean > pool.top) madvise(pool.top, pool.clean - pool.top, MADV_DONTNEED);
  pool.clean = pool.top;
  pool.dirty = 0;
}

bool owned(const char* p) {
  for (int k = 0; k < pool.nchunks; ++k)
    if (p >= pool.chunks[k][0] && p < pool.chunks[k][1]) return true;
  return false;
}

// Marks a room as written, counting what was clean in it.
void soil(Room& r, bool dirty) {
  if (dirty && !r.dirty) pool.dirty += r.size;
  r.dirty = r.dirty || dirty;
}

// Adds free room, joined with the rooms beside it; false when the table is
// full.  Written room must be counted in pool.dirty by the caller.
bool add_room(char* p, std::size_t bytes, bool dirty) {
  Room* f = pool.free;
  int k = static_cast<int>(
      std::lower_bound(f, f + pool.nfree, p, [](const Room& r, char* q) { return r.begin < q; }) -
      f);
  const bool before = k > 0 && f[k - 1].begin + f[k - 1].size == p;
  const bool after = k < pool.nfree && p + bytes == f[k].begin;
  if (before) {
    Room& r = f[k - 1];
    soil(r, dirty || (after && f[k].dirty));
    if (after) soil(f[k], r.dirty);
    r.size += bytes;
    if (after) {
      r.size += f[k].size;
      std::copy(f + k + 1, f + pool.nfree, f + k);
      --pool.nfree;
    }
  } else if (after) {
    soil(f[k], dirty);
    f[k].begin = p, f[k].size += bytes;
  } else {
    if (pool.nfree == kMaxFree) return false;
    std::copy_backward(f + k, f + pool.nfree, f + pool.nfree + 1);
    f[k] = Room{p, bytes, dirty};
    ++pool.nfree;
  }
  return true;
}

// Makes room for bytes at the top: the last mapping grows in place, or a new
// one begins (what was left of the last becomes free room).
bool grow_pool(std::size_t bytes) {
  std::size_t mapped = 0;
  for (int k = 0; k < pool.nchunks; ++k) mapped += pool.chunks[k][1] - pool.chunks[k][0];
  const std::size_t size = std::max({bytes, mapped, kFirstChunk});
  if (pool.nchunks > 0 && map(size, pool.end)) {
    pool.end += size;
    pool.chunks[pool.nchunks - 1][1] = pool.end;
    return true;
  }
  if (pool.nchunks == kMaxChunks) return false;
  char* p = map(size);
  if (!p) return false;
  // What is left of the last mapping becomes free room; its written part
  // stays counted.
  if (pool.top != pool.end && !add_room(pool.top, pool.end - pool.top, pool.clean > pool.top)) {
    madvise(pool.top, pool.clean - pool.top, MADV_DONTNEED);
    pool.dirty -= pool.clean - pool.top;
  }
  pool.chunks[pool.nchunks][0] = p;
  pool.chunks[pool.nchunks][1] = p + size;
  ++pool.nchunks;
  pool.top = pool.clean = p;
  pool.end = p + size;
  return true;
}

void* take(std::size_t bytes) {
  // The smallest free room that holds the block.
  Room* best = nullptr;
  for (int k = 0; k < pool.nfree; ++k) {
    Room& r = pool.free[k];
    if (r.size >= bytes && (!best || r.size < best->size)) best = &r;
  }
  if (best && !best->dirty && pool.dirty > kDirtyLimit) release_dirty();
  if (best) {
    char* p = best->begin;
    if (best->dirty) {
      wipe(p, bytes);
      pool.dirty -= std::min(pool.dirty, bytes);
    }
    best->begin += bytes, best->size -= bytes;
    if (best->size == 0) {
      std::copy(best + 1, pool.free + pool.nfree, best);
      --pool.nfree;
    }
    return p;
  }
  if (static_cast<std::size_t>(pool.end - pool.top) < bytes && !grow_pool(bytes)) return nullptr;
  char* p = pool.top;
  if (p + bytes > pool.clean && pool.dirty > kDirtyLimit) release_dirty();
  if (p < pool.clean) {
    const std::size_t written = std::min(bytes, static_cast<std::size_t>(pool.clean - p));
    wipe(p, written);
    pool.dirty -= std::min(pool.dirty, written);
  }
  pool.top += bytes;
  pool.clean = std::max(pool.clean, pool.top);
  return p;
}

void give_back(char* p, std::size_t bytes) {
  pool.dirty += bytes;
  if (p + bytes == pool.top) {
    pool.top = p;
    // Free room just below joins the top too.
    if (pool.nfree > 0) {
      Room& last = pool.free[pool.nfree - 1];
      if (last.begin + last.size == pool.top) {
        if (!last.dirty) pool.dirty += last.size;  // now inside top..clean
        pool.top = last.begin;
        --pool.nfree;
      }
    }
    return;
  }
  if (!add_room(p, bytes, true)) {  // no room in the table: the pages go back
    madvise(p, bytes, MADV_DONTNEED);
    pool.dirty -= bytes;
  }
}

}  // namespace

void* zeroed_block(std::size_t bytes) {
  if (kPool && bytes >= kMapFrom) {
    const std::size_t size = pages(bytes);
    void* p = size >= kOwnMapping ? static_cast<void*>(map(size)) : take(size);
    if (!p && size < kOwnMapping) p = map(size);  // no pool room: a mapping of its own
    if (!p) throw std::bad_alloc();
    return p;
  }
  void* p = std::calloc(bytes, 1);
  if (!p && bytes != 0) throw std::bad_alloc();
  return p;
}

void free_block(void* p, std::size_t bytes) {
  if (!p) return;
  if (!kPool || bytes < kMapFrom) {
    std::free(p);
    return;
  }
  char* c = static_cast<char*>(p);
  if (owned(c))
    give_back(c, pages(bytes));
  else
    munmap(p, pages(bytes));
}

}  // namespace lf::detail
