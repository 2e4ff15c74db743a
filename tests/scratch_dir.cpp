// Every test program runs in a scratch folder of its own: the engine writes
// its error list and report files into the working folder, and test programs
// that CTest runs side by side must never share those files.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

struct ScratchDir {
  std::string path;
  pid_t owner = getpid();  // a death test's child exits through here too
  ScratchDir() {
    char templ[] = "/tmp/lftestXXXXXX";
    if (mkdtemp(templ) == nullptr || chdir(templ) != 0) std::abort();
    path = templ;
  }
  ~ScratchDir() {
    if (getpid() != owner) return;
    std::error_code ec;
    std::filesystem::remove_all(path, ec);
  }
};

const ScratchDir scratch;

}  // namespace
