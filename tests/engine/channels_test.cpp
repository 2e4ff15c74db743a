#include "engine/channels.hpp"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

#include "engine/engine_fixture.hpp"
#include "engine/store.hpp"

namespace lf::test {
namespace {

constexpr const char* kClosing = "End of Program.  Please Close the Window....";

using Channels = EngineTest;

TEST_F(Channels, FlagsZeroOpenNothingAndPrintBitAppliesPerCalculation) {
  EXPECT_EQ(init(0), 0);
  EXPECT_FALSE(screen.initialised);
  print("not shown");
  EXPECT_TRUE(printed.empty());
  cal(LF_FLAG_PRINT | LF_FLAG_WINDOW);  // a set window bit opens no window
  ASSERT_FALSE(printed.empty());
  EXPECT_EQ(printed.back(), kClosing);
  EXPECT_TRUE(screen.drawn.empty());
  printed.clear();
  print("still not shown");  // the print switch is back as LFInit left it
  EXPECT_TRUE(printed.empty());
}

TEST_F(Channels, FailedLinkClearsItsBitAndIsReportedOnlyWithThePrintBit) {
  PortLock port;
  ClosedPort closed;
  if (!closed.held()) GTEST_SKIP() << "another program listens on the link's port";
  EXPECT_EQ(init(LF_FLAG_LINK | LF_FLAG_PRINT), LF_FLAG_PRINT);
  ASSERT_EQ(printed.size(), 1u);
  EXPECT_EQ(printed[0], "Fail to initialize Socket!");
  EXPECT_EQ(socket, 0);
  printed.clear();
  EXPECT_EQ(init(LF_FLAG_LINK), 0);
  EXPECT_TRUE(printed.empty());
}

TEST_F(Channels, CallbackWithTheTopBitSetCountsAsAbsent) {
  int flags = LF_FLAG_PRINT, session = 0, mode = 2;
  char title[80] = "t";
  // Called, this address would crash the test.
  intptr_t callback = INTPTR_MIN | reinterpret_cast<intptr_t>(&collect);
  EXPECT_EQ(LFInit(&flags, title, &session, &callback, &mode), LF_FLAG_PRINT);
  print("nobody hears this");
  EXPECT_TRUE(printed.empty());
  EXPECT_EQ(RMXMVALID, 1);
  EXPECT_EQ(std::string(title, 2), std::string("t\0", 2));  // untouched without a window
}

TEST_F(Channels, WindowOpensWithItsGeometryTitleAndLineHeight) {
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
  EXPECT_TRUE(screen.initialised);
  EXPECT_EQ(screen.window.flags, 5);
  EXPECT_EQ(screen.window.x, 486);
  EXPECT_EQ(screen.window.y, 89);
  EXPECT_EQ(screen.window.width, 350);
  EXPECT_EQ(screen.window.height, 450);
  EXPECT_EQ(screen.window.kind, 30001);
  EXPECT_EQ(screen.window.title.str(), std::string(title, 80));
  ASSERT_EQ(screen.fonts.size(), 1u);
  EXPECT_EQ(screen.fonts[0], (FontDescription{1, 0, 0, 0, 0, 0, -1, -1}));
  EXPECT_EQ(WSTRLOC.wheight, 20);
  print("first");
  ASSERT_EQ(screen.drawn.size(), 1u);
  EXPECT_EQ(screen.drawn[0].x, 100);
  EXPECT_EQ(screen.drawn[0].y, 20);
}

TEST_F(Channels, FortyFirstLineStartsPageTwoAndTheEndShowsTheLogDialog) {
  init(LF_FLAG_WINDOW | LF_FLAG_PRINT);
  const int h = WSTRLOC.wheight;
  for (int i = 1; i <= 40; ++i) print("line " + std::to_string(i));
  EXPECT_EQ(WSTRLOC.wline, 40);
  EXPECT_EQ(WSTRLOC.wy, 40 * h);
  EXPECT_EQ(screen.clears, 0);
  print("line 41");
  EXPECT_EQ(WSTRLOC.wline, 1);
  EXPECT_EQ(WSTRLOC.wpage, 2);
  EXPECT_EQ(screen.clears, 1);
  ASSERT_EQ(screen.screen.size(), 1u);
  EXPECT_EQ(screen.screen[0].y, h);  // one line height down on the new page
  EXPECT_EQ(WSTRLOC.wtext[1].trimmed(), "line 41");

  screen.post(kMsgExpose, 0, 0);
  screen.post(kMsgCommand, 7, 2);
  screen.post(kMsgCommand, 8, 1);  // not a closing command: ignored
  screen.post(kMsgClose, 3, 0);    // a child window
  EXPECT_EQ(LFFinilize(), 0);      // the script runs out: the user closes the window
  EXPECT_EQ(screen.dialog_control, 1002);
  std::string log;
  for (int i = 1; i <= 41; ++i) log += "line " + std::to_string(i) + "\r\n";
  EXPECT_EQ(screen.dialog_text, log);
  EXPECT_EQ(screen.unloaded, std::vector<int32_t>{7});
  EXPECT_EQ(screen.children_closed, std::vector<int32_t>{3});
  EXPECT_TRUE(screen.closed);
  // The repaint drew the page's one line again with its 80 characters.
  ASSERT_EQ(screen.screen.size(), 1u);
  EXPECT_EQ(screen.screen[0].text, "line 41" + std::string(73, ' '));
  EXPECT_EQ(screen.screen[0].y, h);
}

TEST_F(Channels, OnePageEndsWithoutTheDialog) {
  init(LF_FLAG_WINDOW | LF_FLAG_PRINT);
  print("only line");
  EXPECT_EQ(LFFinilize(), 0);
  EXPECT_EQ(screen.dialog_loaded, 0);
  EXPECT_TRUE(screen.dialog_text.empty());
  EXPECT_TRUE(screen.closed);
}

TEST_F(Channels, CalculationWithoutWindowBitLeavesWindowAndLogAlone) {
  init(LF_FLAG_WINDOW | LF_FLAG_PRINT);
  print("before");
  const std::string log = cfact;
  cal(LF_FLAG_PRINT);
  EXPECT_EQ(printed.back(), kClosing);
  EXPECT_EQ(screen.drawn.size(), 1u);
  EXPECT_EQ(WSTRLOC.wline, 1);
  EXPECT_EQ(cfact, log);
  print("after");  // the window is back
  EXPECT_EQ(screen.drawn.size(), 2u);
  cal(LF_FLAG_WINDOW | LF_FLAG_PRINT);
  EXPECT_EQ(screen.drawn.back().text.substr(0, 44), kClosing);
}

TEST_F(Channels, LongLinesAreDrawnWholeAndKeptToEightyColumns) {
  init(LF_FLAG_WINDOW | LF_FLAG_PRINT);
  const std::string longer(90, 'a');
  wstring(longer);
  EXPECT_EQ(screen.drawn.back().text, longer);
  EXPECT_EQ(WSTRLOC.wtext[1].str(), std::string(80, 'a'));
  EXPECT_EQ(printed.back(), longer);
  wstring("pad   ", 6);  // every channel but the window loses the trailing blanks
  EXPECT_EQ(screen.drawn.back().text, "pad   ");
  EXPECT_EQ(printed.back(), "pad");
  wstring("", 0);
  EXPECT_EQ(printed.back(), "");
}

TEST_F(Channels, FullLogKeepsItsBeginningWhileLinesAreStillDrawn) {
  init(LF_FLAG_WINDOW | LF_FLAG_PRINT);
  const std::string line(78, 'x');  // 80 characters in the log with its line end
  for (int i = 0; i < 999; ++i) wstring(line);
  wstring(std::string(67, 'y'));
  EXPECT_EQ(cfact.size(), 79989u);
  wstring("end of the log");
  EXPECT_EQ(cfact.size(), kLogSize);
  EXPECT_EQ(cfact.substr(79989), "end of the ");
  // The log loses its trailing blanks before each line is added, so a cut
  // that ends in a blank takes one more character.
  wstring("lost");
  EXPECT_EQ(cfact.substr(79989), "end of thel");
  wstring("lost as well");
  EXPECT_EQ(cfact.substr(79989), "end of thel");
  EXPECT_EQ(cfact.substr(0, 80), line + "\r\n");
  EXPECT_EQ(screen.drawn.back().text, "lost as well");
  EXPECT_EQ(cfact_text().size(), kLogSize);
}

TEST_F(Channels, EscapeStopsTheIterationOnlyWhenItReachesTheFront) {
  init(LF_FLAG_PRINT);
  screen.post(kMsgKey, 0, 'a');
  screen.post(kMsgKey, 0, kEscapeKey);
  int32_t flag = -1;
  itrupt(flag);
  EXPECT_EQ(flag, 0);  // the other key is dropped
  EXPECT_TRUE(printed.empty());
  itrupt(flag);
  EXPECT_EQ(flag, 1);
  ASSERT_EQ(printed.size(), 1u);
  EXPECT_EQ(printed[0], "Calculation Termination!......");
  ASSERT_EQ(screen.fonts.size(), 2u);
  EXPECT_EQ(screen.fonts[0], (FontDescription{1, 0, 0, 0, 0, 0, 9, 15}));
  EXPECT_EQ(screen.fonts[1], (FontDescription{1, 0, 0, 0, 0, 0, 0, 15}));
  itrupt(flag);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(screen.selected, 0);
}

TEST_F(Channels, AlternativePollingTakesEscapeOnlyAsTheNextKeyOrFocusMessage) {
  init(0);
  int32_t flag = -1;
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
  screen.script.clear();
  screen.post(kMsgExpose, 0, 0);
  itrupt1(flag);  // no key: one look only
  EXPECT_EQ(flag, 0);
}

}  // namespace
}  // namespace lf::test
