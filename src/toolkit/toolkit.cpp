#include "toolkit/toolkit.hpp"

#include "toolkit/headless.hpp"

namespace lf {

namespace {
HeadlessScreen default_screen;
ToolkitBackend* current = &default_screen;
}  // namespace

void set_toolkit_backend(ToolkitBackend* backend) {
  current = backend ? backend : &default_screen;
}
ToolkitBackend& toolkit_backend() {
  return *current;
}

void WInitialise(std::string_view arg) {
  if (current == &default_screen) {
    if (ToolkitBackend* real = real_window_backend()) current = real;
  }
  current->initialise(arg);
}
int32_t WInfoScreen(int32_t what) {
  return current->info_screen(what);
}
void WindowOpen(const WindowDescription& d) {
  current->window_open(d);
}
void WindowFont(const FontDescription& f) {
  current->window_font(f);
}
int32_t WInfoFont(int32_t what) {
  return current->info_font(what);
}
void WindowSelect(int32_t id) {
  current->window_select(id);
}
void WindowClear() {
  current->window_clear();
}
void WindowOutString(int32_t x, int32_t y, std::string_view text) {
  current->window_out_string(x, y, text);
}
void WMessage(int32_t& type, MessageInfo& info) {
  current->message(type, info, true);
}
void WMessagePeek(int32_t& type, MessageInfo& info) {
  current->message(type, info, false);
}
void WDialogLoad(int32_t id) {
  current->dialog_load(id);
}
void WDialogShow(int32_t a, int32_t b, int32_t c, int32_t d) {
  current->dialog_show(a, b, c, d);
}
void WDialogPutString(int32_t control, std::string_view text) {
  current->dialog_put_string(control, text);
}
void WDialogSelect(int32_t id) {
  current->dialog_select(id);
}
void WDialogUnload() {
  current->dialog_unload();
}
void WindowCloseChild(int32_t id) {
  current->window_close_child(id);
}
void WindowClose() {
  current->window_close();
}

}  // namespace lf
