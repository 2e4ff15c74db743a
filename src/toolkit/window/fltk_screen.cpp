#include "toolkit/window/fltk_screen.hpp"

#include <FL/Fl.H>
#include <FL/Fl_Double_Window.H>
#include <FL/Fl_Text_Buffer.H>
#include <FL/Fl_Text_Editor.H>
#include <FL/fl_draw.H>
#include <FL/x.H>
#include <X11/Xlib.h>

namespace lf {

namespace {

constexpr Fl_Font kFont = FL_COURIER;
constexpr int kFontSize = 9;  // pixels: 40 lines fit into the window's 450
constexpr int32_t kLogControl = 1002;
constexpr int32_t kCloseCommand = 2;  // the command of a dialog being closed
// The log dialog: 312 by 252 dialog units of a 9-point Courier New font,
// whose character cell is about 7 by 15 pixels (a dialog unit is a quarter
// of the width and an eighth of the height).
constexpr int kDialogWidth = 312 * 7 / 4, kDialogHeight = 252 * 15 / 8;
constexpr int kDialogFontSize = 12;

// The 16 colours of the font settings, by number.
Fl_Color colour(int32_t n) {
  static const unsigned char rgb[16][3] = {
      {0, 0, 0},     {0, 0, 128},     {0, 128, 0},     {0, 128, 128},  {128, 0, 0}, {128, 0, 128},
      {128, 128, 0}, {192, 192, 192}, {128, 128, 128}, {0, 0, 255},    {0, 255, 0}, {0, 255, 255},
      {255, 0, 0},   {255, 0, 255},   {255, 255, 0},   {255, 255, 255}};
  const auto& c = rgb[n & 15];
  return fl_rgb_color(c[0], c[1], c[2]);
}

}  // namespace

class PageWindow : public Fl_Double_Window {
 public:
  PageWindow(FltkScreen& owner, int x, int y, int w, int h, const char* title)
      : Fl_Double_Window(x, y, w, h), owner_(owner) {
    copy_label(title);
    callback([](Fl_Widget*, void* self) { static_cast<PageWindow*>(self)->on_close(); }, this);
    resizable(this);
  }

  void draw() override {
    fl_color(colour(owner_.bg_));
    fl_rectf(0, 0, w(), h());
    fl_font(kFont, kFontSize);
    for (const auto& d : owner_.screen_) {
      fl_color(colour(d.bg));
      fl_rectf(d.x, d.y - fl_height() + fl_descent(), static_cast<int>(fl_width(d.text.c_str())),
               fl_height());
      fl_color(colour(d.fg));
      fl_draw(d.text.c_str(), d.x, d.y);
    }
  }

  int handle(int event) override {
    switch (event) {
      case FL_KEYBOARD:
      case FL_SHORTCUT:
        key();
        return 1;
      case FL_FOCUS:
        owner_.post(kMsgActivate, 0, 0);
        return 1;
      case FL_UNFOCUS:
        owner_.post(kMsgDeactivate, 0, 0);
        return 1;
      default:
        return Fl_Double_Window::handle(event);
    }
  }

  void resize(int x, int y, int w, int h) override {
    const bool sized = w != this->w() || h != this->h();
    Fl_Double_Window::resize(x, y, w, h);
    if (sized && shown()) owner_.post(kMsgResize, 0, 0);
  }

 private:
  void key() {
    const int k = Fl::event_key();
    if (k == FL_Escape) {
      owner_.post(kMsgKey, 0, kEscapeKey);
    } else if (Fl::event_length() > 0) {
      owner_.post(kMsgKey, 0, static_cast<unsigned char>(Fl::event_text()[0]));
    }
  }
  // The window's callback runs when the user closes it (and for an Escape
  // that no widget took).
  void on_close() {
    if ((Fl::event() == FL_SHORTCUT || Fl::event() == FL_KEYBOARD) && Fl::event_key() == FL_Escape)
      key();
    else
      owner_.post(kMsgClose, 0, 0);
  }
  FltkScreen& owner_;
};

class LogDialog : public Fl_Double_Window {
 public:
  LogDialog(FltkScreen& owner, int32_t id)
      : Fl_Double_Window(kDialogWidth, kDialogHeight, "Iteration Process"),
        text_(0, 0, kDialogWidth, kDialogHeight) {
    text_.buffer(&buffer_);
    text_.textfont(kFont);
    text_.textsize(kDialogFontSize);
    resizable(&text_);
    end();
    callback(
        [](Fl_Widget*, void* data) {
          auto* self = static_cast<LogDialog*>(data);
          self->owner_->post(kMsgCommand, self->id_, kCloseCommand);
        },
        this);
    owner_ = &owner;
    id_ = id;
  }
  ~LogDialog() override { text_.buffer(nullptr); }
  Fl_Text_Buffer buffer_;

