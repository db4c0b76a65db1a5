#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "datafile/record_format.h"
#include "export/csv_export.h"
#include "platform/text.h"

namespace kalmira {
namespace {

// The n-th fenced block of the format's description that is marked `example`, with its dots for blanks
// undone.
std::string documentedExample(int n) {
  std::ifstream in(std::string(KALMIRA_DOCS) + "/data-file-format.md");
  std::string block;
  bool inside = false;
  for (std::string line; std::getline(in, line);) {
    if (!inside) {
      inside = line == "```example" && n-- == 0;
    } else if (line == "```") {
      return block;
    } else {
      for (std::size_t at = 0; (at = line.find("\xC2\xB7", at)) != std::string::npos;) line.replace(at, 2, " ");
      block += line + '\n';
    }
  }
  return block;
}

std::string writtenExample() {
  const int length = 24;
  LocalTime time{.year = 2024, .month = 3, .day = 8, .hour = 10, .minute = 13, .second = 7, .millisecond = 250};
  std::string file = formatHeader1({.gps = true, .listB = 1, .surveyMode = 0, .screenMark = '3'}) +
                     formatHeader2(length, "030810A", fixedField(2.0, 7, 3)) + formatLineName(length, "12N") +
                     formatStartStation(length, 100.0) + formatDirection(length, 2, 2.5) + formatDate(length, time) +
                     formatTimeMark(length, time, 81250) + formatNote(length, tag::kEvent, "$STARTED", 83100);
  file += formatReading(length, "T$-0400+0800", 83150);
  file += formatGpsSentence(length, "$GPGLL,5057.9,N,00659.1,E*6E", 83300, tag::kGpsFirst, tag::kGpsMore);
  file += formatReading(length, "Td-0412+0796", 83650);
  file += formatNote(length, tag::kComment, "Fence", 83900);
  time.minute = 14;
  time.second = 2;
  time.millisecond = 80;
  file += formatStation(length, 120.0, time) + formatTimeMark(length, time, 136080);
  file += formatReading(length, "T$-0396+0804", 136400);
  return file + formatNote(length, tag::kEvent, "$PAUSED", 136900);
}

TEST(FormatDocument, ShowsAFileAsItIsWritten) { EXPECT_EQ(documentedExample(0), writtenExample()); }

TEST(FormatDocument, ShowsItsTable) {
  RecordReader reader;
  ASSERT_EQ(reader.open(std::make_unique<std::istringstream>(documentedExample(0))).kind, FileErrorKind::none);
  std::string text;
  CsvTable table{.write = [&](std::string_view piece) { return text += piece, true; }, .columns = {}};
  exportReadings(reader, table);
  EXPECT_EQ(documentedExample(1), text);
}

}  // namespace
}  // namespace kalmira
