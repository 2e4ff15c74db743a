// lfstatus: the status server of the message link.  It listens on the
// link's loopback port and prints each message that an engine sends: its
// kind and length, then the line or the status.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "cmdline.hpp"
#include "io/msglink.hpp"

namespace {

constexpr const char* kUsage =
    "usage: lfstatus [--once]\n"
    "\n"
    "Listens on 127.0.0.1 port 9876 for the message link of a load-flow engine\n"
    "(lfrun --link) and prints every message it receives, one a line:\n"
    "  kind 11 length 4: status 1 (engine connected)\n"
    "  kind 1 length 23: <the engine's line>\n"
    "  kind 11 length 4: status 2 (engine shutting down)\n"
    "When an engine disconnects, lfstatus waits for the next one.\n"
    "\n"
    "Options:\n"
    "  --once   end after the first engine has disconnected\n"
    "  --help   shows this text\n";

// Reads exactly n bytes; false when the connection ends first.
bool read_all(int fd, char* p, std::size_t n) {
  while (n > 0) {
    ssize_t got = ::recv(fd, p, n, 0);
    if (got <= 0) return false;
    p += got;
    n -= static_cast<std::size_t>(got);
  }
  return true;
}

void show(int32_t kind, const std::string& body) {
  std::printf("kind %d length %zu: ", kind, body.size());
  if (kind == lf::kMsgStatus && body.size() == 4) {
    int32_t status = 0;
    std::memcpy(&status, body.data(), 4);
    const char* what = status == 1   ? " (engine connected)"
                       : status == 2 ? " (engine shutting down)"
                                     : "";
    std::printf("status %d%s\n", status, what);
  } else {
    std::printf("%s\n", body.c_str());
  }
  std::fflush(stdout);
}

// Prints the messages of one connection until it ends.
void serve(int peer) {
  for (;;) {
    char head[8];
    if (!read_all(peer, head, sizeof head)) return;
    int32_t kind = 0, length = 0;
    std::memcpy(&kind, head, 4);
    std::memcpy(&length, head + 4, 4);
    if (length < 0) {
      std::printf("kind %d: bad length %d, connection dropped\n", kind, length);
      return;
    }
    std::string body(static_cast<std::size_t>(length), '\0');
    if (!read_all(peer, body.data(), body.size())) return;
    show(kind, body);
  }
}

}  // namespace

int main(int argc, char** argv) {
  bool once = false;
  const lfcmd::Command command{{"lfstatus", kUsage, true},
                               {{"--once", nullptr, [&once](const char*) {
                                   once = true;
                                   return std::string();
                                 }}}};
  std::vector<std::string> plain;
  if (int status = lfcmd::parse(command, argc, argv, plain); status >= 0) return status;
  if (!plain.empty()) return lfcmd::problem(command.program, "unknown option " + plain[0]);
  int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  int on = 1;
  ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(lf::SERV_PORT));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (fd < 0 || ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(fd, 1) != 0) {
    std::fprintf(stderr, "lfstatus: cannot listen on 127.0.0.1 port %u: %s\n", lf::SERV_PORT,
                 std::strerror(errno));
    return 1;
  }
  std::printf("listening on 127.0.0.1 port %u\n", lf::SERV_PORT);
  std::fflush(stdout);
  do {
    int peer = ::accept(fd, nullptr, nullptr);
    if (peer < 0) continue;
    serve(peer);
    ::close(peer);
    std::puts("engine disconnected");
    std::fflush(stdout);
  } while (!once);
  ::close(fd);
  return 0;
}
