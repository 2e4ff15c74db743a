#include <gtest/gtest.h>
#include <poll.h>

#include <array>
#include <string>

#include "driver/engine_fixture.hpp"
#include "io/channels.hpp"

namespace lf::test {
namespace {

// A status server on the loopback port: accepts the engine's connection and
// collects the bytes it sends.
class Listener {
 public:
  Listener() {
    int on = 1;
    setsockopt(fd_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in a = link_address();
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
  int fd_ = ::socket(AF_INET, SOCK_STREAM, 0), peer_ = -1;
  bool bound_ = false;
};

std::string int_bytes(int32_t v) {
  return std::string(reinterpret_cast<const char*>(&v), 4);
}
std::string header(int32_t kind, int32_t length) {
  return int_bytes(kind) + int_bytes(length);
}

using Link = EngineTest;

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
  const std::string closing = header(kMsgLine, 44) + "End of Program.  Please Close the Window....";
  EXPECT_EQ(bytes.substr(0, 12), header(kMsgStatus, 4) + int_bytes(1));
  ASSERT_GE(bytes.size(), closing.size());
  EXPECT_EQ(bytes.substr(bytes.size() - closing.size()), closing);
  CloseConnection();
}

TEST_F(Link, ReceivingTakesWhatIsThereAndNeverWaits) {
  PortLock port;
  Listener server;
  if (!server.bound()) GTEST_SKIP() << "another program has the link's port";
  ASSERT_EQ(InitConnection(nullptr), 0);
  server.accept();
  int32_t kind = -1, length = -1, status = -1;
  char body[16] = {};
  msgheadrecv(kind, length);
  msgbodyrecv(body, 0, status);  // each try finds nothing, even for no bytes
  EXPECT_EQ((std::array{kind, length, status}), (std::array{0, 0, 2}));

  server.send(header(7, 5) + "abcde" + header(8, 3) + "xyz");
  pollfd p{static_cast<int>(sock_fd), POLLIN, 0};
  ::poll(&p, 1, 2000);
  msgheadrecv(kind, length);
  msgbodyrecv(body, length, status);
  EXPECT_EQ((std::array{kind, length, status}), (std::array{7, 5, 0}));
  EXPECT_EQ(std::string(body, 5), "abcde");
  msgheadrecv(kind, length);
  msgbodyclr(length, status);  // skips the body
  EXPECT_EQ((std::array{kind, status}), (std::array{8, 0}));
  msgheadrecv(kind, length);
  EXPECT_EQ(kind, 0);

  int32_t value = 42;
  msgsend(kMsgStatus, &value, 4, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(CloseConnection(), 0);
  std::string bytes;
  EXPECT_TRUE(server.drain(bytes));
  EXPECT_EQ(bytes, header(kMsgStatus, 4) + int_bytes(42));
  // On a closed link every try fails and steps back a byte; ten tries end it.
  msgsend(kMsgLine, "lost", 4, status);
  EXPECT_EQ(status, 2);
}

}  // namespace
}  // namespace lf::test
