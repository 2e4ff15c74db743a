// The common output of the blocks, and the dispatch that runs a block of a
// given type with its parameters.
#include <array>

#include "control/blocks.hpp"
#include "control/udblock.hpp"

namespace lf {

void blsub(int32_t mode, double y, double dy, int32_t iblk) {
  if (mode != 0 && UDB.BLKHLD[iblk] != 0) {
    y = UDXY.Y[iblk];  // held at its initial value
  } else {
    UDXY.Y[iblk] = y;
  }
  UDXY.DY[iblk] = dy;
  const int32_t first = UDB.LNKFST[iblk], last = first + UDB.LNKCNT[iblk] - 1;
  for (int32_t j = first; j <= last; ++j) {
    if (const int32_t t = UDB.LNKX1[j]; t > 0) {
      UDXY.X1[t] = y, UDXY.DX1[t] = dy;
    } else if (t < 0) {
      UDXY.X1[-t] = -y, UDXY.DX1[-t] = -dy;
    }
    if (const int32_t t = UDB.LNKX2[j]; t > 0) {
      UDXY.X2[t] = y, UDXY.DX2[t] = dy;
    } else if (t < 0) {
      UDXY.X2[-t] = -y, UDXY.DX2[-t] = -dy;
    }
  }
}

namespace {

using Plain = void (*)(int32_t, int32_t, int32_t);
using Counted = void (*)(int32_t, int32_t, int32_t, int32_t);

// One row a block type: its routine and the parameter slots it stores.
struct BlockType {
  Plain plain;      // the routine, unless it takes a counter
  Counted counted;  // the routine of a timer or the filter
  const char* slots;
};

constexpr std::array<BlockType, 53> kTypes = {{
    {nullptr, nullptr, "A"},  // 0 and every type outside 1-52: run as block 1
    {bl1, nullptr, "ABCDEFG"}, {bl2, nullptr, "A"},     {bl3, nullptr, "DEFG"},
    {bl4, nullptr, "DEFG"},    {bl5, nullptr, "A"},     {bl6, nullptr, "AB"},
    {bl7, nullptr, "FG"},      {bl8, nullptr, "A"},     {bl9, nullptr, ""},
    {bl10, nullptr, "AB"},     {bl11, nullptr, "A"},    {bl12, nullptr, ""},
    {bl13, nullptr, ""},       {bl14, nullptr, "ABFG"}, {bl15, nullptr, "A"},
    {bl16, nullptr, "A"},      {bl17, nullptr, "ABC"},  {bl18, nullptr, ""},
    {bl19, nullptr, ""},       {bl20, nullptr, ""},     {nullptr, bl21, "A"},
    {bl22, nullptr, ""},       {bl23, nullptr, "AB"},   {bl24, nullptr, "AB"},
    {bl25, nullptr, "AB"},     {bl26, nullptr, "AB"},   {nullptr, bl27, "A"},
    {bl28, nullptr, ""},       {bl29, nullptr, ""},     {bl30, nullptr, "ABCD"},
    {bl31, nullptr, "ABCDEF"}, {bl32, nullptr, "ABCD"}, {bl33, nullptr, "ABCDE"},
    {bl34, nullptr, "AB"},     {bl35, nullptr, "AB"},   {bl36, nullptr, "AB"},
    {bl37, nullptr, "AB"},     {bl38, nullptr, "ABCD"}, {bl39, nullptr, "ABCD"},
    {bl40, nullptr, "AB"},     {bl41, nullptr, "ABC"},  {bl42, nullptr, ""},
    {nullptr, bl43, "A"},      {bl44, nullptr, "AB"},   {bl45, nullptr, ""},
    {bl46, nullptr, ""},       {bl47, nullptr, "AB"},   {bl48, nullptr, ""},
    {bl49, nullptr, ""},       {bl50, nullptr, "AB"},   {nullptr, bl51, "ABE"},
    {nullptr, bl52, ""},
}};

bool known(int32_t type) {
  return type >= 1 && type <= 52;
}

}  // namespace

std::string_view blkslots(int32_t type) {
  return kTypes[known(type) ? type : 0].slots;
}

int32_t blknpa(int32_t type) {
  return known(type) ? static_cast<int32_t>(blkslots(type).size()) : 0;
}

bool is_timer_block(int32_t type) {
  return type == 21 || type == 27 || type == 43 || type == 52;
}

void blrun(int32_t type, int32_t mode, int32_t& p, int32_t iblk, int32_t& ntimer, int32_t& nfilt) {
  if (!known(type)) {
    bl1(mode, p, iblk);
    p += 7;
    return;
  }
  const BlockType& t = kTypes[type];
  if (t.plain != nullptr) {
    t.plain(mode, p, iblk);
  } else if (type == 51) {
    t.counted(mode, p, iblk, ++nfilt);
  } else {
    t.counted(mode, p, iblk, ++ntimer);
  }
  p += type == 41 ? 2 : blknpa(type);
}

}  // namespace lf
