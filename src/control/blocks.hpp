// The block library of the user-defined models: 52 block types, each a
// routine bl1 ... bl52 that reads the input sums of its block and its
// parameters and hands one output, with its derivative companion, to blsub.
//
// Every block runs in one of two forms: mode 1, the steady-state form that
// the load flow uses (an integrator adds its scaled input at every pass), and
// mode 0, the time-stepping form with the step DT of COMM7.  A block knows
// no bus or line: the bindings of the models do that.  A parameter that
// would divide by zero is replaced by a guard for that pass, with a warning
// line on the error list each time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace lf {

// Block routines: mode 1 steady state or 0 time step, ipar the index of the
// block's first parameter in NUPA, iblk the block's index.  The timers (21,
// 27, 43, 52) and the filter (51) take ist, the running number of their
// kind in this pass, which selects their memory in NU1.
void bl1(int32_t mode, int32_t ipar, int32_t iblk);
void bl2(int32_t mode, int32_t ipar, int32_t iblk);
void bl3(int32_t mode, int32_t ipar, int32_t iblk);
void bl4(int32_t mode, int32_t ipar, int32_t iblk);
void bl5(int32_t mode, int32_t ipar, int32_t iblk);
void bl6(int32_t mode, int32_t ipar, int32_t iblk);
void bl7(int32_t mode, int32_t ipar, int32_t iblk);
void bl8(int32_t mode, int32_t ipar, int32_t iblk);
void bl9(int32_t mode, int32_t ipar, int32_t iblk);
void bl10(int32_t mode, int32_t ipar, int32_t iblk);
void bl11(int32_t mode, int32_t ipar, int32_t iblk);
void bl12(int32_t mode, int32_t ipar, int32_t iblk);
void bl13(int32_t mode, int32_t ipar, int32_t iblk);
void bl14(int32_t mode, int32_t ipar, int32_t iblk);
void bl15(int32_t mode, int32_t ipar, int32_t iblk);
void bl16(int32_t mode, int32_t ipar, int32_t iblk);
void bl17(int32_t mode, int32_t ipar, int32_t iblk);
void bl18(int32_t mode, int32_t ipar, int32_t iblk);
void bl19(int32_t mode, int32_t ipar, int32_t iblk);
void bl20(int32_t mode, int32_t ipar, int32_t iblk);
void bl21(int32_t mode, int32_t ipar, int32_t iblk, int32_t ist);
void bl22(int32_t mode, int32_t ipar, int32_t iblk);
void bl23(int32_t mode, int32_t ipar, int32_t iblk);
void bl24(int32_t mode, int32_t ipar, int32_t iblk);
void bl25(int32_t mode, int32_t ipar, int32_t iblk);
void bl26(int32_t mode, int32_t ipar, int32_t iblk);
void bl27(int32_t mode, int32_t ipar, int32_t iblk, int32_t ist);
void bl28(int32_t mode, int32_t ipar, int32_t iblk);
void bl29(int32_t mode, int32_t ipar, int32_t iblk);
void bl30(int32_t mode, int32_t ipar, int32_t iblk);
void bl31(int32_t mode, int32_t ipar, int32_t iblk);
void bl32(int32_t mode, int32_t ipar, int32_t iblk);
void bl33(int32_t mode, int32_t ipar, int32_t iblk);
void bl34(int32_t mode, int32_t ipar, int32_t iblk);
void bl35(int32_t mode, int32_t ipar, int32_t iblk);
void bl36(int32_t mode, int32_t ipar, int32_t iblk);
void bl37(int32_t mode, int32_t ipar, int32_t iblk);
void bl38(int32_t mode, int32_t ipar, int32_t iblk);
void bl39(int32_t mode, int32_t ipar, int32_t iblk);
void bl40(int32_t mode, int32_t ipar, int32_t iblk);
void bl41(int32_t mode, int32_t ipar, int32_t iblk);
void bl42(int32_t mode, int32_t ipar, int32_t iblk);
void bl43(int32_t mode, int32_t ipar, int32_t iblk, int32_t ist);
void bl44(int32_t mode, int32_t ipar, int32_t iblk);
void bl45(int32_t mode, int32_t ipar, int32_t iblk);
void bl46(int32_t mode, int32_t ipar, int32_t iblk);
void bl47(int32_t mode, int32_t ipar, int32_t iblk);
void bl48(int32_t mode, int32_t ipar, int32_t iblk);
void bl49(int32_t mode, int32_t ipar, int32_t iblk);
void bl50(int32_t mode, int32_t ipar, int32_t iblk);
void bl51(int32_t mode, int32_t ipar, int32_t iblk, int32_t ist);
void bl52(int32_t mode, int32_t ipar, int32_t iblk, int32_t ist);

// Takes the output y, dy of block iblk: a held block (mode not 0) keeps its
// stored Y instead; then the value goes along every link of the block into
// the first or second input of its targets, inverted on a negative link.
void blsub(int32_t mode, double y, double dy, int32_t iblk);

// The parameter slots (letters A-G of a library block record) that a block
// type stores in NUPA, in the order the block reads them as P1, P2, ...  A
// type outside 1-52 stores slot A.
std::string_view blkslots(int32_t type);
// The count of parameters that the arrangement records for a block type
// (BLKNPA): the length of its slot list, 0 for a type outside 1-52.
int32_t blknpa(int32_t type);
// Timer and latch blocks (21, 27, 43, 52), which share one memory counter.
bool is_timer_block(int32_t type);

// Runs block iblk of the given type with its parameters from p and moves p
// on to the next block's: by the type's parameter count, but by 2 after a
// block 41 (which stores 3: a block behind it reads its parameters one
// place early) and by 7 after a type outside 1-52, which runs as block 1.
// ntimer and nfilt count the timers and filters of the pass.
void blrun(int32_t type, int32_t mode, int32_t& p, int32_t iblk, int32_t& ntimer, int32_t& nfilt);

// Angle of x + jy in the range 0 to 2 pi.
void dger(double x, double y, double& ang);

// A real in at most n columns (n <= 16), right-adjusted, with as many
// decimals as fit and no trailing zeros; a value too large is cut to the
// largest that fits.
std::string rtoa(int32_t n, double value);

}  // namespace lf
