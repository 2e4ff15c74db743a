#include "dbsession.hpp"

#include <unistd.h>

#include <cstdio>
#include <initializer_list>
#include <utility>

#include "cli.h"

namespace {

// Reads int4 and text columns of the study case row into the given
// variables; false when there is no such row or column.
bool read_case_row(int session, std::initializer_list<std::pair<const char*, int*>> numbers,
                   std::initializer_list<std::pair<const char*, char*>> texts) {
  int st = cli_statement(session, "select * from case_lf");
  bool ok = true;
  for (auto [name, value] : numbers) ok = ok && cli_column(st, name, cli_int4, nullptr, value) == 0;
  for (auto [name, text] : texts) ok = ok && cli_column(st, name, cli_asciiz, nullptr, text) == 0;
  ok = ok && cli_fetch(st, cli_view_only) > 0 && cli_get_first(st) == cli_ok;
  cli_free(st);
  cli_precommit(session);  // holds no lock while the engine works
  return ok;
}

}  // namespace

int open_database(const std::string& file) {
  if (access(file.c_str(), W_OK) != 0) {
    std::fprintf(stderr, "lfrun: the database %s is read-only: no results could be written\n",
                 file.c_str());
    return 0;
  }
  int session = cli_create("lf", file.c_str(), 0, cli_open_default, 0, 0, 0, 0);
  if (session <= 0) {
    std::fprintf(stderr, "lfrun: cannot open the database %s (code %d)\n", file.c_str(), session);
    return 0;
  }
  // Area schedules and switch records have no tables: a study case that
  // asks for them is solved without them.
  int area = 0, sub = 0;
  if (read_case_row(session, {{"ctrl_area", &area}, {"ctrl_sub", &sub}}, {})) {
    if (area != 0)
      std::fprintf(stderr,
                   "lfrun: warning: %s asks for area interchange control, but database mode has "
                   "no area schedules: no area is adjusted\n",
                   file.c_str());
    if (sub != 0)
      std::fprintf(stderr,
                   "lfrun: warning: %s asks for substation switching, but database mode has no "
                   "switch records: no substation is split\n",
                   file.c_str());
  }
  return session;
}

bool close_database(int session, const std::string& file) {
  int calculate = 0, counts[6] = {};
  char date[25] = "", time[25] = "";
  const bool written = lfcli_writes(session) > 0;
  if (!written) {
    const char* why = lfcli_refusal(session);
    std::fprintf(stderr, "lfrun: %s: nothing written%s%s\n", file.c_str(), *why ? ": " : "", why);
  } else if (read_case_row(session,
                           {{"calculate", &calculate},
                            {"nbus", &counts[0]},
                            {"nacline", &counts[1]},
                            {"ntrans", &counts[2]},
                            {"ndcline", &counts[3]},
                            {"ngenerat", &counts[4]},
                            {"nload", &counts[5]}},
                           {{"cal_date", date}, {"cal_time", time}})) {
    date[24] = time[24] = '\0';
    std::fprintf(stderr,
                 "lfrun: %s: case_lf stamped %s %s with calculate %d; results written for %d "
                 "buses, %d lines and shunt branches, %d transformers, %d DC lines, %d "
                 "generators, %d loads\n",
                 file.c_str(), date, time, calculate, counts[0], counts[1], counts[2], counts[3],
                 counts[4], counts[5]);
  } else {
    std::fprintf(stderr, "lfrun: %s: no study case row to report\n", file.c_str());
  }
  cli_close(session);
  return written;
}
