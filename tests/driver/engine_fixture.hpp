// What the engine's tests share: a fresh working folder with a small case,
// a headless screen, and the host callback that collects the lines.
#pragma once

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "common/files.hpp"
#include "common/lines.hpp"
#include "io/msglink.hpp"
#include "lfengine.h"
#include "toolkit/headless.hpp"
#include "toolkit/toolkit.hpp"

namespace lf::test {

// Writes the case LF.*: two buses, one line, a slack generator and a load,
// solved by the given method within the given number of iterations, with
// or without area interchange control.
inline void write_two_bus_case(int method, int iterations = 20, int ctrl_area = 0) {
  write_file("LF.L0", "2 1 0 0 1 1 0 0 0 0 0\n100.0 1.1 0.9 0.0001 " + std::to_string(method) +
                          " " + std::to_string(iterations) + " " + std::to_string(ctrl_area) +
                          " 0 0 0\n");
  write_file("LF.L1", "'BUS1' 110.0 1 121.0 99.0\n'BUS2' 110.0 1 121.0 99.0\n");
  write_file("LF.L2", "1 1 2 1 0.01 0.1 0.0 0 0 0 0 0 0.0\n");
  write_file("LF.L5", "1 1 0 0.0 0.0 1.0 0.0 9.0 -9.0 9.0 0.0 0 0 0 0.0\n");
  write_file("LF.L6", "1 2 1 1 0.5 0.2 1.0 0.0 0.0 0.0 0.0 0.0 0 0 0 0.0\n");
}

inline sockaddr_in link_address() {
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_port = htons(SERV_PORT);
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return a;
}

// Holds the link's loopback port for the life of the object: tests of other
// builds on this machine that use the port wait instead of colliding.
struct PortLock {
  int fd = ::open((std::filesystem::temp_directory_path() / "lfengine-link-port.lock").c_str(),
                  O_RDWR | O_CREAT, 0666);
  PortLock() {
    if (fd >= 0) ::flock(fd, LOCK_EX);
  }
  ~PortLock() {
    if (fd >= 0) ::close(fd);
  }
  PortLock(const PortLock&) = delete;
  PortLock& operator=(const PortLock&) = delete;
};

class EngineTest : public ::testing::Test {
 protected:
  void SetUp() override {
    write_two_bus_case(0);
    printed.clear();
    set_toolkit_backend(&screen);
  }
  void TearDown() override { set_toolkit_backend(nullptr); }

  // LFInit with the given flags, no database, the collecting callback.
  int init(int flags, const char* title = "Load Flow") {
    char text[80];
    std::memset(text, 'x', sizeof text);
    std::strcpy(text, title);
    int session = 0, mode = 0;
    intptr_t callback = reinterpret_cast<intptr_t>(&keep_printed);
    return LFInit(&flags, text, &session, &callback, &mode);
  }
  int cal(int flags) { return LFCal(&flags); }
  void print(const std::string& text) {
    char buffer[80] = {};
    std::memcpy(buffer, text.data(), std::min<std::size_t>(text.size(), 79));
    LFPstring(buffer);
  }

  ScratchFolder dir{true};
  HeadlessScreen screen;
};

}  // namespace lf::test