 private:
  Fl_Text_Editor text_;  // the multi-line edit box, control 1002, with both scroll bars
  FltkScreen* owner_ = nullptr;
  int32_t id_ = 0;
};

std::string FltkScreen::dialog_text() const {
  if (!dialog_) return {};
  char* t = dialog_->buffer_.text();
  std::string s(t);
  free(t);
  return s;
}

unsigned long FltkScreen::window_id() const {
  return window_ && window_->shown() ? fl_xid(window_) : 0;
}

void FltkScreen::post(int32_t type, int32_t window, int32_t value) {
  queue_.push_back({type, {window, value}});
}

void FltkScreen::initialise(std::string_view) {
  if (!fl_display) fl_open_display(display_);
}

int32_t FltkScreen::info_screen(int32_t what) {
  return what == 1 ? Fl::w() : what == 2 ? Fl::h() : 0;
}

void FltkScreen::window_open(const WindowDescription& d) {
  const std::string title(d.title.trimmed());
  if (!window_) {
    window_ = new PageWindow(*this, d.x, d.y, d.width, d.height, title.c_str());
    window_->end();
  } else {
    window_->resize(d.x, d.y, d.width, d.height);
    window_->copy_label(title.c_str());
  }
  screen_.clear();
  queue_.clear();
  window_->show();
  Fl::check();
}

void FltkScreen::window_font(const FontDescription& f) {
  if (f[6] >= 0) fg_ = f[6];
  if (f[7] >= 0) bg_ = f[7];
}

int32_t FltkScreen::info_font(int32_t) {
  fl_font(kFont, kFontSize);
  return fl_height();
}

void FltkScreen::window_select(int32_t) {}

void FltkScreen::window_clear() {
  screen_.clear();
  if (window_) window_->redraw();
}

void FltkScreen::window_out_string(int32_t x, int32_t y, std::string_view text) {
  screen_.push_back({x, y, std::string(text), fg_, bg_});
  if (!window_) return;
  window_->redraw();
  Fl::flush();
}

void FltkScreen::message(int32_t& type, MessageInfo& info, bool wait) {
  if (wait) {
    while (queue_.empty()) {
      // With every window gone nothing can come any more: that is a close.
      if (!Fl::first_window())
        post(kMsgClose, 0, 0);
      else
        Fl::wait();
    }
  } else {
    Fl::check();
  }
  if (queue_.empty()) {
    type = kMsgNone;
    info = MessageInfo{};
    return;
  }
  type = queue_.front().type;
  info = queue_.front().info;
  queue_.pop_front();
}

void FltkScreen::dialog_load(int32_t id) {
  dialog_unload();
  dialog_ = new LogDialog(*this, id);
  dialog_id_ = id;
}

void FltkScreen::dialog_show(int32_t, int32_t, int32_t, int32_t) {
  if (!dialog_) return;
  dialog_->show();
  Fl::check();
}

void FltkScreen::dialog_put_string(int32_t control, std::string_view text) {
  if (!dialog_ || control != kLogControl) return;
  std::string lines;  // the log's lines end in carriage return and line feed
  for (char c : text)
    if (c != '\r') lines += c;
  dialog_->buffer_.text(lines.c_str());
}

void FltkScreen::dialog_select(int32_t) {}

void FltkScreen::dialog_unload() {
  if (!dialog_) return;
  dialog_->hide();
  Fl::delete_widget(dialog_);
  dialog_ = nullptr;
  dialog_id_ = 0;
}

void FltkScreen::window_close_child(int32_t id) {
  if (id == dialog_id_) dialog_unload();
}

void FltkScreen::window_close() {
  dialog_unload();
  if (window_) window_->hide();
  Fl::check();
}

}  // namespace lf

// The module's entry point: the real window, or null when no display can be
// opened (the headless screen serves then).
extern "C" lf::ToolkitBackend* lf_window_backend() {
  using lf::FltkScreen;
  // A real window needs a display to open; without one the headless
  // screen serves.
  // The connection stays open for the window: an X server resets when its
  // last client leaves, and a connection made during the reset fails.
  static FltkScreen screen;
  if (!screen.display_) screen.display_ = XOpenDisplay(nullptr);
  return screen.display_ ? &screen : nullptr;
}
