#include "io/channels.hpp"

#include "io/msglink.hpp"
#include "toolkit/toolkit.hpp"

namespace lf {

int32_t mdisplay = 0;
int32_t socket = 0;
intptr_t prnfunc = 0;
int32_t prnon = 0;
WSTRLOCRec WSTRLOC;
std::string cfact;

namespace {

// 1.05 held in single precision.
constexpr double kLineSpacing = 1.0499999523162842;

std::string_view trim_right(std::string_view s) {
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  return s;
}

// Appends one line to the log: the log without its trailing blanks, the line
// without its own, carriage return and line feed, all cut at the capacity.
// A full log keeps its beginning; later lines are lost.
void log_line(std::string_view line) {
  cfact.resize(trim_right(cfact).size());
  cfact.append(line);
  cfact.append("\r\n");
  if (cfact.size() > kLogSize) cfact.resize(kLogSize);
}

void to_window(std::string_view text) {
  WSTRLOCRec& w = WSTRLOC;
  WindowSelect(0);
  if (++w.wline > kPageLines) {
    w.wline = 1;
    w.wy = 0;
    ++w.wpage;
    WindowClear();
  }
  w.wy += w.wheight;
  WindowOutString(kTextX, w.wy, text);
  w.wtext[static_cast<std::size_t>(w.wline)] = text;
  log_line(trim_right(text));
}

void to_link(std::string_view line) {
  int32_t status = 0;
  msgsend(kMsgLine, line.data(), static_cast<int32_t>(line.size()), status);
}

void to_callback(std::string_view line) {
  std::string copy(line);
  reinterpret_cast<int (*)(const char*)>(prnfunc)(copy.c_str());
}

// Escape stops the calculation: the message goes out in colour 9 on 15,
// then the font goes back to colour 0.  Returns 1 for Escape, else 0.
int32_t stop_on_escape(int32_t type, const MessageInfo& info) {
  if (type != kMsgKey || info.value != kEscapeKey) return 0;
  WindowFont({1, 0, 0, 0, 0, 0, 9, 15});
  wstring("Calculation Termination!......");
  WindowFont({1, 0, 0, 0, 0, 0, 0, 15});
  return 1;
}

// The message waiting on the main window, if any (kMsgNone otherwise).
int32_t peek_main(MessageInfo& info) {
  int32_t type = kMsgNone;
  WindowSelect(0);
  WMessagePeek(type, info);
  return type;
}

}  // namespace

std::string cfact_text() {
  std::string s = cfact;
  s.resize(kLogSize, ' ');
  return s;
}

void clear_cfact() {
  cfact.clear();
}

int32_t line_height() {
  return static_cast<int32_t>(kLineSpacing * WInfoFont(10));
}

int wstring(const char* text, int length) {
  if (prnon == 0) return 0;
  std::string_view all(text, length > 0 ? static_cast<std::size_t>(length) : 0);
  if (mdisplay != 0) to_window(all);
  std::string_view line = trim_right(all);
  if (socket != 0) to_link(line);
  if (prnfunc > 0) to_callback(line);
  return 0;
}

void itrupt(int32_t& flag) {
  MessageInfo info;
  const int32_t type = peek_main(info);
  flag = stop_on_escape(type, info);
}

void itrupt1(int32_t& flag) {
  flag = 0;
  MessageInfo info;
  int32_t type = peek_main(info);
  if (type != kMsgKey) return;
  do {
    WMessagePeek(type, info);
  } while (type != kMsgKey && type != kMsgActivate && type != kMsgDeactivate);
  flag = stop_on_escape(type, info);
}

}  // namespace lf
