// The user-defined models as the driver and the methods see them: reading
// the instances and the library, arranging them into flat tables, running
// them inside the iterations and recording what they did.
#pragma once

#include <cstdint>
#include <vector>

#include "store/store.hpp"

namespace lf {

// Reads the instances (the .L9 rows and the control fields of the rows) and
// the library; NU.nud is then the number of instances.
void rudlf(const CaseName& casename, const CaseName& libname);
void rl9(const CaseName& casename);
void addl9();
// Reads the library sections of the models in use from <libname>.DLF and
// SYSMODEL.DLF beside it; a model in neither is reported on the error list.
void rlflib(const CaseName& libname);
void addlib(std::vector<int32_t>& need, int32_t& nblk, int32_t& ncol, const CaseName& libname);

// Lays out blocks, parameters, links, bindings and recording requests.
void fmlfar();

// At the start of a method's pass: initial outputs and the start-up pass.
void initlf();
// One evaluation in iteration `iter` (0 in the start-up pass).
void elfud(int32_t& iter);

// Model output: the raw samples of the recorded blocks (one set an
// iteration), their index, the interface variables and the text tables.
void udopio();
void udclio();
void udlpex();
void udwinf();
void wtmud();
void forwinlf(const CaseName& casename, int32_t convergent);

}  // namespace lf
