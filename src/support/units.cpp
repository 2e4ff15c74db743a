#include "support/units.hpp"

#include <bit>
#include <map>

namespace lf {

namespace {

struct Slot {
  std::FILE* f = nullptr;
  std::string path;
  FileForm form = FileForm::Formatted;
};

// The open units by number, over the whole run: a unit stays open from
// unit_open to unit_close, across calculations when its owner leaves it
// open.  Written by unit_open and unit_close, read by every unit operation.
std::map<int, Slot> UNITS;

Slot* find(int unit) {
  auto it = UNITS.find(unit);
  return it == UNITS.end() ? nullptr : &it->second;
}

std::FILE* file_of(int unit, FileForm form) {
  Slot* s = find(unit);
  return s && s->form == form ? s->f : nullptr;
}

bool exists(const std::string& path) {
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (!f) return false;
  std::fclose(f);
  return true;
}

void put_u32(std::vector<unsigned char>& rec, uint32_t v) {
  for (int k = 0; k < 4; ++k) rec.push_back(static_cast<unsigned char>(v >> (8 * k)));
}

uint32_t get_u32(const unsigned char* p) {
  uint32_t v = 0;
  for (int k = 3; k >= 0; --k) v = (v << 8) | p[k];
  return v;
}

}  // namespace

bool unit_open(int unit, std::string_view path, FileStatus status, FileForm form) {
  unit_close(unit);
  std::string p(path);
  std::FILE* f = nullptr;
  switch (status) {
    case FileStatus::Old:
      f = std::fopen(p.c_str(), "r+b");
      if (!f) f = std::fopen(p.c_str(), "rb");  // a file that may only be read
      break;
    case FileStatus::New:
      if (!exists(p)) f = std::fopen(p.c_str(), "w+b");
      break;
    case FileStatus::Replace:
      f = std::fopen(p.c_str(), "w+b");
      break;
  }
  if (!f) return false;
  UNITS[unit] = Slot{f, p, form};
  return true;
}

void unit_close(int unit, bool del) {
  auto it = UNITS.find(unit);
  if (it == UNITS.end()) return;
  std::fclose(it->second.f);
  if (del) std::remove(it->second.path.c_str());
  UNITS.erase(it);
}

bool unit_is_open(int unit) {
  return find(unit) != nullptr;
}

void unit_rewind(int unit) {
  if (Slot* s = find(unit)) std::rewind(s->f);
}

std::FILE* unit_file(int unit) {
  Slot* s = find(unit);
  return s ? s->f : nullptr;
}

bool unit_write_line(int unit, std::string_view line) {
  std::FILE* f = file_of(unit, FileForm::Formatted);
  if (!f) return false;
  std::fseek(f, 0, SEEK_CUR);  // a write may follow a read
  return std::fwrite(line.data(), 1, line.size(), f) == line.size() && std::fputc('\n', f) != EOF;
}

bool unit_read_line(int unit, std::string& line) {
  std::FILE* f = file_of(unit, FileForm::Formatted);
  if (!f) return false;
  std::fseek(f, 0, SEEK_CUR);  // a read may follow a write
  line.clear();
  int c;
  while ((c = std::fgetc(f)) != EOF && c != '\n') line.push_back(static_cast<char>(c));
  if (c == EOF && line.empty()) return false;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

bool unit_write_record(int unit, const std::vector<unsigned char>& record) {
  std::FILE* f = file_of(unit, FileForm::Unformatted);
  if (!f) return false;
  std::vector<unsigned char> framed;
  framed.reserve(record.size() + 8);
  put_u32(framed, static_cast<uint32_t>(record.size()));
  framed.insert(framed.end(), record.begin(), record.end());
  put_u32(framed, static_cast<uint32_t>(record.size()));
  std::fseek(f, 0, SEEK_CUR);
  return std::fwrite(framed.data(), 1, framed.size(), f) == framed.size();
}

bool unit_read_record(int unit, std::vector<unsigned char>& record) {
  std::FILE* f = file_of(unit, FileForm::Unformatted);
  if (!f) return false;
  std::fseek(f, 0, SEEK_CUR);
  unsigned char mark[4];
  if (std::fread(mark, 1, 4, f) != 4) return false;
  uint32_t n = get_u32(mark);
  long here = std::ftell(f);
  std::fseek(f, 0, SEEK_END);
  long end = std::ftell(f);
  std::fseek(f, here, SEEK_SET);
  if (here < 0 || end - here < static_cast<long>(n) + 4) return false;  // a cut or garbled record
  record.resize(n);
  if (std::fread(record.data(), 1, n, f) != n) return false;
  if (std::fread(mark, 1, 4, f) != 4) return false;
  return get_u32(mark) == n;
}

bool unit_write_bytes(int unit, const void* data, std::size_t n) {
  std::FILE* f = file_of(unit, FileForm::Stream);
  if (!f) return false;
  std::fseek(f, 0, SEEK_CUR);
  return std::fwrite(data, 1, n, f) == n;
}

bool unit_read_bytes(int unit, void* data, std::size_t n) {
  std::FILE* f = file_of(unit, FileForm::Stream);
  if (!f) return false;
  std::fseek(f, 0, SEEK_CUR);
  return std::fread(data, 1, n, f) == n;
}

void put_i4(std::vector<unsigned char>& rec, int32_t v) {
  put_u32(rec, static_cast<uint32_t>(v));
}
void put_r4(std::vector<unsigned char>& rec, float v) {
  put_u32(rec, std::bit_cast<uint32_t>(v));
}
void put_r8(std::vector<unsigned char>& rec, double v) {
  uint64_t u = std::bit_cast<uint64_t>(v);
  put_u32(rec, static_cast<uint32_t>(u));
  put_u32(rec, static_cast<uint32_t>(u >> 32));
}
void put_text(std::vector<unsigned char>& rec, std::string_view text) {
  rec.insert(rec.end(), text.begin(), text.end());
}
int32_t get_i4(const unsigned char* p) {
  return static_cast<int32_t>(get_u32(p));
}
float get_r4(const unsigned char* p) {
  return std::bit_cast<float>(get_u32(p));
}
double get_r8(const unsigned char* p) {
  return std::bit_cast<double>(static_cast<uint64_t>(get_u32(p)) |
                               (static_cast<uint64_t>(get_u32(p + 4)) << 32));
}

}  // namespace lf
