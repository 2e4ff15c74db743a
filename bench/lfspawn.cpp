// lfspawn: runs one program and prints the processor time (user and
// system, seconds) and the peak resident memory (kB) that it used.
//
//   lfspawn PROGRAM [ARG...]
//
// The program's own output goes to /dev/null; the line "seconds kB" goes to
// standard output.  A process started straight from a large one inherits
// that one's peak memory in its accounts, so lfbench, which grows while it
// times cases, starts every run through this small program instead.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: lfspawn PROGRAM [ARG...]\n");
    return 2;
  }
  const pid_t pid = fork();
  if (pid == 0) {
    const int null = open("/dev/null", O_WRONLY);
    if (null < 0 || dup2(null, 1) < 0 || dup2(null, 2) < 0) _exit(127);
    execv(argv[1], argv + 1);
    _exit(127);
  }
  int status = 0;
  rusage use{};
  if (pid < 0 || wait4(pid, &status, 0, &use) < 0) return 1;
  const double seconds = static_cast<double>(use.ru_utime.tv_sec + use.ru_stime.tv_sec) +
                         1e-6 * static_cast<double>(use.ru_utime.tv_usec + use.ru_stime.tv_usec);
  std::printf("%.6f %ld\n", seconds, use.ru_maxrss);
  return WIFEXITED(status) && WEXITSTATUS(status) != 127 ? 0 : 1;
}
