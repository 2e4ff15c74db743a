#include "mpcase.hpp"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <set>

namespace mp2lf {

namespace {

// One assigned value: a number, a text, a matrix or a cell of texts.
struct Value {
  bool is_text = false;
  std::string text;
  Matrix rows;                     // a number is a 1 x 1 matrix
  std::vector<std::string> cells;  // the texts of a cell array, row by row
  bool is_cell = false;
};

class Parser {
 public:
  explicit Parser(const std::string& s) : s_(s) {}

  std::map<std::string, Value> run() {
    std::map<std::string, Value> fields;
    for (;;) {
      skip_space_and_comments(true);
      if (at_end()) break;
      const std::size_t start_line = line_;
      std::string word = identifier();
      if (word.empty()) fail("a statement cannot start with '" + std::string(1, peek()) + "'");
      if (word == "function") {
        skip_to_line_end();
        continue;
      }
      if (word == "end" || word == "return") {
        end_statement();
        continue;
      }
      skip_blanks();
      if (peek() != '=')
        fail("expected '=' after '" + word + "' on line " + std::to_string(start_line));
      ++pos_;
      skip_blanks();
      Value v = value();
      end_statement();
      // mpc.bus and bus name the same field: only the part after the last point counts.
      const std::size_t dot = word.rfind('.');
      fields[dot == std::string::npos ? word : word.substr(dot + 1)] = std::move(v);
    }
    return fields;
  }

 private:
  [[noreturn]] void fail(const std::string& why) const {
    throw ParseError("line " + std::to_string(line_) + ": " + why);
  }
  bool at_end() const { return pos_ >= s_.size(); }
  char peek() const { return at_end() ? '\0' : s_[pos_]; }
  void advance() {
    if (s_[pos_] == '\n') ++line_;
    ++pos_;
  }
  void skip_to_line_end() {
    while (!at_end() && peek() != '\n') ++pos_;
  }
  // Blanks, and a "..." continuation that joins the next line.
  void skip_blanks() {
    for (;;) {
      while (!at_end() && (peek() == ' ' || peek() == '\t' || peek() == '\r')) ++pos_;
      if (s_.compare(pos_, 3, "...") == 0) {
        skip_to_line_end();
        if (!at_end()) advance();
        continue;
      }
      if (peek() == '%') {
        skip_to_line_end();
        continue;
      }
      return;
    }
  }
  void skip_space_and_comments(bool newlines) {
    for (;;) {
      skip_blanks();
      if (newlines && peek() == '\n') {
        advance();
        continue;
      }
      if (newlines && peek() == ';') {
        ++pos_;
        continue;
      }
      return;
    }
  }
  std::string identifier() {
    std::string w;
    while (!at_end() && (std::isalnum(static_cast<unsigned char>(peek())) || peek() == '_' ||
                         (peek() == '.' && !w.empty())))
      w += s_[pos_++];
    return w;
  }
  void end_statement() {
    skip_blanks();
    if (at_end()) return;
    if (peek() == ';' || peek() == ',' || peek() == '\n') {
      advance();
      return;
    }
    fail("unexpected '" + std::string(1, peek()) + "' after a value");
  }

  std::string quoted() {
    const char q = peek();
    ++pos_;
    std::string t;
    for (;;) {
      if (at_end() || peek() == '\n') fail("a text without its closing quote");
      if (peek() == q) {
        if (pos_ + 1 < s_.size() && s_[pos_ + 1] == q) {
          t += q;
          pos_ += 2;
          continue;
        }
        ++pos_;
        return t;
      }
      t += s_[pos_++];
    }
  }

  bool number(double& x) {
    std::size_t p = pos_;
    int sign = 1;
    if (p < s_.size() && (s_[p] == '-' || s_[p] == '+')) {
      if (s_[p] == '-') sign = -1;
      ++p;
    }
    if (s_.compare(p, 3, "Inf") == 0 || s_.compare(p, 3, "inf") == 0) {
      x = sign * HUGE_VAL;
      pos_ = p + 3;
      return true;
    }
    if (s_.compare(p, 3, "NaN") == 0 || s_.compare(p, 3, "nan") == 0)
      fail("a value that is not a number (NaN)");
    const char* begin = s_.c_str() + pos_;
    char* end = nullptr;
    if (p >= s_.size() || !(std::isdigit(static_cast<unsigned char>(s_[p])) || s_[p] == '.'))
      return false;
    x = std::strtod(begin, &end);
    if (end == begin) return false;
    pos_ += static_cast<std::size_t>(end - begin);
    return true;
  }

  Value value() {
    Value v;
    const char c = peek();
    if (c == '\'' || c == '"') {
      v.is_text = true;
      v.text = quoted();
      return v;
    }
    if (c == '[' || c == '{') return block(c == '{');
    double x = 0;
    if (!number(x)) fail("cannot read the value starting with '" + std::string(1, c) + "'");
    v.rows.push_back({x});
    return v;
  }

