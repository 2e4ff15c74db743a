// Numbered file units: a small table of open files keyed by unit number
// (12 the error list, 7 and 8 short-lived files, 71 and up the model tables).
//
// A unit is opened on a path with a status: Old (the file must exist), New
// (it must not exist yet) or Replace (made empty or created).  It is closed
// keeping or deleting the file.  Opening a unit that is already open closes
// it first.  A unit carries one of three forms:
//   Formatted    lines of text,
//   Unformatted  sequential records, each framed by its length in bytes as a
//                4-byte little-endian integer before and after the record,
//   Stream       plain bytes without record marks.
// All operations on a unit that is not open fail quietly (false, or nothing).
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace lf {

enum class FileStatus { Old, New, Replace };
enum class FileForm { Formatted, Unformatted, Stream };

// False when the file cannot be opened with the given status.
bool unit_open(int unit, std::string_view path, FileStatus status,
               FileForm form = FileForm::Formatted);
// Closes the unit; with del the file is removed as well.
void unit_close(int unit, bool del = false);
bool unit_is_open(int unit);
void unit_rewind(int unit);
// The open file of a unit, or nullptr.
std::FILE* unit_file(int unit);

// One line of text; the line end is added on writing and removed on reading.
// Reading gives false at end of file.
bool unit_write_line(int unit, std::string_view line);
bool unit_read_line(int unit, std::string& line);

// One record of an unformatted unit.  Reading gives false at end of file and
// when the record is cut short or its two length marks differ.
bool unit_write_record(int unit, const std::vector<unsigned char>& record);
bool unit_read_record(int unit, std::vector<unsigned char>& record);

// Bytes of a stream unit.  Reading gives false unless all n bytes came.
bool unit_write_bytes(int unit, const void* data, std::size_t n);
bool unit_read_bytes(int unit, void* data, std::size_t n);

// Little-endian encoding of the values held in unformatted records and
// streams: put_* appends to a record, get_* reads at a byte position.
void put_i4(std::vector<unsigned char>& rec, int32_t v);
void put_r4(std::vector<unsigned char>& rec, float v);
void put_r8(std::vector<unsigned char>& rec, double v);
void put_text(std::vector<unsigned char>& rec, std::string_view text);
int32_t get_i4(const unsigned char* p);
float get_r4(const unsigned char* p);
double get_r8(const unsigned char* p);

}  // namespace lf
