#include "io/msglink.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <vector>

namespace lf {

uint32_t sock_fd = ~0u;

namespace {

constexpr int kTries = 10;
// The transfer loops add each result to their position without testing it,
// so a failing call (-1) moves the position one byte back.  Ten tries move it
// at most ten bytes back: a margin of that size in front of the data keeps
// every position inside the buffer.
constexpr int kMargin = kTries;
constexpr int kHeader = 8;

std::vector<char> send_buffer(kMargin + kHeader + 80);

// Calls io(position, remainder) up to ten times, advancing by each result
// as it stands.  True when the remainder reached 0 or less.  Position plus
// remainder always equals the total, so a call never reaches past the end.
template <typename Io>
bool transfer(int32_t total, Io io) {
  int pos = 0;
  int rest = total;
  for (int t = 0; t < kTries; ++t) {
    int got = io(pos, rest);
    pos += got;
    rest -= got;
    if (rest <= 0) return true;
  }
  return false;
}

// Receives length bytes into a scratch area with the margin in front; the
// caller's body gets what landed in its place.
bool receive(char* body, int32_t length) {
  if (length < 0) length = 0;
  std::vector<char> scratch(kMargin + static_cast<std::size_t>(length));
  char* base = scratch.data() + kMargin;
  bool ok = transfer(length, [&](int pos, int rest) { return ReadMessage(base + pos, rest); });
  if (body && length > 0) std::memcpy(body, base, static_cast<std::size_t>(length));
  return ok;
}

}  // namespace

int InitConnection(const char* address) {
  int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  if (fd < 0) return -1;
  sock_fd = static_cast<uint32_t>(fd);
  sockaddr_in server{};
  server.sin_family = AF_INET;
  server.sin_port = htons(static_cast<uint16_t>(SERV_PORT));
  server.sin_addr.s_addr = inet_addr(address ? address : "127.0.0.1");
  if (::connect(fd, reinterpret_cast<sockaddr*>(&server), sizeof server) != 0) return -1;
  return 0;
}

int WriteMessage(const char* buffer, int length) {
  if (!buffer) return -1;
  // A peer that went away must not end the process with a signal: the
  // failure shows only in the result.
  return static_cast<int>(::send(static_cast<int>(sock_fd), buffer,
                                 static_cast<std::size_t>(length < 0 ? 0 : length), MSG_NOSIGNAL));
}

int ReadMessage(char* buffer, int length) {
  if (!buffer) return -1;
  int fd = static_cast<int>(sock_fd);
  if (fd < 0 || fd >= FD_SETSIZE) return -1;
  fd_set ready;
  FD_ZERO(&ready);
  FD_SET(fd, &ready);
  timeval no_wait{0, 0};
  if (::select(fd + 1, &ready, nullptr, nullptr, &no_wait) <= 0 || !FD_ISSET(fd, &ready)) {
    return -1;
  }
  return static_cast<int>(::recv(fd, buffer, static_cast<std::size_t>(length < 0 ? 0 : length), 0));
}

int CloseConnection() {
  return ::close(static_cast<int>(sock_fd));
}

void msgsend(int32_t kind, const void* body, int32_t length, int32_t& status) {
  if (length < 0) length = 0;
  std::size_t need = kMargin + kHeader + static_cast<std::size_t>(length);
  if (send_buffer.size() < need) send_buffer.resize(need);
  std::fill(send_buffer.begin(), send_buffer.begin() + kMargin, '\0');
  char* msg = send_buffer.data() + kMargin;
  std::memcpy(msg, &kind, 4);
  std::memcpy(msg + 4, &length, 4);
  if (length > 0) std::memcpy(msg + kHeader, body, static_cast<std::size_t>(length));
  bool ok =
      transfer(length + kHeader, [&](int pos, int rest) { return WriteMessage(msg + pos, rest); });
  status = ok ? 0 : 2;
}

void msgheadrecv(int32_t& kind, int32_t& length) {
  char head[kHeader] = {};
  if (ReadMessage(head, kHeader) < 1) {
    kind = 0;
    length = 0;
    return;
  }
  std::memcpy(&kind, head, 4);
  std::memcpy(&length, head + 4, 4);
}

void msgbodyrecv(void* body, int32_t length, int32_t& status) {
  status = receive(static_cast<char*>(body), length) ? 0 : 2;
}

void msgbodyclr(int32_t length, int32_t& status) {
  status = receive(nullptr, length) ? 0 : 2;
}

}  // namespace lf
