// Free-form (list-directed) reading of the case files.
//
// A read statement starts on a new line and may run over several lines.
// Values are separated by blanks and/or one comma; text may stand between
// apostrophes or double quotes (a doubled quote stands for one) or, without
// quotes, runs to the next blank, comma or slash.  A slash ends the statement
// and leaves the remaining items unchanged; r*value repeats a value; r* or an
// empty field between commas is a null that leaves its item unchanged.  An
// integer item given a non-integer token is a read error.  A read returns
// false at end of file or on error; items read before that keep their values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include "support/arr.hpp"
#include "support/wholefile.hpp"

namespace lf {

struct ReadItem {
  enum class Kind { Int, Real, Chars, String };
  Kind kind;
  void* p;
  std::size_t n;  // width of a Chars item

  static ReadItem of(int32_t& x) { return {Kind::Int, &x, 0}; }
  static ReadItem of(double& x) { return {Kind::Real, &x, 0}; }
  static ReadItem of(std::string& s) { return {Kind::String, &s, 0}; }
  template <std::size_t N>
  static ReadItem of(Text<N>& t) {
    return {Kind::Chars, t.c, N};
  }
};

class FreeReader {
 public:
  FreeReader() = default;
  explicit FreeReader(const std::string& path) { open(path); }
  FreeReader(const FreeReader&) = delete;
  FreeReader& operator=(const FreeReader&) = delete;

  // Takes in the whole file at once, without a UTF-8 byte-order mark at its
  // start; false when it cannot be opened.
  bool open(const std::string& path);
  bool is_open() const { return open_; }
  // The whole file as taken in, a byte-order mark included; empty when none
  // is open.
  std::string_view text() const { return file_.text(); }
  void close();

  // One read statement over the given items.
  bool read(std::span<const ReadItem> items);
  template <typename... T>
  bool operator()(T&... items) {
    const ReadItem list[] = {ReadItem::of(items)...};
    return read(list);
  }
  // Passes over one line without reading from it; false at end of file.
  bool skip();
  // The next line as it stands (without its line end); false at end of file.
  bool line(std::string& out);
  // Number of the last line taken, from 1.
  long line_number() const { return lineno_; }
  // True once a read has run into the end of the file (as opposed to a
  // value that does not suit its item).
  bool at_end() const { return eof_; }
  // After a read that failed: the item it was at, from 1 (0 when no line
  // was left), and the text that did not suit that item (empty when the file
  // ended).  Only the case checker looks at these.
  std::size_t failed_item() const { return item_; }
  const std::string& failed_text() const { return bad_text_; }

 private:
  bool next_line(std::string_view& out);
  // The items from items[item_] on by every rule, from p in the present
  // line [p, end).
  bool read_rest(std::span<const ReadItem> items, const char* p, const char* end);
  WholeFile file_;       // the whole file, with slack behind it
  std::size_t pos_ = 0;  // start of the next line in file_
  bool open_ = false;
  long lineno_ = 0;
  bool eof_ = false;
  std::size_t item_ = 0;  // item of the last read, from 1
  std::string bad_text_;  // the value at which the last read failed
};

}  // namespace lf
