#include "datafile/record_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

#include "datafile/record_text.h"

namespace kalmira {
namespace {

const std::string kHeader = "ORLA2   W230GRD0000    \n";

std::unique_ptr<std::istream> bytesAsFile(std::string bytes) {
  return std::make_unique<std::istringstream>(std::move(bytes));
}

std::vector<std::string> forwards(RecordReader& reader) {
  std::vector<std::string> all;
  Record record;
  while (reader.next(record)) all.emplace_back(record.bytes);
  return all;
}

std::vector<std::string> backwards(RecordReader& reader) {
  std::vector<std::string> all;
  Record record;
  while (reader.previous(record)) all.emplace_back(record.bytes);
  std::reverse(all.begin(), all.end());
  return all;
}

std::string reading(unsigned number) {
  return formatReading(24, "T$+0001+0002", number);
}

TEST(RecordReader, NamesWhatIsNoDataFile) {
  for (const auto& [bytes, kind] : std::initializer_list<std::pair<std::string, FileErrorKind>>{
           {"", FileErrorKind::empty},
           {"ORLA2   W230GR", FileErrorKind::notADataFile},
           {std::string(4096, '\0'), FileErrorKind::notADataFile},
           {"ORLA2   W222GRD0000    \n", FileErrorKind::notADataFile}}) {
    RecordReader reader;
    EXPECT_EQ(reader.open(bytesAsFile(bytes)).kind, kind) << bytes.size();
  }
  RecordReader reader;
  EXPECT_EQ(reader.open(testing::TempDir()).kind, FileErrorKind::notAFile);
  const auto missing = reader.open(testing::TempDir() + "no such file");
  EXPECT_EQ(missing.kind, FileErrorKind::cannotOpen);
  EXPECT_EQ(missing.text, "cannot be opened: No such file or directory");
}

TEST(RecordReader, GivesTheSameRecordsBothWaysWhateverTheFilesSize) {
  // More than one window of the reader, and none of its sizes a multiple of the record length.
  std::vector<std::string> expected;
  std::string bytes = kHeader;
  for (unsigned i = 0; i < 9000; ++i) {
    expected.push_back(reading(i));
    bytes += expected.back();
  }
  RecordReader reader;
  ASSERT_EQ(reader.open(bytesAsFile(bytes + "T$+00")).kind, FileErrorKind::none);
  EXPECT_EQ(forwards(reader), expected);
  EXPECT_EQ(reader.tornBytes(), 5U);
  reader.seekToEnd();
  EXPECT_EQ(reader.tornBytes(), 5U);
  expected.insert(expected.begin(), kHeader);
  EXPECT_EQ(backwards(reader), expected);
  EXPECT_EQ(reader.skippedBytes(), 0U);
}

TEST(RecordReader, ReadsTesk2RecordsByLengthNotByLineFeed) {
  const std::string first = formatReading(26, std::string("T\n\n\n\n\n\n\n\n\n\n\n\n\n", 14), 1);
  const std::string second = formatReading(26, std::string("t\x04\0\n\0\n\0\n\0\n\0\n\0\n", 14), 2);
  std::string header = formatHeader1({.kind = Kind::tesk2});
  RecordReader reader;
  ASSERT_EQ(reader.open(bytesAsFile(header + first + second)).kind, FileErrorKind::none);
  EXPECT_EQ(reader.recordLength(), 26);
  EXPECT_EQ(forwards(reader), (std::vector{first, second}));
  EXPECT_EQ(backwards(reader), (std::vector{header, first, second}));
}

TEST(RecordReader, AModeByteMayBeALineFeed) {
  std::vector<std::string> expected;
  std::string bytes = kHeader;
  for (const char* text : {"T\n-0400+0800", "T$-0400+0800", "T\n-0400+0800", "T\r-0400+0800"}) {
    expected.push_back(formatReading(24, text, 81250));
    bytes += expected.back();
  }
  RecordReader reader;
  ASSERT_EQ(reader.open(bytesAsFile(bytes)).kind, FileErrorKind::none);
  EXPECT_EQ(forwards(reader), expected);
  expected.insert(expected.begin(), kHeader);
  EXPECT_EQ(backwards(reader), expected);
  EXPECT_EQ(reader.skippedBytes(), 0U);
}

TEST(RecordReader, GoesOnBehindDamageInBothDirections) {
  struct Case {
    std::string middle;  // between the readings 1 and 2
    std::uint64_t skipped;
  };
  for (const auto& [middle, skipped] :
       {Case{std::string(72, '\0'), 72}, Case{"T$+0001+002          9\n", 23}, Case{"T$+0001+\n", 9},
        Case{"Q                      \n", 24}, Case{"\n", 1}, Case{"C 1234\n 1234          5\n", 24},
        Case{std::string(30, 'x') + "\n", 31}}) {
    SCOPED_TRACE(middle);
    const std::string bytes = kHeader + reading(1) + middle + reading(2) + reading(3);
    RecordReader reader;
    reader.open(bytesAsFile(bytes));
    EXPECT_EQ(forwards(reader), (std::vector{reading(1), reading(2), reading(3)}));
    EXPECT_EQ(reader.skippedBytes(), skipped);
    EXPECT_EQ(reader.tornBytes(), 0U);
    reader.seek(bytes.size());
    EXPECT_EQ(backwards(reader), (std::vector{kHeader, reading(1), reading(2), reading(3)}));
  }
}

TEST(RecordReader, SeesWhatIsAppendedWhileItReads) {
  auto file = std::make_unique<std::stringstream>(kHeader + reading(1).substr(0, 9),
                                                  std::ios::in | std::ios::out | std::ios::ate);
  auto* writer = file.get();
  RecordReader reader;
  ASSERT_EQ(reader.open(std::unique_ptr<std::istream>(std::move(file))).kind, FileErrorKind::none);
  Record record;
  EXPECT_FALSE(reader.next(record));
  EXPECT_EQ(reader.tornBytes(), 9U);
  writer->clear();
  *writer << reading(1).substr(9);
  ASSERT_TRUE(reader.next(record));
  EXPECT_EQ(record.bytes, reading(1));
}

TEST(RecordReader, TellsThatAReadFailed) {
  // A device that gives its first block and then an error.
  struct FailingBuffer : std::streambuf {
    std::string left = kHeader + reading(1);
    std::streamsize xsgetn(char* to, std::streamsize) override {
      if (left.empty()) throw std::ios_base::failure("input/output error");
      left.copy(to, left.size());
      return static_cast<std::streamsize>(std::exchange(left, {}).size());
    }
  };
  struct FailingStream : FailingBuffer, std::istream {
    FailingStream() : std::istream(static_cast<FailingBuffer*>(this)) {}
  };
  RecordReader reader;
  ASSERT_EQ(reader.open(std::make_unique<FailingStream>()).kind, FileErrorKind::none);
  Record record;
  EXPECT_FALSE(reader.next(record));
  EXPECT_EQ(reader.error().kind, FileErrorKind::readFailed);
  EXPECT_EQ(reader.error().text.substr(0, 30), "cannot be read at byte 48: Inp");
}

}  // namespace
}  // namespace kalmira
