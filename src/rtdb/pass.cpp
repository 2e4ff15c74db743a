#include "rtdb/pass.hpp"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "io/channels.hpp"
#include "support/fmt.hpp"

namespace lf {

// These messages go to the process's standard output as a plain printed
// line (a blank, then the items), not to the engine's output channels.
void say_bind_failed(const char* message, Say where) {
  if (where == Say::Wstring)
    wstring(message);
  else
    std::printf(" %s\n", message);
}

void check_fetch(int count, const char* message, int min_count) {
  if (message && count < min_count) std::printf(" %s%s\n", message, fmt_i(count, 12).c_str());
}

bool read_int(const char* text, int width, int32_t& value) {
  std::string s(text, strnlen(text, static_cast<std::size_t>(width)));
  std::size_t b = s.find_first_not_of(' ');
  if (b == std::string::npos) return false;
  std::size_t e = s.find_first_of(" ,/", b);
  std::string token = s.substr(b, e == std::string::npos ? std::string::npos : e - b);
  if (token.empty()) return false;
  char* end = nullptr;
  errno = 0;
  long v = std::strtol(token.c_str(), &end, 10);
  if (*end != '\0' || errno != 0 || v < INT32_MIN || v > INT32_MAX) return false;
  value = static_cast<int32_t>(v);
  return true;
}

void close_pass(const TablePass& p, bool writing) {
  cli_free(p.stmt);
  if (writing) cli_precommit(RTDBLSCMN.session);
}

}  // namespace lf
