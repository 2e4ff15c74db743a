// The results of a case as tables: a header row and one row per element,
// every number in full, with bus names beside bus numbers.  The CSV files
// and the HTML page are both written from these tables.
#pragma once

#include <string>
#include <vector>

#include "results.hpp"

struct Table {
  std::string name;                            // file name without extension: buses, branches, ...
  std::string title;                           // heading on the page
  std::vector<std::string> header;             // column names
  std::vector<bool> text;                      // per column: a text, not a number
  std::vector<std::vector<std::string>> rows;  // cells as written; empty for a value not known
};

std::vector<Table> result_tables(const lfres::CaseResults& r);

// A number in full: the shortest form that keeps 15 significant digits;
// empty for a value that is not a number.
std::string full(double v);

// Writes every table as DIR/NAME.csv; false with a message on failure.
bool write_csv(const std::vector<Table>& tables, const std::string& dir);
