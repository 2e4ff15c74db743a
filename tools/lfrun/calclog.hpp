// What lfrun keeps of each calculation: the engine's lines in the run log
// CASE.LOG beside the case, the time the calculation took, and the result
// summary printed after it.
#pragma once

#include <string>

#include "results.hpp"

// Starts a calculation: the run log is made anew and the clock started.
// With nonlinear set, the engine prints that method's table straight to
// standard output: everything printed goes through a temporary file then,
// and reaches standard output and the run log when the calculation ends.
void start_calculation(const std::string& case_name, bool nonlinear);
// Takes one line of the engine into the run log.
void keep_line(const char* line);
// Ends a calculation: notes its time in the run log and, when asked,
// prints the summary built from the files (or the database) of the case;
// bus_names, when given, holds the names of the bus file as read before.
void finish_calculation(const std::string& case_name, const std::string& db, bool converged,
                        bool print_summary, const lfres::BusNames* bus_names);
