// The lines the engine prints, caught through the host callback in order.
#pragma once

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <string>
#include <vector>

#include "io/channels.hpp"

namespace lf::test {

inline std::vector<std::string> printed;
inline bool echo_printed = false;  // also to standard error, where death tests look

inline int keep_printed(const char* line) {
  printed.emplace_back(line);
  if (echo_printed) std::fprintf(stderr, "%s\n", line);
  return 0;
}

// From now on every line goes to `printed` (emptied) and to no other channel.
inline void capture_printed(bool echo = false) {
  printed.clear();
  echo_printed = echo;
  mdisplay = 0;
  socket = 0;
  prnon = 1;
  prnfunc = reinterpret_cast<intptr_t>(&keep_printed);
}

inline void stop_capture() {
  prnon = 0;
  prnfunc = 0;
}

inline int count_printed(const std::string& line) {
  return static_cast<int>(std::count(printed.begin(), printed.end(), line));
}

// A row of an iteration table: four blanks, then the count in three columns.
inline bool table_row(const std::string& l) {
  return l.size() > 8 && l.compare(0, 4, "    ") == 0 &&
         std::isdigit(static_cast<unsigned char>(l[6])) && l[7] == ' ';
}

}  // namespace lf::test
