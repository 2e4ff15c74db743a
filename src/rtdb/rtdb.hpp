// Database mode: the case is read from the tables of the real-time database
// on the host's session, and the results are written back into them.  Both
// do nothing unless the session flag of RTDBLSCMN is on.
#pragma once

#include <cstdint>

namespace lf {

// Fills the network store from the tables; afterwards the store is as a read
// of the case files would have left it.
void rdrtlf();
void rdrtlfctrl();   // case_lf and global: run control and counts
void rdrtbus();      // kv and bs: buses, their levels and limits
void rdrtactrs();    // ln, cp, xf: one branch list
void rdrtdc();       // dln: two-terminal DC lines
void rdrtgen();      // un: generators
void rdrtload();     // ld: loads
void rdrtl10();      // fact_gl: scaling factors
void rdrtloadpar();  // load_lib: static load characteristics

// Writes the solved state into the tables and stamps case_lf; converged is
// non-zero after a converged calculation.
void wtrtlf(int32_t& converged);
void wtrtlfctrl(int32_t& converged);  // case_lf
void wtrtbus();                       // bs and bus: voltages
void wtrtac();                        // ln and cp: flows
void wtrttrs();                       // xf: flows and magnetising power
void wtrtdc();                        // dln: DC operating points
void wtrtgen();                       // un: generator outputs
void wtrtload();                      // ld: load powers

}  // namespace lf
