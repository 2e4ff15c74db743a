#include "sparse/ymatrix.hpp"

#include <gtest/gtest.h>

#include <complex>
#include <vector>

#include "sparse/ordering.hpp"
#include "store/store.hpp"

namespace lf {
namespace {

using cd = std::complex<double>;

struct Row {
  int32_t i, j;
  double r, x, b, t;
};

void load_case(const std::vector<Row>& rows) {
  grow_branches(rows.size());
  NEW.clear(NEW.size());
  NO.nbranch = static_cast<int32_t>(rows.size());
  for (int32_t k = 1; k <= NO.nbranch; ++k) {
    const Row& w = rows[k - 1];
    IJB.I[k] = w.i, IJB.J[k] = w.j;
    RXB.R[k] = w.r, RXB.X[k] = w.x, RXB.B[k] = w.b, RXB.T[k] = w.t;
  }
  fomy11();
  fomy12();
}

// The entry of Y at internal row a, column c (a <= c), or the place it lacks.
cd entry(int32_t a, int32_t c) {
  for (int32_t p = Y.IY[a]; p < Y.IY[a + 1]; ++p)
    if (Y.JY[p] == c) return {Y.YG[p], Y.YB[p]};
  ADD_FAILURE() << "no entry " << a << "," << c;
  return {};
}

TEST(Admittance, ShuntsTinyImpedanceAndRebuild) {
  load_case({{1, 2, 0.0, 1e-12, 0.0, 1.0},  // near-zero impedance, taken at 1e-20
             {2, 2, 0.0, -5.0, 7.0, 0.0},   // shunt: its impedance counts, B does not
             {3, 3, 0.0, 1.0, 0.0, 0.0}});  // shunt at a bus without a branch
  EXPECT_EQ(NEW[3], 0);
  EXPECT_DOUBLE_EQ(entry(1, 2).imag(), 1e8);
  EXPECT_DOUBLE_EQ(entry(NEW[2], NEW[2]).imag(), -1e8 + 0.2);
  EXPECT_DOUBLE_EQ(entry(NEW[1], NEW[1]).imag(), -1e8);

  // New branch values on the same ordering keep every position.
  std::vector<int32_t> jy(Y.JY.data() + 1, Y.JY.data() + 1 + NO.NYENT);
  RXB.X[1] = 0.5;
  fomy12();
  EXPECT_EQ(std::vector<int32_t>(Y.JY.data() + 1, Y.JY.data() + 1 + NO.NYENT), jy);
  EXPECT_DOUBLE_EQ(entry(1, 2).imag(), 2.0);
}

}  // namespace
}  // namespace lf
