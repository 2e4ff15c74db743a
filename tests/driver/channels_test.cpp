#include "io/channels.hpp"

#include <gtest/gtest.h>

#include <array>
#include <climits>

#include "driver/engine_fixture.hpp"
#include "store/store.hpp"

namespace lf::test {
namespace {

constexpr const char* kClosing = "End of Program.  Please Close the Window....";

using Channels = EngineTest;

TEST_F(Channels, PrintBitAppliesPerCalculationAndACallbackWithTheTopBitIsAbsent) {
  EXPECT_EQ(init(0), 0);
  EXPECT_FALSE(screen.initialised);
  print("not shown");
  EXPECT_TRUE(printed.empty());
  cal(LF_FLAG_PRINT | LF_FLAG_WINDOW);  // a set window bit opens no window
  EXPECT_EQ(printed.back(), kClosing);
  EXPECT_TRUE(screen.drawn.empty());
  printed.clear();
  print("still not shown");  // the print switch is back as LFInit left it
  EXPECT_TRUE(printed.empty());

  int flags = LF_FLAG_PRINT, session = 0, mode = 2;
  char title[80] = "t";
  intptr_t callback = INTPTR_MIN | reinterpret_cast<intptr_t>(&keep_printed);  // called, it crashes
  EXPECT_EQ(LFInit(&flags, title, &session, &callback, &mode), LF_FLAG_PRINT);
  print("nobody hears this");
  EXPECT_TRUE(printed.empty());
  EXPECT_EQ(RMXMVALID, 1);
  EXPECT_EQ(std::string(title, 2), std::string("t\0", 2));  // untouched without a window
}

TEST_F(Channels, FailedLinkClearsItsBitAndIsReportedOnlyWithThePrintBit) {
  PortLock port;
  int fd = ::socket(AF_INET, SOCK_STREAM, 0);  // bound, not listening: connections refused
  sockaddr_in a = link_address();
  bool held = fd >= 0 && ::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0;
  if (held) {
    EXPECT_EQ(init(LF_FLAG_LINK | LF_FLAG_PRINT), LF_FLAG_PRINT);
    EXPECT_EQ(printed, std::vector<std::string>{"Fail to initialize Socket!"});
    EXPECT_EQ(socket, 0);
    printed.clear();
    EXPECT_EQ(init(LF_FLAG_LINK), 0);
    EXPECT_TRUE(printed.empty());
  }
  if (fd >= 0) ::close(fd);
  if (!held) GTEST_SKIP() << "another program listens on the link's port";
}

TEST_F(Channels, WindowOpensWithItsGeometryAndPageTwoEndsWithTheLogDialog) {
  screen.width = 1024;
  screen.height = 768;
  screen.font_metric = 20;  // 1.05 in single precision times 20 truncates to 20, not 21
  int flags = LF_FLAG_WINDOW | LF_FLAG_PRINT, session = 0, mode = 0;
  char title[80];
  std::memset(title, 'x', sizeof title);
  std::strcpy(title, "Case A");
  intptr_t callback = 0;
  EXPECT_EQ(LFInit(&flags, title, &session, &callback, &mode), flags);
  EXPECT_EQ(std::string(title, 80), "Case A" + std::string(74, ' '));
  const WindowDescription& w = screen.window;
  EXPECT_EQ((std::array{w.flags, w.x, w.y, w.width, w.height, w.kind}),
            (std::array{5, 486, 89, 350, 450, 30001}));
  EXPECT_EQ(w.title.str(), std::string(title, 80));
  EXPECT_EQ(screen.fonts, (std::vector<FontDescription>{{1, 0, 0, 0, 0, 0, -1, -1}}));
  const int h = 20;
  EXPECT_EQ(WSTRLOC.wheight, h);

  // The forty-first line starts page two.
  std::string log;
  for (int i = 1; i <= 40; ++i) {
    print("line " + std::to_string(i));
    log += "line " + std::to_string(i) + "\r\n";
  }
  EXPECT_EQ(screen.drawn[0].x, 100);
  EXPECT_EQ(screen.drawn[0].y, h);
  EXPECT_EQ(WSTRLOC.wy, 40 * h);
  EXPECT_EQ(screen.clears, 0);
  print("line 41");
  EXPECT_EQ(WSTRLOC.wline, 1);
  EXPECT_EQ(WSTRLOC.wpage, 2);
  EXPECT_EQ(screen.clears, 1);
  EXPECT_EQ(WSTRLOC.wtext[1].trimmed(), "line 41");

  screen.post(kMsgExpose, 0, 0);
  screen.post(kMsgCommand, 7, 2);
  screen.post(kMsgCommand, 8, 1);  // not a closing command: ignored
  screen.post(kMsgClose, 3, 0);    // a child window
  EXPECT_EQ(LFFinilize(), 0);      // the script runs out: the user closes the window
  EXPECT_EQ(screen.dialog_control, 1002);
  EXPECT_EQ(screen.dialog_text, log + "line 41\r\n");
  EXPECT_EQ(screen.unloaded, std::vector<int32_t>{7});
  EXPECT_EQ(screen.children_closed, std::vector<int32_t>{3});
  EXPECT_TRUE(screen.closed);
  // The repaint drew the page's one line again, one line height down, with
  // its 80 characters.
  ASSERT_EQ(screen.screen.size(), 1u);
  EXPECT_EQ(screen.screen[0].text, "line 41" + std::string(73, ' '));
  EXPECT_EQ(screen.screen[0].y, h);
}

TEST_F(Channels, OnePageEndsWithoutTheDialogAndACalculationWithoutTheWindowBitLeavesIt) {
  init(LF_FLAG_WINDOW | LF_FLAG_PRINT);
  print("before");
  const std::string log = cfact;
  cal(LF_FLAG_PRINT);
  EXPECT_EQ(printed.back(), kClosing);
  EXPECT_EQ(screen.drawn.size(), 1u);
  EXPECT_EQ(cfact, log);
  print("after");  // the window is back
  EXPECT_EQ(screen.drawn.size(), 2u);
  EXPECT_EQ(LFFinilize(), 0);
  EXPECT_EQ(screen.dialog_loaded, 0);
  EXPECT_TRUE(screen.closed);
}

TEST_F(Channels, LongLinesAreDrawnWholeAndTheFullLogKeepsItsBeginning) {
  init(LF_FLAG_WINDOW | LF_FLAG_PRINT);
  wstring(std::string(90, 'a'));
  EXPECT_EQ(screen.drawn.back().text, std::string(90, 'a'));
  EXPECT_EQ(WSTRLOC.wtext[1].str(), std::string(80, 'a'));
  EXPECT_EQ(printed.back(), std::string(90, 'a'));
  wstring("pad   ", 6);  // every channel but the window loses the trailing blanks
  EXPECT_EQ(screen.drawn.back().text, "pad   ");
  EXPECT_EQ(printed.back(), "pad");

  clear_cfact();
  const std::string line(78, 'x');  // 80 characters in the log with its line end
  for (int i = 0; i < 999; ++i) wstring(line);
  wstring(std::string(67, 'y'));
  EXPECT_EQ(cfact.size(), 79989u);
  wstring("end of the log");
  EXPECT_EQ(cfact.substr(79989), "end of the ");
  // The log loses its trailing blanks before each line is added, so a cut
  // that ends in a blank takes one more character.
  wstring("lost");
  EXPECT_EQ(cfact.substr(79989), "end of thel");
  wstring("lost as well");
  EXPECT_EQ(cfact.substr(79989), "end of thel");
  EXPECT_EQ(cfact.substr(0, 80), line + "\r\n");
  EXPECT_EQ(screen.drawn.back().text, "lost as well");
}

TEST_F(Channels, EscapeStopsTheIterationOnlyWhenItReachesTheFront) {
  init(LF_FLAG_PRINT);
  screen.post(kMsgKey, 0, 'a');
  screen.post(kMsgKey, 0, kEscapeKey);
  int32_t flag = -1;
  itrupt(flag);
  EXPECT_EQ(flag, 0);  // the other key is dropped
  itrupt(flag);
  EXPECT_EQ(flag, 1);
  EXPECT_EQ(printed, std::vector<std::string>{"Calculation Termination!......"});
  EXPECT_EQ(screen.fonts,
            (std::vector<FontDescription>{{1, 0, 0, 0, 0, 0, 9, 15}, {1, 0, 0, 0, 0, 0, 0, 15}}));
  itrupt(flag);
  EXPECT_EQ(flag, 0);

  // The other polling takes Escape only as the next key or focus message.
  screen.post(kMsgKey, 0, 'a');
  screen.post(6, 0, 0);
  screen.post(kMsgKey, 0, kEscapeKey);
  itrupt1(flag);
  EXPECT_EQ(flag, 1);
  screen.post(kMsgKey, 0, 'a');
  screen.post(kMsgActivate, 0, kEscapeKey);
  screen.post(kMsgKey, 0, kEscapeKey);
  itrupt1(flag);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(screen.script.size(), 1u);
}

}  // namespace
}  // namespace lf::test
