// Fixed-format writing: the edit descriptors of the report files.
//
// A value too wide for its field prints as w asterisks.  Fw.d rounds
// correctly and drops the zero before the point only when the field is too
// narrow for it (-.5000 in F6.4).  Aw keeps the leftmost w characters of a
// longer text and puts blanks in front of a shorter one.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace lf {

std::string fmt_i(long long v, int w);         // Iw
std::string fmt_f(double v, int w, int d);     // Fw.d
std::string fmt_e(double v, int w, int d);     // Ew.d: 0.ddddE+xx
std::string fmt_a(std::string_view s, int w);  // Aw
std::string fmt_x(int n);                      // nX: n blanks

// Iw and Fw.d appended to a line being built, without a text of their own.
void put_i(std::string& out, long long v, int w);
void put_f(std::string& out, double v, int w, int d);
// The same written at f, which has room for them: each field is exactly
// max(w, 0) characters.  Returns the end of the field.
char* put_i(char* f, long long v, int w);
char* put_f(char* f, double v, int w, int d);
// Fields one after another, each followed by the character `after`.
char* put_i(char* f, std::initializer_list<long long> v, int w, char after);
char* put_f(char* f, std::initializer_list<double> v, int w, int d, char after);

}  // namespace lf
