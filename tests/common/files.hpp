// Scratch folders, whole files and the output of commands for the tests.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace lf::test {

namespace fs = std::filesystem;

// A fresh, empty folder inside the test program's own scratch folder (see
// scratch_dir.cpp), removed with its contents when the object goes.  With
// `enter` it is the working folder meanwhile, where the engine writes its
// error list and reports.  Paths stay short: case names hold 60 characters.
class ScratchFolder {
 public:
  explicit ScratchFolder(bool enter = false) : home_(fs::current_path()), entered_(enter) {
    static int made = 0;
    std::string name = std::to_string(++made);
    path_ = home_ / name.insert(0, 1, 's');
    fs::remove_all(path_);
    fs::create_directories(path_);
    if (enter) fs::current_path(path_);
  }
  ~ScratchFolder() {
    if (entered_) fs::current_path(home_);
    std::error_code ec;
    fs::remove_all(path_, ec);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const fs::path& path() const { return path_; }
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

 private:
  fs::path home_, path_;
  bool entered_;
};

inline void write_file(const fs::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

inline std::string read_file(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

inline std::vector<std::string> file_lines(const fs::path& path) {
  std::vector<std::string> lines;
  std::ifstream in(path);
  for (std::string s; std::getline(in, s);) lines.push_back(s);
  return lines;
}

// Copies the files of a folder of the repository (an example case, say) into
// `to`.
inline void copy_folder(const std::string& from_repo, const fs::path& to) {
  for (const auto& f : fs::directory_iterator(fs::path(LF_TEST_DATA_DIR) / "../.." / from_repo))
    fs::copy_file(f.path(), to / f.path().filename(), fs::copy_options::overwrite_existing);
}

// Runs a command: its standard output; `status` gets the exit status.
inline std::string output_of(const std::string& command, int& status) {
  std::string out;
  std::FILE* p = popen(command.c_str(), "r");
  char buf[4096];
  std::size_t n;
  while (p && (n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
  const int s = p ? pclose(p) : -1;
  status = WIFEXITED(s) ? WEXITSTATUS(s) : -1;
  return out;
}

}  // namespace lf::test
