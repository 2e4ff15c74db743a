// Model input: the model library, read from <libname>.DLF for model numbers
// below 6100 and from SYSMODEL.DLF beside it for the standard models.
#include <algorithm>
#include <string>
#include <vector>

#include "control/models.hpp"
#include "control/udmodel.hpp"
#include "io/errlist.hpp"
#include "support/fmt.hpp"
#include "support/freeread.hpp"

namespace lf {

namespace {

// Model numbers from here on lie in the standard library.
constexpr int32_t kFirstStandard = 6100;
// Values of a parameter group on one line of a library file.
constexpr int32_t kValuesPerLine = 8;

int32_t group_lines(int32_t npar) {
  return (npar + kValuesPerLine - 1) / kValuesPerLine;
}

// Makes room for row r of the library's blocks.
void block_room(int32_t r) {
  DTBADRec& d = DTBAD;
  room(static_cast<std::size_t>(r), d.BLKSEQ, d.NIN, d.NOUT, d.BTYPE, d.IN1COD, d.IN1LOC, d.IN2COD,
       d.IN2LOC, d.OUTCOD, d.OUTLOC, d.IVCOD, d.IVLOC, d.IVPAR, d.PORT, d.OUTNAM);
  for (Arr<int32_t>& a : d.PAR) room(static_cast<std::size_t>(r), a);
}

// Makes DTDEE hold `rows` groups of `cols` values, in steps of 10.
void group_room(int32_t rows, int32_t cols) {
  const auto r = static_cast<long long>(DTDEE.rows()), c = static_cast<long long>(DTDEE.cols());
  if (rows <= r && cols <= c) return;
  reallocate2(DTDEE, r, c, std::max(r, redim_target(r, rows, 10)),
              std::max(c, redim_target(c, cols, 10)));
}

bool read_block(FreeReader& in, int32_t r) {
  DTBADRec& d = DTBAD;
  d.IVPAR[r] = 0;
  const ReadItem items[] = {
      ReadItem::of(d.BLKSEQ[r]), ReadItem::of(d.NIN[r]),    ReadItem::of(d.NOUT[r]),
      ReadItem::of(d.BTYPE[r]),  ReadItem::of(d.IN1COD[r]), ReadItem::of(d.IN1LOC[r]),
      ReadItem::of(d.IN2COD[r]), ReadItem::of(d.IN2LOC[r]), ReadItem::of(d.OUTCOD[r]),
      ReadItem::of(d.OUTLOC[r]), ReadItem::of(d.OUTNAM[r]), ReadItem::of(d.IVCOD[r]),
      ReadItem::of(d.IVLOC[r]),  ReadItem::of(d.IVPAR[r]),  ReadItem::of(d.PAR[0][r]),
      ReadItem::of(d.PAR[1][r]), ReadItem::of(d.PAR[2][r]), ReadItem::of(d.PAR[3][r]),
      ReadItem::of(d.PAR[4][r]), ReadItem::of(d.PAR[5][r]), ReadItem::of(d.PAR[6][r]),
      ReadItem::of(d.PORT[r])};
  if (!in.read(items)) return false;
  if (d.PORT[r] == 0) d.PORT[r] = 1;
  return true;
}

bool read_group(FreeReader& in, int32_t row, int32_t npar) {
  for (int32_t c = 1; c <= npar; c += kValuesPerLine) {
    std::vector<ReadItem> items;
    for (int32_t k = c; k < c + kValuesPerLine && k <= npar; ++k)
      items.push_back(ReadItem::of(DTDEE(row, k)));
    if (!in.read(items)) return false;
  }
  return true;
}

// Reads the sections of one library file whose models `need` lists as not
// yet found (positive), marking each found one by negating it.  nblk and
// ncol are the running totals of blocks and group rows.
void read_library(const std::string& path, std::vector<int32_t>& need, int32_t& nblk,
                  int32_t& ncol) {
  FreeReader in;
  if (!in.open(path)) return;
  for (;;) {
    int32_t model = 0, blocks = 0, npar = 0, ngrp = 0;
    if (!in(model, blocks, npar, ngrp) || model == 0) return;
    auto hit = std::find(need.begin(), need.end(), model);
    const int32_t key = typei_key(model);
    if (hit == need.end() || key < 0) {
      for (long n = 0; n < blocks + static_cast<long>(ngrp) * group_lines(npar); ++n)
        if (!in.skip()) return;
      continue;
    }
    *hit = -*hit;
    TYPEI.TYFBLK[key] = nblk + 1;
    TYPEI.TYNBLK[key] = blocks;
    TYPEI.TYNPAR[key] = npar;
    TYPEI.TYNGRP[key] = ngrp;
    TYPEI.TYFCOL[key] = ncol + 1;
    for (int32_t j = 1; j <= blocks; ++j) {
      block_room(nblk + j);
      if (!read_block(in, nblk + j)) return;
    }
    group_room(ncol + ngrp, npar);
    for (int32_t g = 1; g <= ngrp; ++g)
      if (!read_group(in, ncol + g, npar)) return;
    nblk += blocks;
    ncol += ngrp;
  }
}

}  // namespace

int32_t typei_key(int32_t model) {
  // The thousands digit and the rest of the model number, split in single
  // precision with a small push before each truncation, as designed.
  constexpr float kThousandth = 0.001F, kThousand = 1000.0F, kPush = 0.01F;
  const float n = static_cast<float>(model);
  const auto i1 = static_cast<int32_t>(kThousandth * n + kPush);
  const auto i2 =
      static_cast<int32_t>((kThousandth * n - static_cast<float>(i1)) * kThousand + kPush);
  if (i1 < 1 || i1 > static_cast<int32_t>(TYPEIRec::kFamilies) || i2 < 1 ||
      i2 > static_cast<int32_t>(TYPEIRec::kModels))
    return -1;
  return (i1 - 1) * static_cast<int32_t>(TYPEIRec::kModels) + (i2 - 1);
}

void addlib(std::vector<int32_t>& need, int32_t& nblk, int32_t& ncol, const CaseName& libname) {
  std::string stem = libname.trimmed();
  stem.resize(stem.size() > 5 ? std::min<std::size_t>(stem.size() - 5, 60) : 0);
  if (std::any_of(need.begin(), need.end(), [](int32_t m) { return m > 0; }))
    read_library(stem + "SYSMODEL.DLF", need, nblk, ncol);
  for (int32_t m : need)
    if (m > 0)
      errlist_write("U.D Modle" + fmt_i(m, 5) + " is not in " + libname.str() + ".DLF" +
                    " & SYSMODEL.DLF");
}

void rlflib(const CaseName& libname) {
  if (NU.nud == 0) return;
  std::vector<int32_t> need;
  for (int32_t i = 1; i <= NU.nud; ++i) {
    const int32_t m = UDR.UDTYPE[i];
    if (std::find(need.begin(), need.end(), m) != need.end()) continue;
    need.push_back(m);
    // A model counts as missing until its section is read in this calculation.
    if (const int32_t key = typei_key(m); key >= 0) TYPEI.TYNBLK[key] = 0;
  }
  int32_t nblk = 0, ncol = 0;
  if (std::any_of(need.begin(), need.end(), [](int32_t m) { return m < kFirstStandard; }))
    read_library(libname.trimmed() + ".DLF", need, nblk, ncol);
  addlib(need, nblk, ncol, libname);
}

}  // namespace lf
