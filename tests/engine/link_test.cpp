#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "engine/channels.hpp"
#include "engine/engine_fixture.hpp"
#include "engine/msglink.hpp"

namespace lf::test {
namespace {

// A status server on the loopback port: accepts the engine's connection and
// collects the bytes it sends.
class Listener {
 public:
  Listener() {
    fd_ = ::socket(AF_INET, SOCK_STREAM, 0);
    int on = 1;
    setsockopt(fd_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_port = htons(SERV_PORT);
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bound_ = ::bind(fd_, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0 && ::listen(fd_, 1) == 0;
  }
  ~Listener() {
    if (peer_ >= 0) ::close(peer_);
    ::close(fd_);
  }
  bool bound() const { return bound_; }
  void accept() { peer_ = ::accept(fd_, nullptr, nullptr); }

  // Reads until the engine closes the connection or nothing comes for a
  // while; true when the connection was closed.
  bool drain(std::string& bytes) {
    char buf[4096];
    for (;;) {
      pollfd p{peer_, POLLIN, 0};
      if (::poll(&p, 1, 300) <= 0) return false;
      ssize_t n = ::recv(peer_, buf, sizeof buf, 0);
      if (n <= 0) return true;
      bytes.append(buf, static_cast<std::size_t>(n));
    }
  }
  void send(const std::string& bytes) {
    ASSERT_EQ(::send(peer_, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
  }

 private:
  int fd_ = -1, peer_ = -1;
  bool bound_ = false;
};

struct Frame {
  int32_t kind, length;
  std::string body;
};

std::vector<Frame> frames_of(const std::string& bytes) {
  std::vector<Frame> out;
  std::size_t p = 0;
  while (p + 8 <= bytes.size()) {
    Frame f{};
    std::memcpy(&f.kind, bytes.data() + p, 4);
    std::memcpy(&f.length, bytes.data() + p + 4, 4);
    f.body = bytes.substr(p + 8, static_cast<std::size_t>(f.length));
    p += 8 + static_cast<std::size_t>(f.length);
    out.push_back(f);
  }
  EXPECT_EQ(p, bytes.size());
  return out;
}

std::string status_body(int32_t v) {
  return std::string(reinterpret_cast<const char*>(&v), 4);
}

std::string header(int32_t kind, int32_t length) {
  return std::string(reinterpret_cast<const char*>(&kind), 4) +
         std::string(reinterpret_cast<const char*>(&length), 4);
}

// Waits until the engine's socket has something to read.
void await_input() {
  pollfd p{static_cast<int>(sock_fd), POLLIN, 0};
  ::poll(&p, 1, 2000);
}

using Link = EngineTest;

TEST_F(Link, ServerSeesStartLinesAndEndStatus) {
  PortLock port;
  Listener server;
  if (!server.bound()) GTEST_SKIP() << "another program has the link's port";
  EXPECT_EQ(init(LF_FLAG_LINK | LF_FLAG_PRINT), LF_FLAG_LINK | LF_FLAG_PRINT);
  server.accept();
  print("hello   ");
  print("");
  cal(LF_FLAG_LINK);  // print bit clear: nothing for any channel
  cal(LF_FLAG_LINK | LF_FLAG_PRINT);
  EXPECT_EQ(LFFinilize(), 0);
  std::string bytes;
  ASSERT_TRUE(server.drain(bytes));  // the engine closed the link
  EXPECT_EQ(bytes.substr(0, 12 + 13 + 8), header(kMsgStatus, 4) + status_body(1) +
                                              header(kMsgLine, 5) + "hello" + header(kMsgLine, 0));
  std::vector<Frame> f = frames_of(bytes);
  ASSERT_GE(f.size(), 5u);
  EXPECT_EQ(f.back().kind, kMsgStatus);
  EXPECT_EQ(f.back().body, status_body(2));
  EXPECT_EQ(f[f.size() - 2].kind, kMsgLine);
  EXPECT_EQ(f[f.size() - 2].body, "End of Program.  Please Close the Window....");
  std::size_t closing_lines = 0;
  for (const Frame& x : f) {
    closing_lines += x.body == "End of Program.  Please Close the Window....";
  }
  EXPECT_EQ(closing_lines, 1u);  // the calculation without the print bit sent nothing
}

TEST_F(Link, CalculationWithoutLinkBitIsTheLastOneTheServerHears) {
  PortLock port;
  Listener server;
  if (!server.bound()) GTEST_SKIP() << "another program has the link's port";
  init(LF_FLAG_LINK | LF_FLAG_PRINT);
  server.accept();
  cal(LF_FLAG_PRINT);
  EXPECT_EQ(socket, 0);
  print("after");
  EXPECT_EQ(printed.back(), "after");
  EXPECT_EQ(LFFinilize(), 0);
  std::string bytes;
  EXPECT_FALSE(server.drain(bytes));  // still connected: LFFinilize did not close
  std::vector<Frame> f = frames_of(bytes);
  ASSERT_GE(f.size(), 2u);
  EXPECT_EQ(f.front().body, status_body(1));
  EXPECT_EQ(f.back().kind, kMsgLine);
  EXPECT_EQ(f.back().body, "End of Program.  Please Close the Window....");
  CloseConnection();
}

TEST_F(Link, ReceivingTakesWhatIsThereAndNeverWaits) {
  PortLock port;
  Listener server;
  if (!server.bound()) GTEST_SKIP() << "another program has the link's port";
  ASSERT_EQ(InitConnection(nullptr), 0);
  server.accept();
  int32_t kind = -1, length = -1, status = -1;
  msgheadrecv(kind, length);
  EXPECT_EQ(kind, 0);
  EXPECT_EQ(length, 0);
  char body[16] = {};
  msgbodyrecv(body, 0, status);  // each try finds nothing, even for no bytes
  EXPECT_EQ(status, 2);
  msgbodyclr(4, status);
  EXPECT_EQ(status, 2);

  server.send(header(7, 5) + "abcde" + header(8, 3) + "xyz");
  await_input();
  msgheadrecv(kind, length);
  EXPECT_EQ(kind, 7);
  EXPECT_EQ(length, 5);
  msgbodyrecv(body, length, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(std::string(body, 5), "abcde");
  msgheadrecv(kind, length);
  EXPECT_EQ(kind, 8);
  msgbodyclr(length, status);
  EXPECT_EQ(status, 0);
  msgheadrecv(kind, length);
  EXPECT_EQ(kind, 0);

  int32_t value = 42;
  msgsend(kMsgStatus, &value, 4, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(CloseConnection(), 0);
  std::string bytes;
  EXPECT_TRUE(server.drain(bytes));
  EXPECT_EQ(bytes, header(kMsgStatus, 4) + status_body(42));
  // On a closed link every try fails and steps back a byte; ten tries end it.
  msgsend(kMsgLine, "lost", 4, status);
  EXPECT_EQ(status, 2);
}

}  // namespace
}  // namespace lf::test
