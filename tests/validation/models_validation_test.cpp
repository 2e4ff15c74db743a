// The examples with user-defined models, solved by all five methods: (a)
// at convergence the controlled quantity meets its set-point, or stands at
// a limit of its model; (b) the final state is a true load flow of the final
// network: the values the models left, written into a plain case without
// models and solved by Newton's method, give the same voltages within 1e-6
// per unit and 1e-4 degrees.  All methods reach the same state.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "driver/newlf.hpp"
#include "io/channels.hpp"
#include "sparse/ymatrix.hpp"
#include "store/lfudot.hpp"
#include "store/store.hpp"
#include "store/vpq.hpp"

namespace lf {
namespace {

namespace fs = std::filesystem;
using cplx = std::complex<double>;

const fs::path kExamples = fs::path(LF_TEST_DATA_DIR) / ".." / ".." / "examples";

std::vector<std::string> printed;
int keep(const char* line) {
  printed.emplace_back(line);
  return 0;
}

std::vector<std::string> lines_of(const fs::path& p) {
  std::ifstream in(p);
  std::vector<std::string> out;
  for (std::string l; std::getline(in, l);) out.push_back(l);
  return out;
}
void write_lines(const fs::path& p, const std::vector<std::string>& lines) {
  std::ofstream out(p);
  for (const auto& l : lines) out << l << "\n";
}
std::vector<std::string> fields(const std::string& line) {
  std::istringstream in(line);
  std::vector<std::string> f;
  for (std::string w; in >> w;) f.push_back(w);
  return f;
}
std::string join(const std::vector<std::string>& f) {
  std::string s;
  for (const auto& w : f) s += (s.empty() ? "" : " ") + w;
  return s;
}
std::string num(double v) {
  std::ostringstream o;
  o.precision(17);
  o << v;
  return o.str();
}

// Line 2 of .L0 with the method and the model switch set.
void set_run(const fs::path& l0, int method, int ctrl_ud) {
  auto lines = lines_of(l0);
  auto f = fields(lines[1]);
  f[4] = std::to_string(method);
  f[7] = std::to_string(ctrl_ud);
  lines[1] = join(f);
  write_lines(l0, lines);
}

// A copy of an example folder (the library link resolved) to solve in.
fs::path fresh_copy(const std::string& example, const std::string& name) {
  const fs::path dir = fs::path(LF_BINARY_DIR) / "validation" / "models" / name;
  fs::remove_all(dir);
  fs::create_directories(dir);
  for (const auto& e : fs::directory_iterator(kExamples / example))
    fs::copy_file(fs::canonical(e.path()), dir / e.path().filename());
  return dir;
}

struct State {
  std::vector<double> v, deg;  // by case bus
  int32_t convergent = 0;
  int32_t iterations = 0;  // T of the last row of the last table
};

State solve(const fs::path& dir, const std::string& stem) {
  std::ofstream(dir / "NAME.INC") << "1\n" << stem << "\n\nDATALIB\n\n\n\n\nUDLIB\n";
  const fs::path home = fs::current_path();
  fs::current_path(dir);
  printed.clear();
  prnon = 1;
  prnfunc = reinterpret_cast<intptr_t>(&keep);
  State s;
  newlf(s.convergent);
  prnon = 0;
  fs::current_path(home);
  for (int32_t b = 1; b <= LFINF.nbus; ++b) {
    s.v.push_back(VPQ.V[NEW[b]]);
    s.deg.push_back(VPQ.TH[NEW[b]] * 57.29577951308232);
  }
  for (const auto& l : printed) {
    const auto f = fields(l);
    if (f.size() >= 3 && std::isdigit(static_cast<unsigned char>(f[0][0])) && l.size() > 7 &&
        l.compare(0, 4, "    ") == 0)
      s.iterations = std::stoi(f[0]);
  }
  return s;
}

// The power flowing into branch k at its I end, counted from I to J.
cplx flow_at_i(int32_t k) {
  const int32_t i = NEW[IJB.I[k]], j = NEW[IJB.J[k]];
  const cplx vi(VPQ.E[i], VPQ.F[i]), vj(VPQ.E[j], VPQ.F[j]);
  const double t = RXB.T[k];
  const cplx cur = (vi - vj / t) / cplx(RXB.R[k], RXB.X[k]) + cplx(0, RXB.B[k]) * vi;
  return vi * std::conj(cur);
}
int32_t branch_no(int32_t no) {
  for (int32_t k = 1; k <= NO.nbranch; ++k)
    if (IJB.No[k] == no) return k;
  return 0;
}

// One example: what is controlled, checked on the state left in the store.
struct Example {
  const char* folder;
  const char* stem;
  const char* quantity;
  double setpoint;
  // The controlled value and whether the model stands at one of its limits.
  double (*measure)(bool& at_limit);
};

const Example kExamplesList[] = {
    {"remotev", "REMOTEV", "V at bus 4 by the voltage of generator 3", 1.025,
     [](bool& lim) {
       lim = std::fabs(L5.V[3] - 1.1) < 1e-9 || std::fabs(L5.V[3] - 0.9) < 1e-9;
       return VPQ.V[NEW[4]];
     }},
    {"oltc", "OLTC", "V at bus 9 by the ratio of transformer 9-4", 1.04,
     [](bool& lim) {
       const double t = RXB.T[branch_no(9)];
       lim = std::fabs(t - 1.2) < 1e-9 || std::fabs(t - 0.8) < 1e-9;
       return VPQ.V[NEW[9]];
     }},
    {"lineflow", "LINEFLOW", "P of line 2-4 by its reactance", 0.45,
     [](bool& lim) {
       const double x = RXB.X[branch_no(4)];
       lim = std::fabs(x - 1.0) < 1e-9 || std::fabs(x - 0.001) < 1e-9;
       return flow_at_i(branch_no(4)).real();
     }},
    {"compensator", "COMP", "Q - 5 (1.05 - V) of the compensator at bus 14", 0.0,
     [](bool& lim) {
       const double q = LFUDOT.UDQINJ[NEW[14]];
       lim = std::fabs(std::fabs(q) - 0.3) < 1e-9;
       return q - 5 * (1.05 - VPQ.V[NEW[14]]);
     }},
};

// The final network of a model run as a plain case: the generator rows'
// P, Q and V as the models left them, the models' injections taken into the
// load rows; the branch files hold the final data already (rewritten at the
// end of the run).
void freeze(const fs::path& dir, const std::string& stem) {
  auto l5 = lines_of(dir / (stem + ".L5"));
  int32_t g = 0;
  for (auto& l : l5) {
    auto f = fields(l);
    if (f.empty() || std::stoi(f[0]) <= 0) continue;
    ++g;
    f[3] = num(L5.P[g]), f[4] = num(L5.Q[g]), f[5] = num(L5.V[g]);
    l = join(f);
  }
  write_lines(dir / (stem + ".L5"), l5);
  auto l6 = lines_of(dir / (stem + ".L6"));
  for (auto& l : l6) {
    auto f = fields(l);
    if (f.empty() || std::stoi(f[0]) <= 0) continue;
    const int32_t i = NEW[std::stoi(f[1])];
    f[4] = num(std::stod(f[4]) - LFUDOT.UDPINJ[i]);
    f[5] = num(std::stod(f[5]) - LFUDOT.UDQINJ[i]);
    l = join(f);
  }
  write_lines(dir / (stem + ".L6"), l6);
  fs::remove(dir / (stem + ".L9"));
}

std::vector<std::pair<int, State>> all_states;

TEST(ModelExamples, ControlledStateIsReachedByEveryMethodAndIsATrueLoadFlow) {
  for (const Example& ex : kExamplesList) {
    std::vector<double> ref_v, ref_deg;
    for (int method = 0; method <= 4; ++method) {
      const std::string name = std::string(ex.folder) + "_m" + std::to_string(method);
      const fs::path dir = fresh_copy(ex.folder, name);
      set_run(dir / (std::string(ex.stem) + ".L0"), method, 1);
      const State s = solve(dir, ex.stem);
      ASSERT_EQ(s.convergent, 1) << name;
      bool at_limit = false;
      const double value = ex.measure(at_limit);
      EXPECT_TRUE(at_limit || std::fabs(value - ex.setpoint) < 1e-4)
          << name << ": " << ex.quantity << " = " << value;
      if (method == 1) {
        ref_v = s.v, ref_deg = s.deg;
        // (b): the plain case of the final network, by Newton's method.
        freeze(dir, ex.stem);
        set_run(dir / (std::string(ex.stem) + ".L0"), 1, 0);
        const State plain = solve(dir, ex.stem);
        ASSERT_EQ(plain.convergent, 1) << name << " plain";
        for (std::size_t b = 0; b < s.v.size(); ++b) {
          EXPECT_NEAR(plain.v[b], s.v[b], 1e-6) << name << " bus " << b + 1;
          EXPECT_NEAR(plain.deg[b], s.deg[b], 1e-4) << name << " bus " << b + 1;
        }
      }
      std::cout << name << ": " << ex.quantity << " = " << value << " (set-point " << ex.setpoint
                << "), iterations " << s.iterations << "\n";
      all_states.push_back({method, s});
    }
    for (const auto& [method, s] : all_states) {
      for (std::size_t b = 0; b < s.v.size() && !ref_v.empty(); ++b) {
        EXPECT_NEAR(s.v[b], ref_v[b], 1e-6) << ex.folder << " method " << method;
        EXPECT_NEAR(s.deg[b], ref_deg[b], 1e-4) << ex.folder << " method " << method;
      }
    }
    all_states.clear();
  }
}

}  // namespace
}  // namespace lf
