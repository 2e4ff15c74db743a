// The output channels: every line of run-time text leaves the engine through
// wstring, to the progress window and its log, the message link and the
// host's callback, in that order.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "support/arr.hpp"

namespace lf {

// Switches of the channels; they live as long as the library.
extern int32_t mdisplay;  // 1: the progress window exists and takes text
extern int32_t socket;    // 1: the message link is connected and takes text
extern intptr_t prnfunc;  // the host's callback; absent when 0 or negative
extern int32_t prnon;     // master switch: 0 means no channel gets anything

// The page of the progress window: 40 lines of 80 columns.
constexpr int32_t kPageLines = 40;
constexpr int32_t kTextX = 100;  // every line is drawn at this horizontal position
struct WSTRLOCRec {
  int32_t wy = 0;                              // vertical position of the last line written
  int32_t wline = 0;                           // lines on the present page, 0 to 40
  std::array<Text<80>, kPageLines + 1> wtext;  // the page's lines, from 1, for repainting
  int32_t wpage = 1;                           // number of the present page, from 1
  int32_t wheight = 0;                         // line height
};
extern WSTRLOCRec WSTRLOC;

// The run log of the window: all lines written to it, each ended by carriage
// return and line feed, kept to its first 80000 characters.  Held without its
// blank padding; cfact_text() gives the full blank-padded form.
constexpr std::size_t kLogSize = 80000;
extern std::string cfact;
std::string cfact_text();
// Empties the log (all blanks).
void clear_cfact();

// The line height from the font: 1.05 times the font metric, truncated.
int32_t line_height();

// Prints length characters of text (length 0: an empty line).
int wstring(const char* text, int length);
inline int wstring(std::string_view text) {
  return wstring(text.data(), static_cast<int>(text.size()));
}

// Polls the window's messages once: flag 1 when the user pressed Escape to
// stop the calculation, else 0.  Called at the end of each iteration.
void itrupt(int32_t& flag);
// The same, but after a first key message it waits for a key or a focus
// message and takes Escape only as that one.
void itrupt1(int32_t& flag);

}  // namespace lf
