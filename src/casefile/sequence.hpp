// The order in which a case is read, whatever holds it: the case files or
// the tables of the database.  A source reads one part of the case each;
// read_case calls them in the one order, derives the counts and runs the
// checks that follow, so that both sources leave the store alike.
#pragma once

#include <string>

namespace lf {

class CaseSource {
 public:
  virtual ~CaseSource() = default;
  // False once a part failed: the parts after it are not read.  A source
  // that ends the run on a failure never turns it false.
  virtual bool ok() const { return true; }
  virtual void control() = 0;                   // run control and counts (LFINF, LF93)
  virtual void buses() = 0;                     // L1, LL1
  virtual void branches() = 0;                  // lines, shunt branches, then transformers
  virtual void dc_lines() = 0;                  // NL4
  virtual void generators() = 0;                // L5, L5P
  virtual void loads() = 0;                     // L6, L6P and the shared-bus flag
  virtual void areas() {}                       // L7, LL7; a source without them keeps narea
  virtual void factors() = 0;                   // L10
  virtual void switches() {}                    // L13; a source without them keeps nswitch
  virtual void load_library() = 0;              // ABCLC sets from 2 on
  virtual std::string load_origin() const = 0;  // names the loads' file or table in messages
};

// Reads the whole case from source: control, counts clamped, then each part
// whose count is above 0, the scaling (chpq), the load parameter library when
// a load names a set, the check of the load types, and the sizes of NO.
void read_case(CaseSource& source);

}  // namespace lf
