#include "engine/channels.hpp"

#include <string>

namespace lf {

int32_t mdisplay = 0;
int32_t socket = 0;
intptr_t prnfunc = 0;
int32_t prnon = 0;

namespace {
std::string_view trim_right(std::string_view s) {
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  return s;
}
}  // namespace

int wstring(const char* text, int length) {
  if (prnon == 0) return 0;
  std::string_view line = trim_right(std::string_view(text, length > 0 ? length : 0));
  if (prnfunc > 0) {
    std::string copy(line);
    reinterpret_cast<int (*)(const char*)>(prnfunc)(copy.c_str());
  }
  return 0;
}

}  // namespace lf
