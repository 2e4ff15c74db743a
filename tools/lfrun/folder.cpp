#include "folder.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kCaseNameWidth = 60;
constexpr const char* kLockFile = ".lfrun.lock";
// Line 3 of a NAME.INC written for one run; the engine does not read it.
constexpr const char* kTemporaryMark = "written by lfrun for one run";

// The lines of NAME.INC: line 2 the case name (first 60 characters, no
// trailing blanks), line 3 as it stands.
struct NameInc {
  std::string name, mark;
};

NameInc read_name_inc(const fs::path& path) {
  std::ifstream in(path);
  std::string lines[3];
  for (std::string& l : lines) {
    std::getline(in, l);
    if (!l.empty() && l.back() == '\r') l.pop_back();
  }
  std::string name = lines[1].substr(0, kCaseNameWidth);
  while (!name.empty() && name.back() == ' ') name.pop_back();
  return {name, lines[2]};
}

void write_name_inc(const fs::path& path, const std::string& name, const char* mark) {
  std::ofstream(path) << "1\n" << name << "\n" << mark << "\nDATALIB\n\n\n\n\nUDLIB\n";
}

// The NAME.INC written for this run, as an absolute path that the signal
// handler can remove without allocating.
char temporary[4096] = "";

void remove_temporary() {
  if (temporary[0] != '\0') unlink(temporary);
}

extern "C" void on_signal(int sig) {
  remove_temporary();
  std::signal(sig, SIG_DFL);
  std::raise(sig);
}

void keep_temporary(const fs::path& path) {
  const std::string p = fs::absolute(path).string();
  if (p.size() >= sizeof temporary) return;
  std::memcpy(temporary, p.c_str(), p.size() + 1);
  std::atexit(remove_temporary);
  for (int sig : {SIGINT, SIGTERM, SIGHUP}) std::signal(sig, on_signal);
}

}  // namespace

std::string enter_folder(const std::string& folder) {
  std::error_code ec;
  if (!folder.empty()) fs::current_path(folder, ec);
  if (ec) return "cannot enter the folder " + folder + ": " + ec.message();
  // The lock lives as long as the process: the descriptor is never closed.
  const int fd = open(kLockFile, O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  if (fd < 0)
    return "cannot lock the folder " + fs::current_path().string() + " (" + kLockFile +
           "): " + std::strerror(errno);
  if (flock(fd, LOCK_EX | LOCK_NB) == 0) return "";
  std::fprintf(stderr, "lfrun: another lfrun is running in %s; waiting for it to end\n",
               fs::current_path().c_str());
  while (flock(fd, LOCK_EX) != 0)
    if (errno != EINTR) return std::string("cannot lock the folder: ") + std::strerror(errno);
  return "";
}

std::string name_case(const std::string& name, bool replace) {
  const fs::path name_inc = "NAME.INC";
  if (fs::exists(name_inc)) {
    const NameInc there = read_name_inc(name_inc);
    if (there.name == name) return "";
    // With the folder locked, a NAME.INC of another run is one that a run
    // ended by force left behind.
    if (there.mark == kTemporaryMark) {
      std::fprintf(stderr, "lfrun: removing the NAME.INC that an ended run left (it named '%s')\n",
                   there.name.c_str());
      fs::remove(name_inc);
    } else if (!replace) {
      return "NAME.INC in " + fs::current_path().string() + " names the case '" + there.name +
             "', not '" + name + "'; give --name-inc to replace it";
    } else {
      std::fprintf(stderr, "lfrun: replacing NAME.INC (it named '%s')\n", there.name.c_str());
      write_name_inc(name_inc, name, "");
      return "";
    }
  }
  if (name != "LF") {
    keep_temporary(name_inc);
    write_name_inc(name_inc, name, kTemporaryMark);
  }
  return "";
}
