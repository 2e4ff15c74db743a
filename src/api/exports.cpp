// The four functions that a host calls: LFInit once, LFCal and LFPstring in
// any number, LFFinilize once at the end.
#include <cstddef>
#include <cstring>
#include <exception>
#include <new>
#include <string>
#include <string_view>

#include "driver/newlf.hpp"
#include "io/channels.hpp"
#include "io/msglink.hpp"
#include "lfengine.h"
#include "store/store.hpp"
#include "support/stop.hpp"
#include "toolkit/toolkit.hpp"

namespace lf {
namespace {

constexpr int32_t kLinkUp = 1;    // body of the status message at start
constexpr int32_t kLinkDown = 2;  // body of the status message at the end
constexpr int32_t kLogDialog = 101;
constexpr int32_t kLogControl = 1002;
constexpr int kModeMagnetising = 2;      // LFInit's mode that counts the magnetising branches
constexpr std::size_t kTitleWidth = 80;  // the window title: 80 bytes, blank padded

// The progress window: placed at (380, 70) of an 800 x 600 screen, scaled to
// the real one, 350 by 450 pixels, with the toolkit's style flags and kind.
constexpr int32_t kWindowX = 380, kWindowY = 70, kDesignWidth = 800, kDesignHeight = 600;
constexpr int32_t kWindowWidth = 350, kWindowHeight = 450;
constexpr int32_t kWindowFlags = 5, kWindowKind = 30001;

void send_status(int32_t value) {
  int32_t status = 0;
  msgsend(kMsgStatus, &value, 4, status);
}

// Makes the bytes from the NUL to the end of an 80-byte text blanks, in
// place; a text without a NUL is left as it is.  Returns its first 80 bytes.
std::string_view blank_pad(char* text) {
  if (void* nul = std::memchr(text, '\0', kTitleWidth)) {
    char* p = static_cast<char*>(nul);
    std::memset(p, ' ', static_cast<std::size_t>(text + kTitleWidth - p));
  }
  return std::string_view(text, kTitleWidth);
}

void open_window(char* title) {
  WInitialise(" ");
  const int32_t w = WInfoScreen(1), h = WInfoScreen(2);
  WindowDescription d;
  d.flags = kWindowFlags;
  d.x = kWindowX * w / kDesignWidth;
  d.y = kWindowY * h / kDesignHeight;
  d.width = kWindowWidth;
  d.height = kWindowHeight;
  d.kind = kWindowKind;
  d.title = blank_pad(title);
  WindowOpen(d);
  WindowFont({1, 0, 0, 0, 0, 0, -1, -1});
  WSTRLOC.wheight = line_height();
  clear_cfact();
  WSTRLOC.wy = 0;
  WSTRLOC.wline = 0;
  WSTRLOC.wpage = 1;
}

// Draws the present page again, each line with its full 80 characters.
void repaint() {
  WindowClear();
  WindowSelect(0);
  WSTRLOC.wheight = line_height();
  for (int32_t i = 1; i <= WSTRLOC.wline; ++i) {
    WindowOutString(kTextX, i * WSTRLOC.wheight, WSTRLOC.wtext[static_cast<std::size_t>(i)].view());
  }
}

void close_link() {
  CloseConnection();
  socket = 0;
}

int init(int* flags, char* title, int* session, intptr_t* callback, int* mode) {
  int result = *flags;
  mdisplay = (*flags & LF_FLAG_WINDOW) ? 1 : 0;
  prnfunc = *callback;
  prnon = (*flags & LF_FLAG_PRINT) ? 1 : 0;
  RMXMVALID = *mode == kModeMagnetising ? 1 : 0;
  if (mdisplay != 0) open_window(title);
  socket = 0;
  if (*flags & LF_FLAG_LINK) {
    if (InitConnection(nullptr) == 0) {
      socket = 1;
      send_status(kLinkUp);
    } else {
      wstring("Fail to initialize Socket!");
      result &= ~LF_FLAG_LINK;
    }
  }
  RTDBLSCMN.session = *session;
  RTDBLSCMN.rtdbmode = *session > 0 ? 1 : 0;
  return result;
}

int cal(int* flags) {
  int32_t saved_socket = socket;
  const int32_t saved_mdisplay = mdisplay;
  const int32_t saved_prnon = prnon;
  // Without the link bit the link still carries this calculation, but falls
  // silent for good when it ends.
  if (socket != 0 && !(*flags & LF_FLAG_LINK)) saved_socket = 0;
  if (mdisplay != 0 && !(*flags & LF_FLAG_WINDOW)) mdisplay = 0;
  prnon = (*flags & LF_FLAG_PRINT) ? 1 : 0;
  NLFAST = (*flags & LF_FLAG_NONLINEAR) ? 1 : 0;
  int32_t convergent = 0;
  newlf(convergent);
  socket = saved_socket;
  mdisplay = saved_mdisplay;
  prnon = saved_prnon;
  return convergent == 0 ? 1 : 0;
}

int finish() {
  if (socket != 0) send_status(kLinkDown);
  if (mdisplay == 0) {
    if (socket != 0) close_link();
    return 0;
  }
  if (WSTRLOC.wpage >= 2) {
    // The run did not fit on one page: show the whole log.
    WDialogLoad(kLogDialog);
    WDialogShow(1, 1, 0, 2);
    std::string log = cfact;
    while (!log.empty() && log.back() == ' ') log.pop_back();
    WDialogPutString(kLogControl, log);
  }
  for (;;) {
    int32_t type = kMsgNone;
    MessageInfo info;
    WMessage(type, info);
    if (type == kMsgCommand) {
      if (info.value == 2) {
        WDialogSelect(info.window);
        WDialogUnload();
      }
    } else if (type == kMsgExpose || type == kMsgResize) {
      repaint();
    } else if (type == kMsgClose) {
      if (info.window != 0) {
        WindowCloseChild(info.window);
      } else {
        WindowClose();
        if (socket != 0) close_link();
        return 0;
      }
    }
  }
}

int pstring(char* text) {
  wstring(blank_pad(text));
  return 0;
}

// Nothing may leave an export but its result: an exception thrown inside
// the engine (a failed allocation above all) ends the call with a stop text
// and status 1.
template <typename Body>
int guarded(const char* name, Body body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    print_stop_text(std::string(name) + ": out of memory");
  } catch (const std::exception& e) {
    print_stop_text(std::string(name) + ": " + e.what());
  } catch (...) {
    print_stop_text(std::string(name) + ": unexpected failure");
  }
  return 1;
}

}  // namespace
}  // namespace lf

using lf::guarded;

extern "C" int LFInit(int* flags, char* title, int* session, intptr_t* callback, int* mode) {
  return guarded("LFInit", [&] { return lf::init(flags, title, session, callback, mode); });
}

extern "C" int LFCal(int* flags) {
  return guarded("LFCal", [&] { return lf::cal(flags); });
}

extern "C" int LFFinilize(void) {
  return guarded("LFFinilize", [] { return lf::finish(); });
}

extern "C" int LFPstring(char* text) {
  return guarded("LFPstring", [&] { return lf::pstring(text); });
}
