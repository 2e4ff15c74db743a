#include "dbsession.hpp"

#include <cstdio>

#include "cli.h"

int open_database(const std::string& file) {
  int session = cli_create("lf", file.c_str(), 0, cli_open_default, 0, 0, 0, 0);
  if (session > 0) return session;
  std::fprintf(stderr, "lfrun: cannot open the database %s (code %d)\n", file.c_str(), session);
  return 0;
}

void close_database(int session, const std::string& file) {
  int st = cli_statement(session, "select * from case_lf");
  int calculate = 0, counts[6] = {};
  char date[25] = "", time[25] = "";
  const char* names[6] = {"nbus", "nacline", "ntrans", "ndcline", "ngenerat", "nload"};
  bool bound = cli_column(st, "calculate", cli_int4, nullptr, &calculate) == cli_ok &&
               cli_column(st, "cal_date", cli_asciiz, nullptr, date) == cli_ok &&
               cli_column(st, "cal_time", cli_asciiz, nullptr, time) == cli_ok;
  for (int k = 0; k < 6 && bound; ++k)
    bound = cli_column(st, names[k], cli_int4, nullptr, &counts[k]) == cli_ok;
  if (bound && cli_fetch(st, cli_view_only) > 0 && cli_get_first(st) == cli_ok) {
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
  cli_free(st);
  cli_close(session);
}
