#include "rtdb/pass.hpp"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "io/channels.hpp"
#include "support/fmt.hpp"

namespace lf {

RTDBFAILRec RTDBFAIL;

void fail(const TablePass& p, const std::string& what) {
  if (RTDBFAIL.text.empty()) RTDBFAIL.text = "table " + p.table + ": " + what;
}

void fail_row(const TablePass& p, const std::string& what) {
  if (RTDBFAIL.text.empty())
    RTDBFAIL.text = "table " + p.table + " record " + std::to_string(p.row) + ": " + what;
}

// These messages go to the process's standard output as a plain printed
// line (a blank, then the items), not to the engine's output channels.
void say_bind_failed(const char* message, Say where) {
  if (where == Say::Wstring)
    wstring(message);
  else
    std::printf(" %s\n", message);
}

void check_fetch(const TablePass& p, const char* message, int min_count) {
  const bool said = message && p.count < min_count;
  if (said) std::printf(" %s%s\n", message, fmt_i(p.count, 12).c_str());
  if (p.count < 0) fail(p, "cli_fetch failed with code " + std::to_string(p.count));
}

bool next_row(TablePass& p) {
  const int rc = cli_get_next(p.stmt);
  if (rc == cli_ok) ++p.row;
  if (rc != cli_ok && rc != cli_not_found)
    fail(p, "cli_get_next failed with code " + std::to_string(rc));
  return rc == cli_ok;
}

void update_row(const TablePass& p) {
  if (int rc = cli_update(p.stmt); rc != cli_ok)
    fail(p, "cli_update failed with code " + std::to_string(rc));
}

bool in_range(const TablePass& p, const char* what, int32_t value, int32_t top) {
  if (value >= 1 && value <= top) return true;
  fail_row(
      p, std::string(what) + " " + std::to_string(value) + " is not in 1.." + std::to_string(top));
  return false;
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

std::string table_of(const std::string& statement) {
  std::size_t from = statement.find(" from ");
  if (from == std::string::npos) return statement;
  std::size_t b = from + 6, e = statement.find(' ', b);
  return statement.substr(b, e == std::string::npos ? std::string::npos : e - b);
}

void close_pass(const TablePass& p) {
  cli_free(p.stmt);
}

}  // namespace lf
