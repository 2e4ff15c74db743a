// The command line of a host program: options with and without a value
// and plain arguments, walked in the order given.  A problem is told as
// "<program>: <problem>" on standard error, followed by the usage text or by
// a hint to ask for it, and gives the exit status of bad usage.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace lfcmd {

constexpr int kExitUsage = 2;  // the exit status of every host program on bad usage

// An option of a command.  Without `needs` it is a flag and `take` gets no
// value; with it, `take` gets the next argument, and a missing one is the
// problem "<name> needs <needs>".  `take` gives a problem text, empty when
// the option is accepted.
struct Option {
  const char* name;   // "--csv"
  const char* needs;  // "a path"; nullptr for a flag
  std::function<std::string(const char* value)> take;
};

// The program whose messages these are.
struct Program {
  const char* name;        // first on each message: "lfrun"
  const char* usage;       // the text that --help prints on standard output
  bool hint_only = false;  // on a problem: "Try '<name> --help'." in place of the usage
};

struct Command {
  Program program;
  std::vector<Option> options;     // every option but --help and -h
  std::size_t most_plain = 0;      // how many plain arguments at most; 0 for any number
  const char* too_many = nullptr;  // the problem when there are more
  bool unknown_is_plain = false;   // an unknown "-x" counts as a plain argument
};

// Walks argv into the options and `plain`.  Returns -1 to go on, else the
// exit status: 0 after printing the usage for --help or -h, kExitUsage
// after telling a problem.
int parse(const Command& command, int argc, char** argv, std::vector<std::string>& plain);

// Tells a problem of the command line found after the walk; gives kExitUsage.
int problem(const Program& program, const std::string& text);

}  // namespace lfcmd
