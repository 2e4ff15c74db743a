// The error list of one calculation: LFERR.LIS in the current directory.
//
// The driver makes it anew at the start of a calculation, any stage appends
// lines to it, and at the end the driver prints what it holds (serror) and
// closes it, keeping the file.
#pragma once

#include <string_view>

namespace lf {

// The unit on which the list is open during a calculation.
constexpr int kErrUnit = 12;

// The header, the file's first record.
constexpr std::string_view kErrListHeader = "****** Operation Error Information ******";

// Deletes an LFERR.LIS left by an earlier run and makes it new with the
// header as its first record: a blank, then the header text.
void errlist_open();
// Appends one line (the same as writing a line on unit 12).  Nothing is
// written while the list is not open.
void errlist_write(std::string_view line);
// Closes the list, keeping the file.
void errlist_close();

// Prints the error list through wstring when it holds more than its header,
// framed by a heading and a closing line.
void serror();

}  // namespace lf
