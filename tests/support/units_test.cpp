#include "support/units.hpp"

#include <gtest/gtest.h>

#include <cstdio>

#include "common/files.hpp"

namespace lf {
namespace {

using test::read_file;

TEST(Units, StatusesRewindAndDelete) {
  std::string p = "lf_units_lines.txt";
  std::remove(p.c_str());
  EXPECT_FALSE(unit_open(12, p, FileStatus::Old));
  ASSERT_TRUE(unit_open(12, p, FileStatus::New));
  EXPECT_TRUE(unit_write_line(12, " header"));
  EXPECT_TRUE(unit_write_line(12, "second"));
  unit_rewind(12);
  std::string line;
  ASSERT_TRUE(unit_read_line(12, line));
  EXPECT_EQ(line, " header");
  ASSERT_TRUE(unit_read_line(12, line));
  EXPECT_EQ(line, "second");
  EXPECT_FALSE(unit_read_line(12, line));
  unit_close(12);
  EXPECT_FALSE(unit_is_open(12));
  EXPECT_FALSE(unit_open(12, p, FileStatus::New));  // exists already
  ASSERT_TRUE(unit_open(7, p, FileStatus::Old));
  unit_close(7, true);
  EXPECT_FALSE(test::fs::exists(p));
  ASSERT_TRUE(unit_open(8, p, FileStatus::Replace));
  unit_close(8);
  EXPECT_EQ(read_file(p), "");
  std::remove(p.c_str());
}

TEST(Units, UnformattedRecordsCarryLengthMarks) {
  std::string p = "lf_units_rec.bin";
  ASSERT_TRUE(unit_open(71, p, FileStatus::Replace, FileForm::Unformatted));
  std::vector<unsigned char> rec;
  put_i4(rec, -2);
  put_r4(rec, 1.5f);
  put_r8(rec, 0.1);
  put_text(rec, "AB");
  ASSERT_TRUE(unit_write_record(71, rec));
  EXPECT_FALSE(unit_write_line(71, "not text"));  // wrong form
  unit_rewind(71);
  std::vector<unsigned char> back;
  ASSERT_TRUE(unit_read_record(71, back));
  ASSERT_EQ(back.size(), 18u);
  EXPECT_EQ(get_i4(back.data()), -2);
  EXPECT_EQ(get_r4(back.data() + 4), 1.5f);
  EXPECT_EQ(get_r8(back.data() + 8), 0.1);
  EXPECT_FALSE(unit_read_record(71, back));
  unit_close(71);
  std::string bytes = read_file(p);
  ASSERT_EQ(bytes.size(), 26u);
  EXPECT_EQ(bytes.substr(0, 4), std::string("\x12\0\0\0", 4));
  EXPECT_EQ(bytes.substr(22, 4), std::string("\x12\0\0\0", 4));
  EXPECT_EQ(bytes.substr(4, 4), std::string("\xfe\xff\xff\xff", 4));

  // A record cut short is refused, not read past its end.
  test::write_file(p, std::string("\xff\xff\0\0abc", 7));
  ASSERT_TRUE(unit_open(71, p, FileStatus::Old, FileForm::Unformatted));
  EXPECT_FALSE(unit_read_record(71, back));
  unit_close(71, true);
}

TEST(Units, StreamsAreBareBytes) {
  std::string p = "lf_units_stream.bin";
  ASSERT_TRUE(unit_open(9, p, FileStatus::Replace, FileForm::Stream));
  float v[2] = {1.0f, -2.0f};
  ASSERT_TRUE(unit_write_bytes(9, v, sizeof v));
  unit_close(9);
  EXPECT_EQ(read_file(p).size(), 8u);
  ASSERT_TRUE(unit_open(9, p, FileStatus::Old, FileForm::Stream));
  float w[2] = {0, 0};
  ASSERT_TRUE(unit_read_bytes(9, w, sizeof w));
  EXPECT_EQ(w[1], -2.0f);
  EXPECT_FALSE(unit_read_bytes(9, w, 4));
  unit_close(9, true);
}

}  // namespace
}  // namespace lf
