#include "support/sortsearch.hpp"

namespace lf {

void swapi(int32_t& x, int32_t& y) {
  int32_t t = x;
  x = y;
  y = t;
}

void swapr8(double& x, double& y) {
  double t = x;
  x = y;
  y = t;
}

void bytecopy(const unsigned char* from, unsigned char* to, int32_t n) {
  for (int32_t i = 0; i < n; ++i) {
    // Each byte is read after the previous one was written, so an overlap
    // repeats the leading bytes rather than moving the block.
    to[i] = *static_cast<const volatile unsigned char*>(from + i);
  }
}

// The arrays' first elements stand at index 1.
static int32_t& at(int32_t* a, int32_t i) {
  return a[i - 1];
}

int32_t quicksorticutp(int32_t* a, int32_t l, int32_t r, int32_t* p) {
  int32_t v = at(a, l);
  int32_t m = l;
  for (int32_t i = l + 1; i <= r; ++i) {
    if (v > at(a, i)) {
      ++m;
      if (m != i) {
        swapi(at(a, m), at(a, i));
        if (p != nullptr) swapi(at(p, m), at(p, i));
      }
    }
  }
  if (m != l) {
    swapi(at(a, l), at(a, m));
    if (p != nullptr) swapi(at(p, l), at(p, m));
  }
  return m;
}

int32_t quicksorticut(int32_t* a, int32_t l, int32_t r) {
  return quicksorticutp(a, l, r, nullptr);
}

void rquicksortip(int32_t* a, int32_t l, int32_t r, int32_t* p) {
  if (l >= r) return;
  int32_t q = quicksorticutp(a, l, r, p);
  rquicksortip(a, l, q - 1, p);
  rquicksortip(a, q + 1, r, p);
}

void rquicksorti(int32_t* a, int32_t l, int32_t r) {
  rquicksortip(a, l, r, nullptr);
}

void quicksorti(int32_t n, int32_t* a) {
  rquicksorti(a, 1, n);
}

void quicksortip(int32_t n, int32_t* a, int32_t* p) {
  for (int32_t i = 1; i <= n; ++i) at(p, i) = i;
  rquicksortip(a, 1, n, p);
}

void q2searchi(const int32_t* a, int32_t n, int32_t key, int32_t& pos, int32_t& found) {
  found = 0;
  int32_t lo = 1, hi = n;
  while (lo <= hi) {
    int32_t mid = (lo + hi) / 2;
    pos = mid;
    if (key == a[mid - 1]) {
      found = 1;
      return;
    }
    if (key > a[mid - 1]) {
      lo = mid + 1;
    } else {
      hi = mid - 1;
    }
  }
  pos = hi;
}

}  // namespace lf
