#include "engine/engine_fixture.hpp"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <sstream>

#include "engine/channels.hpp"
#include "engine/msglink.hpp"
#include "toolkit/toolkit.hpp"

namespace lf::test {

void write_file(const std::filesystem::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string read_file(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

void write_two_bus_case(int method, int iterations, int ctrl_area) {
  write_file("LF.L0", "2 1 0 0 1 1 0 0 0 0 0\n100.0 1.1 0.9 0.0001 " + std::to_string(method) +
                          " " + std::to_string(iterations) + " " + std::to_string(ctrl_area) +
                          " 0 0 0\n");
  write_file("LF.L1", "'BUS1' 110.0 1 121.0 99.0\n'BUS2' 110.0 1 121.0 99.0\n");
  write_file("LF.L2", "1 1 2 1 0.01 0.1 0.0 0 0 0 0 0 0.0\n");
  write_file("LF.L5", "1 1 0 0.0 0.0 1.0 0.0 9.0 -9.0 9.0 0.0 0 0 0 0.0\n");
  write_file("LF.L6", "1 2 1 1 0.5 0.2 1.0 0.0 0.0 0.0 0.0 0.0 0 0 0 0.0\n");
}

PortLock::PortLock() {
  const std::string path = (std::filesystem::temp_directory_path() / "lfengine-link-port.lock");
  fd_ = ::open(path.c_str(), O_RDWR | O_CREAT, 0666);
  if (fd_ >= 0) ::flock(fd_, LOCK_EX);
}

PortLock::~PortLock() {
  if (fd_ >= 0) ::close(fd_);
}

ClosedPort::ClosedPort() {
  fd_ = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_port = htons(SERV_PORT);
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  held_ = fd_ >= 0 && ::bind(fd_, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0;
}

ClosedPort::~ClosedPort() {
  if (fd_ >= 0) ::close(fd_);
}

void EngineTest::SetUp() {
  home = std::filesystem::current_path();
  dir = std::filesystem::temp_directory_path() /
        ("lfengine_test_" + std::to_string(getpid()) + "_" +
         ::testing::UnitTest::GetInstance()->current_test_info()->name());
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir);
  std::filesystem::current_path(dir);
  write_two_bus_case(0);
  printed.clear();
  set_toolkit_backend(&screen);
}

void EngineTest::TearDown() {
  set_toolkit_backend(nullptr);
  std::filesystem::current_path(home);
  std::filesystem::remove_all(dir);
}

int EngineTest::init(int flags, const char* title) {
  char text[80];
  std::memset(text, 'x', sizeof text);
  std::strcpy(text, title);
  int session = 0, mode = 0;
  intptr_t callback = reinterpret_cast<intptr_t>(&collect);
  return LFInit(&flags, text, &session, &callback, &mode);
}

void EngineTest::print(const std::string& text) {
  char buffer[80];
  std::memset(buffer, 0, sizeof buffer);
  std::memcpy(buffer, text.data(), std::min<std::size_t>(text.size(), 79));
  LFPstring(buffer);
}

}  // namespace lf::test
