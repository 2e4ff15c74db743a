// What every fuzz target shares: a scratch folder of its own (in memory
// where the system offers one), files written from parts of the input, and
// an engine that prints nothing.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "io/channels.hpp"

namespace lf::fuzz {

// The folder, made once per process; case names hold 60 characters, so the
// path stays short.
inline const std::string& scratch() {
  static const std::string dir = [] {
    std::filesystem::path base = std::filesystem::exists("/dev/shm") ? "/dev/shm" : "/tmp";
    auto d = base / ("lffz" + std::to_string(::getpid()));
    std::filesystem::create_directories(d);
    prnon = 0;                               // no engine line reaches any channel
    std::freopen("/dev/null", "w", stdout);  // nor the plain printed ones
    return d.string();
  }();
  return dir;
}

inline void write_file(const std::string& path, std::string_view text) {
  if (std::FILE* f = std::fopen(path.c_str(), "wb")) {
    std::fwrite(text.data(), 1, text.size(), f);
    std::fclose(f);
  }
}

// The input cut at NUL bytes into at most n parts; missing parts are empty.
inline std::vector<std::string_view> parts(const uint8_t* data, std::size_t size, std::size_t n) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  std::vector<std::string_view> out;
  while (out.size() + 1 < n) {
    std::size_t cut = rest.find('\0');
    if (cut == std::string_view::npos) break;
    out.push_back(rest.substr(0, cut));
    rest.remove_prefix(cut + 1);
  }
  out.push_back(rest);
  out.resize(n);
  return out;
}

}  // namespace lf::fuzz