  // A matrix [ ... ] or a cell { ... }: values by blanks or commas, rows by
  // semicolons or line ends.
  Value block(bool cell) {
    const char close = cell ? '}' : ']';
    Value v;
    v.is_cell = cell;
    ++pos_;
    std::vector<double> row;
    auto end_row = [&] {
      if (row.empty()) return;
      if (!v.rows.empty() && row.size() != v.rows.front().size())
        fail("a row of " + std::to_string(row.size()) + " values where " +
             std::to_string(v.rows.front().size()) + " were expected");
      v.rows.push_back(std::move(row));
      row.clear();
    };
    for (;;) {
      skip_blanks();
      if (at_end()) fail(std::string("no closing '") + close + "'");
      const char c = peek();
      if (c == close) {
        ++pos_;
        end_row();
        return v;
      }
      if (c == ';' || c == '\n') {
        advance();
        end_row();
        continue;
      }
      if (c == ',') {
        ++pos_;
        continue;
      }
      if (cell && (c == '\'' || c == '"')) {
        v.cells.push_back(quoted());
        row.push_back(0);
        continue;
      }
      double x = 0;
      if (!number(x))
        fail("cannot read the matrix value starting with '" + std::string(1, c) + "'");
      if (cell) v.cells.push_back(std::to_string(x));
      row.push_back(x);
    }
  }

  const std::string& s_;
  std::size_t pos_ = 0;
  std::size_t line_ = 1;
};

const Matrix& matrix(const std::map<std::string, Value>& f, const char* name, std::size_t cols) {
  auto it = f.find(name);
  if (it == f.end()) throw ParseError(std::string("the case has no ") + name + " matrix");
  const Value& v = it->second;
  if (v.is_text || v.is_cell) throw ParseError(std::string(name) + " is not a numeric matrix");
  if (!v.rows.empty() && v.rows.front().size() < cols)
    throw ParseError(std::string(name) + " has " + std::to_string(v.rows.front().size()) +
                     " columns, at least " + std::to_string(cols) + " are needed");
  return v.rows;
}

std::string number_text(double x) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%g", x);
  return buf;
}

bool whole(double x) {
  return std::isfinite(x) && x == std::floor(x);
}

}  // namespace

MpCase parse_case(const std::string& text) {
  const std::map<std::string, Value> f = Parser(text).run();
  MpCase c;
  auto base = f.find("baseMVA");
  if (base == f.end() || base->second.is_text || base->second.rows.size() != 1 ||
      base->second.rows[0].size() != 1)
    throw ParseError("the case has no baseMVA");
  c.base_mva = base->second.rows[0][0];
  if (!(c.base_mva > 0) || !std::isfinite(c.base_mva))
    throw ParseError("baseMVA must be a positive number");
  c.bus = matrix(f, "bus", 13);
  c.gen = matrix(f, "gen", 10);
  c.branch = matrix(f, "branch", 11);
  if (c.bus.empty()) throw ParseError("the case has no buses");

  std::set<double> numbers;
  for (const auto& b : c.bus) {
    if (!whole(b[0]) || b[0] < 1 || b[0] > 2147483647)
      throw ParseError("a bus number must be a positive integer");
    if (!whole(b[6]) || std::fabs(b[6]) > 2147483647)
      throw ParseError("bus " + number_text(b[0]) + " has an area that is not an integer");
    if (b[1] != 1 && b[1] != 2 && b[1] != 3 && b[1] != 4)
      throw ParseError("bus " + number_text(b[0]) + " has a type other than 1 to 4");
    if (!numbers.insert(b[0]).second)
      throw ParseError("bus " + number_text(b[0]) + " appears twice");
    for (int k = 1; k < 13; ++k)
      if (!std::isfinite(b[k])) throw ParseError("a bus has an infinite value");
  }
  auto known = [&](double n, const char* what) {
    if (!numbers.count(n))
      throw ParseError(std::string(what) + " refers to bus " + number_text(n) +
                       ", which the bus matrix does not hold");
  };
  for (const auto& g : c.gen) {
    known(g[0], "a generator");
    for (int k : {1, 2, 5, 7})
      if (!std::isfinite(g[k])) throw ParseError("a generator has an infinite value");
  }
  for (const auto& r : c.branch) {
    known(r[0], "a branch");
    known(r[1], "a branch");
    for (int k = 2; k <= 10; ++k)
      if (k != 5 && k != 6 && k != 7 && !std::isfinite(r[k]))
        throw ParseError("a branch has an infinite value");
  }

  auto names = f.find("bus_name");
  if (names != f.end()) {
    if (!names->second.is_cell || names->second.cells.size() != c.bus.size())
      throw ParseError("bus_name must be a cell array with one text for each bus");
    c.bus_name = names->second.cells;
  }
  return c;
}

}  // namespace mp2lf
