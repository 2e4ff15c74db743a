// The real progress window on an X server: what it shows, the page change
// after 40 lines, the log dialog at the end, and the Escape key stopping a
// long iteration.  The user's actions come from outside the process, as
// from a user: xdotool presses the key, and a window manager's request to
// close the window is sent to it.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "io/channels.hpp"
#include "lfengine.h"
#include "toolkit/window/fltk_screen.hpp"
// After the test framework, whose names the X headers would take as macros.
#include <X11/Xlib.h>

namespace lf::test {
namespace {

std::vector<std::string> lines;
int keep(const char* line) {
  lines.push_back(line);
  return 0;
}

class Window : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!std::getenv("DISPLAY")) GTEST_SKIP() << "no X server (xvfb-run is not installed)";
    if (std::system("command -v xdotool >/dev/null") != 0)
      GTEST_SKIP() << "xdotool is not installed";
  }
  // Starts the engine with the window; the real window must serve.
  FltkScreen& open(const char* title) {
    char text[80] = {};
    std::strncpy(text, title, sizeof text - 1);
    int flags = LF_FLAG_WINDOW | LF_FLAG_PRINT, session = 0, mode = 0;
    intptr_t callback = reinterpret_cast<intptr_t>(&keep);
    lines.clear();
    LFInit(&flags, text, &session, &callback, &mode);
    auto* screen = dynamic_cast<FltkScreen*>(&toolkit_backend());
    if (!screen) ADD_FAILURE() << "the headless screen serves where a display is";
    return *screen;
  }
};

// A child process that waits for the log dialog to appear on the screen
// (when asked), then asks the main window to close as a window manager
// does.  Its exit status is 0 when all went so, 1 when the dialog did not
// come (the window is closed all the same).
pid_t close_later(unsigned long window, bool after_dialog) {
  const pid_t pid = fork();
  if (pid != 0) return pid;
  const bool missed =
      after_dialog &&
      std::system("timeout 20 xdotool search --sync --name '^Iteration Process$' >/dev/null") != 0;
  Display* d = XOpenDisplay(nullptr);
  if (!d) _exit(2);
  XEvent e{};
  e.xclient.type = ClientMessage;
  e.xclient.window = window;
  e.xclient.message_type = XInternAtom(d, "WM_PROTOCOLS", False);
  e.xclient.format = 32;
  e.xclient.data.l[0] = static_cast<long>(XInternAtom(d, "WM_DELETE_WINDOW", False));
  e.xclient.data.l[1] = CurrentTime;
  XSendEvent(d, window, False, NoEventMask, &e);
  XCloseDisplay(d);
  _exit(missed ? 1 : 0);
}

void finish_after_close(FltkScreen& screen, bool after_dialog) {
  const pid_t closer = close_later(screen.window_id(), after_dialog);
  LFFinilize();  // returns once the window is closed
  int status = -1;
  waitpid(closer, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), 0) << (after_dialog ? "no log dialog on the screen" : "");
  EXPECT_EQ(screen.window_id(), 0u);
}

TEST_F(Window, ShowsThePageThenTheLogDialogAtTheEnd) {
  FltkScreen& screen = open("LF window test");
  ASSERT_NE(screen.window_id(), 0u);
  for (int k = 1; k <= 41; ++k) {
    char line[80] = {};
    std::snprintf(line, sizeof line, "line %d", k);
    LFPstring(line);
    if (k == 40) {
      ASSERT_EQ(screen.screen().size(), 40u);
      EXPECT_EQ(screen.screen().front().text.substr(0, 7), "line 1 ");
      EXPECT_EQ(screen.screen().back().y, 40 * WSTRLOC.wheight);
    }
  }
  // The 41st line starts a new page at the top.
  ASSERT_EQ(screen.screen().size(), 1u);
  EXPECT_EQ(screen.screen()[0].text.substr(0, 8), "line 41 ");
  EXPECT_EQ(screen.screen()[0].y, WSTRLOC.wheight);
  EXPECT_EQ(WSTRLOC.wpage, 2);

  finish_after_close(screen, true);
}

TEST_F(Window, EscapeStopsALongIterationWithStatusZero) {
  // The 14-bus case with a tolerance that no iteration meets runs until
  // the key stops it.
  namespace fs = std::filesystem;
  for (const char* ext : {".L0", ".L1", ".L2", ".L3", ".L5", ".L6"})
    fs::copy_file(std::string(LF_EXAMPLES_DIR) + "/ieee14/IEEE14" + ext, std::string("LF") + ext,
                  fs::copy_options::overwrite_existing);
  std::ofstream("LF.L0") << "14 18 3 0 5 11 0 0 0 0 0\n100 1.1 0.9 -1 1 100000000 0 0 0 0\n";
  FltkScreen& screen = open("LF escape test");
  ASSERT_EQ(std::system("xdotool search --sync --name '^LF escape test$' windowfocus --sync "
                        "key Escape >/dev/null 2>&1 &"),
            0);
  int flags = LF_FLAG_WINDOW | LF_FLAG_PRINT;
  EXPECT_EQ(LFCal(&flags), 1);  // interrupted: not converged
  EXPECT_NE(std::find(lines.begin(), lines.end(), "Calculation Termination!......"), lines.end());
  // The message went to the window in the highlight colours (unless the
  // closing lines have turned the page since).
  for (const auto& d : screen.screen()) {
    if (d.text.rfind("Calculation Termination!......", 0) == 0) {
      EXPECT_EQ(d.fg, 9);
      EXPECT_EQ(d.bg, 15);
    }
  }
  // The log dialog comes at the end when the run filled more than a page.
  finish_after_close(screen, WSTRLOC.wpage >= 2);
}

}  // namespace
}  // namespace lf::test
