// Database mode: the case is read from the tables of the real-time database
// on the host's session, and the results are written back into them.  Both
// do nothing unless the session flag of RTDBLSCMN is on.
#pragma once

#include <cstdint>
#include <string>

namespace lf {

// The first failure of the database passes of one calculation; empty while
// everything went through.  Written by the reading and writing passes,
// cleared by rdrtlf and wtrtlf when they start, read by newlf, which stops the
// calculation after a failed read, and by wtrtlf, which rolls the writing
// back after a failed write.
struct RTDBFAILRec {
  std::string text;  // "table ln: cli_fetch failed with code -15" and the like
};
extern RTDBFAILRec RTDBFAIL;

// Fills the network store from the tables; afterwards the store is as a read
// of the case files would have left it, or RTDBFAIL says why not.
void rdrtlf();
void rdrtlfctrl();   // case_lf and global: run control and counts
void rdrtbus();      // kv and bs: buses, their levels and limits
void rdrtactrs();    // ln, cp, xf: one branch list
void rdrtdc();       // dln: two-terminal DC lines
void rdrtgen();      // un: generators
void rdrtload();     // ld: loads
void rdrtl10();      // fact_gl: scaling factors
void rdrtloadpar();  // load_lib: static load characteristics

// Writes the solved state into the tables and stamps case_lf, all in one
// transaction; converged is non-zero after a converged calculation, and is
// made 0 when the writing fails and nothing is written.
void wtrtlf(int32_t& converged);
void wtrtlfctrl(int32_t& converged);  // case_lf
void wtrtbus();                       // bs and bus: voltages
void wtrtac();                        // ln and cp: flows
void wtrttrs();                       // xf: flows and magnetising power
void wtrtdc();                        // dln: DC operating points
void wtrtgen();                       // un: generator outputs
void wtrtload();                      // ld: load powers

}  // namespace lf
