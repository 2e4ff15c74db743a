#include "engine/errlist.hpp"

#include <cstdio>
#include <string>

#include "engine/channels.hpp"
#include "support/freeread.hpp"

namespace lf {

namespace {

constexpr const char* kErrListFile = "LFERR.LIS";
std::FILE* errlist = nullptr;

// The framing lines go out 49 characters long, trailing blanks included.
void frame(std::string_view text) {
  std::string line(text);
  line.resize(49, ' ');
  wstring(line);
}

}  // namespace

void errlist_open() {
  errlist_close();
  std::remove(kErrListFile);
  errlist = std::fopen(kErrListFile, "w");
  if (!errlist) return;
  std::fputc(' ', errlist);
  errlist_write(kErrListHeader);
}

void errlist_write(std::string_view line) {
  if (!errlist) return;
  std::fwrite(line.data(), 1, line.size(), errlist);
  std::fputc('\n', errlist);
}

void errlist_close() {
  if (errlist) std::fclose(errlist);
  errlist = nullptr;
}

void serror() {
  if (!errlist) return;
  std::fflush(errlist);
  FreeReader in(kErrListFile);
  std::string line;
  int count = 0;
  while (in.line(line)) {
    line.resize(80, ' ');  // lines are read as 80 characters
    ++count;
    if (count == 1) continue;  // the header
    if (count == 2) frame("    ****** Operation Error Information ******");
    wstring(line);
  }
  if (count >= 2) frame("    *****************************************");
}

}  // namespace lf
