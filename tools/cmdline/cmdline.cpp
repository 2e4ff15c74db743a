#include "cmdline.hpp"

#include <cstdio>

namespace lfcmd {

int problem(const Program& program, const std::string& text) {
  std::fprintf(stderr, "%s: %s\n", program.name, text.c_str());
  if (program.hint_only) {
    std::fprintf(stderr, "Try '%s --help'.\n", program.name);
  } else {
    std::fputs(program.usage, stderr);
  }
  return kExitUsage;
}

int parse(const Command& command, int argc, char** argv, std::vector<std::string>& plain) {
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--help" || a == "-h") {
      std::fputs(command.program.usage, stdout);
      return 0;
    }
    const Option* option = nullptr;
    for (const Option& o : command.options)
      if (a == o.name) option = &o;
    if (option != nullptr) {
      const char* value = nullptr;
      if (option->needs != nullptr) {
        if (i + 1 >= argc) return problem(command.program, a + " needs " + option->needs);
        value = argv[++i];
      }
      if (std::string why = option->take(value); !why.empty()) return problem(command.program, why);
    } else if (a.size() > 1 && a[0] == '-' && !command.unknown_is_plain) {
      return problem(command.program, "unknown option " + a);
    } else if (command.most_plain != 0 && plain.size() >= command.most_plain) {
      return problem(command.program, command.too_many);
    } else {
      plain.push_back(a);
    }
  }
  return -1;
}

}  // namespace lfcmd
