// The real progress window: the toolkit's operations on an on-screen window
// of the FLTK library.  The main window shows the page of text drawn into
// it; the log dialog "Iteration Process" is a window with a multi-line edit
// box.  The user's actions become the toolkit's messages: a key gives
// kMsgKey with its code (Escape 27), closing the main window kMsgClose,
// closing the dialog kMsgCommand with value 2, focus changes kMsgActivate
// and kMsgDeactivate, a change of size kMsgResize.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "toolkit/toolkit.hpp"

struct _XDisplay;
// The entry point of the window module (see toolkit/window/window_module.cpp).
extern "C" lf::ToolkitBackend* lf_window_backend();

namespace lf {

class PageWindow;
class LogDialog;

class FltkScreen : public ToolkitBackend {
 public:
  struct Drawn {
    int32_t x, y;      // position of the text's baseline start, pixels
    std::string text;  // the text as drawn
    int32_t fg, bg;    // colours (0 to 15) it was drawn in
  };
  struct Message {
    int32_t type;
    MessageInfo info;
  };

  // What the window shows now, and the text of the log dialog's edit box
  // (empty while no dialog is loaded).
  const std::vector<Drawn>& screen() const { return screen_; }
  std::string dialog_text() const;
  // The X window of the main window, 0 while it is not shown.
  unsigned long window_id() const;
  // Queues a message, as an action of the user does.
  void post(int32_t type, int32_t window, int32_t value);

  void initialise(std::string_view arg) override;
  int32_t info_screen(int32_t what) override;
  void window_open(const WindowDescription& d) override;
  void window_font(const FontDescription& f) override;
  int32_t info_font(int32_t what) override;
  void window_select(int32_t id) override;
  void window_clear() override;
  void window_out_string(int32_t x, int32_t y, std::string_view text) override;
  void message(int32_t& type, MessageInfo& info, bool wait) override;
  void dialog_load(int32_t id) override;
  void dialog_show(int32_t a, int32_t b, int32_t c, int32_t d) override;
  void dialog_put_string(int32_t control, std::string_view text) override;
  void dialog_select(int32_t id) override;
  void dialog_unload() override;
  void window_close_child(int32_t id) override;
  void window_close() override;

 private:
  friend class PageWindow;
  friend ToolkitBackend* ::lf_window_backend();
  _XDisplay* display_ = nullptr;  // the connection to the X server, opened once
  PageWindow* window_ = nullptr;  // the main window, made once and kept
  LogDialog* dialog_ = nullptr;   // the loaded dialog, null when none
  int32_t dialog_id_ = 0;         // number of the loaded dialog
  std::vector<Drawn> screen_;     // what the main window shows
  std::deque<Message> queue_;     // messages not yet taken
  int32_t fg_ = 0, bg_ = 15;      // present text colours
};

}  // namespace lf
