// Integer array tools: quicksort with and without a companion permutation,
// binary search with an insertion point, and element swaps.
//
// Arrays are passed by the address of their first element, which counts as
// index 1, so that a run inside a larger array can be sorted or searched in
// place (for example &JY[IY[k] + 1]).  Indices l, r, pos are 1-based.
#pragma once

#include <cstdint>

namespace lf {

void swapi(int32_t& x, int32_t& y);
void swapr8(double& x, double& y);

// Copies n bytes forward, one at a time; nothing when n is below 1.  A copy
// into an overlapping area at a higher address repeats the first bytes.
void bytecopy(const unsigned char* from, unsigned char* to, int32_t n);

// Sorts a(1..n) ascending.  The pivot is always the first element of a range,
// and the recursion has no depth guard: a sorted array costs quadratic time.
void quicksorti(int32_t n, int32_t* a);
void rquicksorti(int32_t* a, int32_t l, int32_t r);
// Partitions a(l..r) round a(l); returns the pivot's final index.  Elements
// below the pivot end on its left, equal ones on its right.
int32_t quicksorticut(int32_t* a, int32_t l, int32_t r);

// As quicksorti, and p(i) ends as the original place of the element now at i.
// The range forms move p(l..r) with a(l..r); without p (nullptr) they are
// the forms above.
void quicksortip(int32_t n, int32_t* a, int32_t* p);
void rquicksortip(int32_t* a, int32_t l, int32_t r, int32_t* p);
int32_t quicksorticutp(int32_t* a, int32_t l, int32_t r, int32_t* p);

// Binary search of key in a(1..n), sorted ascending.  found is 1 and pos the
// index of an equal element, or found is 0 and pos the index of the last
// element below key (0 when none is), behind which key belongs.
void q2searchi(const int32_t* a, int32_t n, int32_t key, int32_t& pos, int32_t& found);

}  // namespace lf
