#include "toolkit/headless.hpp"

namespace lf {

void HeadlessScreen::initialise(std::string_view) {
  initialised = true;
}

int32_t HeadlessScreen::info_screen(int32_t what) {
  return what == 1 ? width : what == 2 ? height : 0;
}

void HeadlessScreen::window_open(const WindowDescription& d) {
  window = d;
  open = true;
  closed = false;
}

void HeadlessScreen::window_font(const FontDescription& f) {
  fonts.push_back(f);
}

int32_t HeadlessScreen::info_font(int32_t) {
  return font_metric;
}

void HeadlessScreen::window_select(int32_t id) {
  selected = id;
}

void HeadlessScreen::window_clear() {
  ++clears;
  screen.clear();
}

void HeadlessScreen::window_out_string(int32_t x, int32_t y, std::string_view text) {
  screen.push_back({x, y, std::string(text)});
  drawn.push_back({x, y, std::string(text)});
}

void HeadlessScreen::message(int32_t& type, MessageInfo& info, bool wait) {
  ++(wait ? waits : peeks);
  if (!script.empty()) {
    type = script.front().type;
    info = script.front().info;
    script.pop_front();
  } else if (wait) {
    type = kMsgClose;
    info = MessageInfo{};
  } else {
    type = kMsgNone;
    info = MessageInfo{};
  }
}

void HeadlessScreen::dialog_load(int32_t id) {
  dialog_loaded = id;
}

void HeadlessScreen::dialog_show(int32_t, int32_t, int32_t, int32_t) {
  dialog_shown = true;
}

void HeadlessScreen::dialog_put_string(int32_t control, std::string_view text) {
  dialog_control = control;
  dialog_text = std::string(text);
}

void HeadlessScreen::dialog_select(int32_t id) {
  dialog_selected = id;
}

void HeadlessScreen::dialog_unload() {
  unloaded.push_back(dialog_selected);
  dialog_loaded = 0;
  dialog_shown = false;
}

void HeadlessScreen::window_close_child(int32_t id) {
  children_closed.push_back(id);
}

void HeadlessScreen::window_close() {
  open = false;
  closed = true;
}

}  // namespace lf
