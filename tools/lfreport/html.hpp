// The result page: one self-contained HTML file with the summary, four
// plots drawn as SVG and the result tables, sortable by any column.
#pragma once

#include <string>
#include <vector>

#include "results.hpp"
#include "runlog.hpp"
#include "tables.hpp"

bool write_html(const lfres::CaseResults& r, const lfres::RunLog& log,
                const std::vector<std::string>& summary, const std::vector<Table>& tables,
                const std::string& file);
