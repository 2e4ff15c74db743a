// The window toolkit: the operations behind the progress window, as free
// functions that forward to the backend chosen at start.  WInitialise opens
// the real window where there is one; otherwise, and without a choice, the
// headless screen serves, so a machine without a display needs nothing.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "support/arr.hpp"

namespace lf {

// What WindowOpen needs: flags, position, size, the window kind and a title.
struct WindowDescription {
  int32_t flags = 0, x = 0, y = 0, width = 0, height = 0, kind = 0;
  Text<80> title;
};

// A font setting: 1, 0, 0, 0, 0, 0, foreground, background (-1 leaves a
// colour as it is).
using FontDescription = std::array<int32_t, 8>;

// What a message carries: the window it concerns and a value (a key code,
// a command number).
struct MessageInfo {
  int32_t window = 0;
  int32_t value = 0;
};

// Message types that the engine acts on.
constexpr int32_t kMsgNone = -1;       // WMessagePeek: nothing waiting
constexpr int32_t kMsgKey = 1;         // a key; value 27 is Escape
constexpr int32_t kMsgCommand = 3;     // a command of a dialog
constexpr int32_t kMsgActivate = 4;    // the window gains the focus
constexpr int32_t kMsgDeactivate = 5;  // the window loses the focus
constexpr int32_t kMsgExpose = 7;      // the window needs repainting
constexpr int32_t kMsgResize = 8;      // the window changed size; repaint
constexpr int32_t kMsgClose = 9;       // the user closes a window
constexpr int32_t kEscapeKey = 27;

class ToolkitBackend {
 public:
  virtual ~ToolkitBackend() = default;
  virtual void initialise(std::string_view arg) = 0;
  virtual int32_t info_screen(int32_t what) = 0;
  virtual void window_open(const WindowDescription& d) = 0;
  virtual void window_font(const FontDescription& f) = 0;
  virtual int32_t info_font(int32_t what) = 0;
  virtual void window_select(int32_t id) = 0;
  virtual void window_clear() = 0;
  virtual void window_out_string(int32_t x, int32_t y, std::string_view text) = 0;
  // Takes the next message; without wait, type is kMsgNone when none is there.
  virtual void message(int32_t& type, MessageInfo& info, bool wait) = 0;
  virtual void dialog_load(int32_t id) = 0;
  virtual void dialog_show(int32_t a, int32_t b, int32_t c, int32_t d) = 0;
  virtual void dialog_put_string(int32_t control, std::string_view text) = 0;
  virtual void dialog_select(int32_t id) = 0;
  virtual void dialog_unload() = 0;
  virtual void window_close_child(int32_t id) = 0;
  virtual void window_close() = 0;
};

// The on-screen window when the build has a window library, its module can
// be loaded and a display can be opened, else nullptr.  WInitialise takes it
// in place of the built-in headless screen.
ToolkitBackend* real_window_backend();

// Chooses the backend; nullptr goes back to the built-in headless screen.
void set_toolkit_backend(ToolkitBackend* backend);
ToolkitBackend& toolkit_backend();

void WInitialise(std::string_view arg);
int32_t WInfoScreen(int32_t what);  // 1: width, 2: height, in pixels
void WindowOpen(const WindowDescription& d);
void WindowFont(const FontDescription& f);
int32_t WInfoFont(int32_t what);
void WindowSelect(int32_t id);
void WindowClear();
void WindowOutString(int32_t x, int32_t y, std::string_view text);
void WMessage(int32_t& type, MessageInfo& info);
void WMessagePeek(int32_t& type, MessageInfo& info);
void WDialogLoad(int32_t id);
void WDialogShow(int32_t a, int32_t b, int32_t c, int32_t d);
void WDialogPutString(int32_t control, std::string_view text);
void WDialogSelect(int32_t id);
void WDialogUnload();
void WindowCloseChild(int32_t id);
void WindowClose();

}  // namespace lf
