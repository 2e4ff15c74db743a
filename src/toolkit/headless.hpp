// The headless screen: a toolkit backend without a display.  It records what
// is drawn and what is done to the windows and the dialog, and hands out
// messages from a script.  When the script is used up, a waiting read gets
// the closing of the main window, so a run without a user always ends.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "toolkit/toolkit.hpp"

namespace lf {

class HeadlessScreen : public ToolkitBackend {
 public:
  struct Drawn {
    int32_t x, y;
    std::string text;
  };
  struct Message {
    int32_t type;
    MessageInfo info;
  };

  // Settings the screen reports.
  int32_t width = 800, height = 600, font_metric = 16;

  // What has happened so far.
  bool initialised = false, open = false, closed = false;
  WindowDescription window;
  std::vector<FontDescription> fonts;  // every font setting in order
  int32_t selected = -1;               // last window made current
  int32_t clears = 0;
  std::vector<Drawn> screen;  // what is drawn since the last clearing
  std::vector<Drawn> drawn;   // everything ever drawn
  int32_t dialog_loaded = 0;  // id of the loaded dialog, 0 for none
  bool dialog_shown = false;
  std::string dialog_text;     // the text put into the dialog's control
  int32_t dialog_control = 0;  // the control it went to
  int32_t dialog_selected = 0;
  std::vector<int32_t> unloaded;  // the dialogs unloaded, by the number selected
  std::vector<int32_t> children_closed;
  int32_t peeks = 0, waits = 0;  // messages asked for, without and with waiting

  std::deque<Message> script;  // messages still to come
  void post(int32_t type, int32_t window, int32_t value) {
    script.push_back({type, {window, value}});
  }

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
};

}  // namespace lf
