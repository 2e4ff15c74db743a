// What the engine's tests share: a fresh working folder with a small case,
// a headless screen, and a host callback that collects the lines.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "lfengine.h"
#include "toolkit/headless.hpp"

namespace lf::test {

inline std::vector<std::string> printed;

inline int collect(const char* line) {
  printed.emplace_back(line);
  return 0;
}

// Writes a file with the given text.
void write_file(const std::filesystem::path& path, const std::string& text);
std::string read_file(const std::filesystem::path& path);

// Writes the case LF.*: two buses, one line, a slack generator and a load,
// solved by the given method within the given number of iterations, with
// or without area interchange control.
void write_two_bus_case(int method, int iterations = 20, int ctrl_area = 0);

// Holds the link's loopback port for the life of the object: tests of other
// builds on this machine that use the port wait instead of colliding.
class PortLock {
 public:
  PortLock();
  ~PortLock();
  PortLock(const PortLock&) = delete;
  PortLock& operator=(const PortLock&) = delete;

 private:
  int fd_;
};

// Binds the link's port without listening, so that a connection to it is
// refused; held() is false when another program has the port.
class ClosedPort {
 public:
  ClosedPort();
  ~ClosedPort();
  ClosedPort(const ClosedPort&) = delete;
  ClosedPort& operator=(const ClosedPort&) = delete;
  bool held() const { return held_; }

 private:
  int fd_;
  bool held_ = false;
};

class EngineTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // LFInit with the given flags, no database, the collecting callback.
  int init(int flags, const char* title = "Load Flow");
  int cal(int flags) { return LFCal(&flags); }
  void print(const std::string& text);

  HeadlessScreen screen;
  std::filesystem::path home, dir;
};

}  // namespace lf::test
