// Timings of the sparse kernels on the branch lists of real-size networks:
// case2383wp read from its MATPOWER file when present (directory in the
// environment variable LF_BENCH_CASES, or the default compiled in), else a
// synthetic mesh of the same size; and four copies of it joined by tie lines
// (9532 buses), the size of the largest published single-core figures; the
// factorisation and solution also on 13 and 42 copies (31,000 and 100,000
// buses), where the factors no longer fit in the cache.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "sparse/blockfactor.hpp"
#include "sparse/ordering.hpp"
#include "sparse/symfactor.hpp"
#include "sparse/ymatrix.hpp"
#include "store/store.hpp"

namespace lf {
namespace {

struct Branch {
  int32_t i, j;
  double r, x, b, t;
};

struct Net {
  int32_t nbus = 0;
  std::vector<Branch> br;
};

// The in-service buses and branches of a MATPOWER case file; buses are
// numbered 1.. in file order, the ratio sits at the J end.
bool read_matpower(const std::string& path, Net& net) {
  std::ifstream in(path);
  if (!in) return false;
  std::map<long, int32_t> num;
  std::string line;
  int block = 0;  // 1 bus rows, 2 branch rows
  while (std::getline(in, line)) {
    if (line.find("mpc.bus =") != std::string::npos) {
      block = 1;
      continue;
    }
    if (line.find("mpc.branch =") != std::string::npos) {
      block = 2;
      continue;
    }
    if (line.find("];") != std::string::npos) {
      block = 0;
      continue;
    }
    if (block == 0) continue;
    for (char& c : line)
      if (c == ';') c = ' ';
    std::istringstream row(line);
    std::vector<double> v;
    for (double d; row >> d;) v.push_back(d);
    if (block == 1 && v.size() >= 2 && v[1] != 4) num[static_cast<long>(v[0])] = ++net.nbus;
    if (block == 2 && v.size() >= 11 && v[10] != 0) {
      auto f = num.find(static_cast<long>(v[0])), t = num.find(static_cast<long>(v[1]));
      if (f == num.end() || t == num.end()) continue;
      net.br.push_back({t->second, f->second, v[2], v[3], v[4] / 2, v[8]});
    }
  }
  return !net.br.empty();
}

// A mesh of about the same size and degree as a transmission network.
Net synthetic(int32_t nbus) {
  Net net;
  net.nbus = nbus;
  std::mt19937 rng(1);
  std::uniform_int_distribution<int32_t> near(1, 40);
  std::uniform_real_distribution<double> u(0.005, 0.05);
  for (int32_t k = 2; k <= nbus; ++k) net.br.push_back({k - 1, k, u(rng), 10 * u(rng), u(rng), 0});
  for (int32_t k = 1; k <= nbus / 4; ++k) {
    int32_t a = 1 + static_cast<int32_t>(rng() % static_cast<unsigned>(nbus));
    int32_t b = std::min(nbus, a + near(rng));
    if (a != b) net.br.push_back({a, b, u(rng), 10 * u(rng), u(rng), 0});
  }
  return net;
}

const Net& base_case() {
  static Net net = [] {
    Net n;
    const char* dir = std::getenv("LF_BENCH_CASES");
    std::string d = dir ? dir : LF_BENCH_CASE_DIR;
    if (!read_matpower(d + "/case2383wp.m", n)) n = synthetic(2383);
    return n;
  }();
  return net;
}

// Copies of the base case joined in a ring by five tie lines between
// neighbours: 4 copies make the 9532-bus grid, 42 about 100,000 buses.
Net copies(int32_t count) {
  const Net& one = base_case();
  Net n;
  n.nbus = count * one.nbus;
  for (int32_t c = 0; c < count; ++c) {
    for (Branch b : one.br) {
      b.i += c * one.nbus;
      b.j += c * one.nbus;
      n.br.push_back(b);
    }
  }
  for (int32_t c = 0; c < count; ++c)
    for (int32_t k = 1; k <= 5; ++k)
      n.br.push_back(
          {c * one.nbus + k * 97, ((c + 1) % count) * one.nbus + k * 89, 0.001, 0.01, 0, 0});
  return n;
}

// The network of a benchmark's argument: the number of copies, 1 the base case.
const Net& net_of(const benchmark::State& st) {
  static std::map<int64_t, Net> made;
  const int64_t count = st.range(0);
  auto it = made.find(count);
  if (it == made.end())
    it = made.emplace(count, count == 1 ? base_case() : copies(static_cast<int32_t>(count))).first;
  return it->second;
}

void load(const Net& net) {
  grow_branches(net.br.size());
  NO.nbranch = static_cast<int32_t>(net.br.size());
  for (int32_t k = 1; k <= NO.nbranch; ++k) {
    const Branch& b = net.br[static_cast<std::size_t>(k - 1)];
    IJB.I[k] = b.i, IJB.J[k] = b.j;
    RXB.R[k] = b.r, RXB.X[k] = b.x, RXB.B[k] = b.b, RXB.T[k] = b.t;
  }
}

void setup(const Net& net) {
  load(net);
  fomy11();
  fomy12();
}

// A matrix of 2 x 2 blocks with the structure of Y, full rows, slack bus 1
// reduced to its identity; values of the kind that the Newton methods form.
struct BlockSystem {
  int32_t n = 0, nent = 0;
  Arr<int32_t> ia, ja;
  Arr<MatrixBlock> a;
  Arr<double> r1, r2, x1, x2;
  BlockChains chains;
  BlockStore factors;

