// The result files of a file-mode calculation and the branch flow routines
// shared with the database writer and the area interchange.
//
// Every report is a comma-separated text file named as the case stem plus its
// extension (.LP1, .LPD, .LP2, .LP3, .LP5, .LP6, .LP7), written from the last
// state of the records whether or not the calculation converged.
#pragma once

#include <cstdint>

#include "store/store.hpp"

namespace lf {

// Writes all report files and prints the slack bus table.
void wtlf(int32_t convergent, const CaseName& casename);

// Takes the injections of the user-defined models out of the node results.
void dwirii();

// Flows of branch k of IJB: pij, qij at the first end, pji, qji at the second
// (both counted into the branch), ci, cj the charging at each end.
void brpq(int32_t k, double& pij, double& qij, double& pji, double& qji, double& ci, double& cj);

// Magnitudes of the currents at the two ends of branch k.
void bracurrent(int32_t k, double& ii, double& ij);

// The output p, q of generator r as read (a row of L5OLD) when its bus
// produces pg, qg in all: the whole of it for a unit not merged, its share
// when the merged unit regulates (type below 1), and the value it was given
// when the merged unit is fixed.  The reports and the database writer both
// hand the results out by this rule.
void unit_output(int32_t r, double pg, double qg, double& p, double& q);

// The printed table of the slack buses (database mode).
void prnslackbuspq();

void wlp1(int32_t convergent, const CaseName& casename);  // .LP1 buses, .LPD new nodes
void wlp2(const CaseName& casename);                      // .LP2 AC lines
void wlp3(const CaseName& casename);                      // .LP3 transformers
void wlp5(const CaseName& casename);                      // .LP5 generators
void wlp6(const CaseName& casename);                      // .LP6 loads
void wlp7(const CaseName& casename);                      // .LP7 areas

}  // namespace lf
