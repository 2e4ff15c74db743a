// The folder of a run.  lfrun holds a lock on it for the whole run, so that
// two runs in one folder wait for each other instead of mixing their cases
// (the engine takes the case's name from the folder's NAME.INC), and it
// removes the NAME.INC that it wrote for the run when the run ends, on an
// interrupt or a termination signal as well.
#pragma once

#include <string>

// Enters the folder (the current one when empty) and takes its lock,
// waiting while another lfrun holds it; an empty text, or why not.
std::string enter_folder(const std::string& folder);

// Makes the engine find the case `name` in the folder: a NAME.INC that
// names it is used as it stands; without one, and for any name but LF, one
// is written for the run; one that a run ended by force left behind is
// replaced; one that names another case is replaced only when `replace` is
// given.  An empty text, or why the case cannot be named.
std::string name_case(const std::string& name, bool replace);