  void build() {
    n = NO.nnode;
    // The entries below the diagonal of each row: Y's upper entries by column.
    std::vector<std::vector<std::pair<int32_t, int32_t>>> lower(static_cast<std::size_t>(n) + 1);
    for (int32_t r = 1; r <= n; ++r)
      for (int32_t p = Y.IY[r] + 1; p < Y.IY[r + 1]; ++p)
        lower[static_cast<std::size_t>(Y.JY[p])].emplace_back(r, p);
    ia.grow(static_cast<std::size_t>(n) + 1);
    int32_t q = 1;
    auto put = [&](int32_t col, int32_t yp, bool diag) {
      a.grow(static_cast<std::size_t>(q));
      ja.grow(static_cast<std::size_t>(q));
      ja[q] = col;
      const double g = Y.YG[yp], b = Y.YB[yp];
      a[q] = {{-g + (diag ? 0.1 : 0.0), b, b, g + (diag ? 0.2 : 0.0)}};
      ++q;
    };
    for (int32_t i = 1; i <= n; ++i) {
      ia[i] = q;
      if (i == 1) {
        put(1, Y.IY[1], true);
        a[q - 1] = {{1.0, 0.0, 0.0, 1.0}};
        continue;
      }
      for (auto [r, yp] : lower[static_cast<std::size_t>(i)])
        if (r != 1) put(r, yp, false);
      put(i, Y.IY[i], true);
      for (int32_t p = Y.IY[i] + 1; p < Y.IY[i + 1]; ++p) put(Y.JY[p], p, false);
    }
    ia[n + 1] = q;
    nent = q - 1;
    for (Arr<double>* a : {&r1, &r2, &x1, &x2}) a->grow(static_cast<std::size_t>(n));
    for (int32_t i = 1; i <= n; ++i) r1[i] = 0.01 * i, r2[i] = -0.02;
    adlink7l(ia, ja, n, chains);
  }
  BlockPattern pattern() const { return {n, ia.data(), ja.data(), &chains}; }
  BlockValues values() const { return {a.data()}; }
  void first() { nonsym74(pattern(), values(), factors, nullptr); }
  void again() {
    place_values(pattern(), values(), factors);
    nonsym74o(pattern(), factors, nullptr);
  }
  // A refactorisation with the solution that goes along with it.
  void again_solve() {
    const BlockRhs rhs{r1.data(), r2.data()};
    place_values(pattern(), values(), factors);
    nonsym74o(pattern(), factors, &rhs);
    solvxn_back(factors, x1, x2);
  }
  void solve() { solvxn(factors, r1, r2, x1, x2); }
};

void BM_ordering(benchmark::State& st) {
  load(net_of(st));
  for (auto _ : st) fomy11();
  st.counters["buses"] = NO.nnode;
}

void BM_admittance(benchmark::State& st) {
  setup(net_of(st));
  for (auto _ : st) fomy12();
  st.counters["entries"] = NO.NYENT;
}

// The susceptances of Y, the matrix that the symmetric benchmarks factorise.
SymMatrix b_matrix() {
  return {NO.nnode, Y.IY.data(), Y.JY.data(), Y.YB.data()};
}

void BM_symmetric_factor(benchmark::State& st) {
  setup(net_of(st));
  SymFactors f;
  Arr<double> lv;
  for (auto _ : st) symtri71(b_matrix(), 5 * NO.NYENT, f, lv);
  st.counters["factor"] = f.il[NO.nnode + 1] - 1;
}

void BM_symmetric_solve(benchmark::State& st) {
  setup(net_of(st));
  SymFactors f;
  Arr<double> lv, b(static_cast<std::size_t>(NO.nnode)), x(static_cast<std::size_t>(NO.nnode));
  symtri71(b_matrix(), 5 * NO.NYENT, f, lv);
  for (int32_t i = 1; i <= NO.nnode; ++i) b[i] = 1.0;
  for (auto _ : st) solvxs(f, lv, b, x);
}

void BM_block_first_factor(benchmark::State& st) {
  setup(net_of(st));
  BlockSystem s;
  s.build();
  for (auto _ : st) {
    adlink7l(s.ia, s.ja, s.n, s.chains);
    s.first();
  }
  st.counters["factor"] = s.factors.iu[static_cast<std::size_t>(s.n) + 1] - 1;
}

void BM_block_refactor(benchmark::State& st) {
  setup(net_of(st));
  BlockSystem s;
  s.build();
  s.first();
  for (auto _ : st) s.again();
}

void BM_block_solve(benchmark::State& st) {
  setup(net_of(st));
  BlockSystem s;
  s.build();
  s.first();
  for (auto _ : st) s.solve();
}

// One Newton step's sparse work: a refactorisation and the solution that
// goes along with it.
void BM_block_refactor_solve(benchmark::State& st) {
  setup(net_of(st));
  BlockSystem s;
  s.build();
  s.first();
  for (auto _ : st) s.again_solve();
}

// The sparse work of a Newton solve of five iterations: ordering, Y, the
// first factorisation with its fill-in, four refactorisations, five solutions.
void BM_newton_sparse_work(benchmark::State& st) {
  const Net& net = net_of(st);
  load(net);
  BlockSystem s;
  for (auto _ : st) {
    fomy11();
    fomy12();
    s.build();
    s.first();
    s.solve();
    for (int k = 0; k < 4; ++k) s.again_solve();
  }
}

BENCHMARK(BM_ordering)->Arg(1)->Arg(4)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_admittance)->Arg(1)->Arg(4)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_symmetric_factor)->Arg(1)->Arg(4)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_symmetric_solve)->Arg(1)->Arg(4)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_block_first_factor)->Arg(1)->Arg(4)->Arg(13)->Arg(42)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_block_refactor)->Arg(1)->Arg(4)->Arg(13)->Arg(42)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_block_solve)->Arg(1)->Arg(4)->Arg(13)->Arg(42)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_block_refactor_solve)->Arg(1)->Arg(4)->Arg(13)->Arg(42)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_newton_sparse_work)->Arg(1)->Arg(4)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace lf

BENCHMARK_MAIN();
