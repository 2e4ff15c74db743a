// The database session of a run in database mode.
#pragma once

#include <string>

// Opens a session on the database file; a number above 0, or 0 after
// saying why it failed.
int open_database(const std::string& file);
// Prints what the calculation stamped into the study case, then ends the
// session.
void close_database(int session, const std::string& file);
