// The database session of a run in database mode.
#pragma once

#include <string>

// Opens a session on the database file; a number above 0, or 0 after
// saying why it failed (a read-only file is refused).  Warns when the study
// case asks for area interchange control or substation switching, for which
// the database has no tables.
int open_database(const std::string& file);
// Prints what the calculations stamped into the study case, or that nothing
// was written and why, then ends the session; true when something was
// written.
bool close_database(int session, const std::string& file);
