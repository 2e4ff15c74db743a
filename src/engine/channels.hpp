// The output channels: every line of run-time text leaves the engine through
// wstring, to the progress window and its log, the message link and the
// host's callback, in that order.
#pragma once

#include <cstdint>
#include <string_view>

namespace lf {

// Switches of the channels; they live as long as the library.
extern int32_t mdisplay;  // 1: the progress window exists and takes text
extern int32_t socket;    // 1: the message link is connected and takes text
extern intptr_t prnfunc;  // the host's callback; absent when 0 or negative
extern int32_t prnon;     // master switch: 0 means no channel gets anything

// Prints length characters of text (length 0: an empty line).
int wstring(const char* text, int length);
inline int wstring(std::string_view text) {
  return wstring(text.data(), static_cast<int>(text.size()));
}

}  // namespace lf
