#include "datafile/record_format.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/text.h"

namespace kalmira {
namespace {

// Columns of a record that end in a tick: the tick and the line feed take the last 11.
constexpr int kTickColumns = 10;

std::size_t widthOf(int columns) { return static_cast<std::size_t>(std::max(columns, 0)); }

// The text in its columns, cut or padded, and the line feed that ends every record.
std::string wholeRecord(int recordLength, std::string_view text) {
  return textField(text, widthOf(recordLength - 1)) + '\n';
}

std::string recordWithTick(int recordLength, std::string_view text, std::uint32_t tick) {
  return textField(text, widthOf(recordLength - kTickColumns - 1)) + fmt::format("{:>10}\n", tick);
}

// One column holds one digit: a list position that is none is written as the list's first.
char digit(int value) { return value >= 0 && value <= 9 ? static_cast<char>('0' + value) : '0'; }

int twoDigits(int value) { return std::clamp(value, 0, 99); }

bool isPrintable(char byte) { return byte >= ' ' && byte <= '~'; }

// A receiver's bytes, each kept in its place; a stray line feed must not look like the end of a record.
std::string printableBytes(std::string_view text) {
  std::string out(text);
  for (char& byte : out) {
    if (!isPrintable(byte)) byte = '?';
  }
  return out;
}

// What stands between the lists and the screen mark: columns 20 and 21 are the ice option's or the variant's.
std::string optionColumns(const Header1& header, const Instrument& instrument) {
  const auto width = widthOf(instrument.screenMarkColumn - 20);
  std::string text;
  if (instrument.writesVariant) text += digit(header.tesk2Variant);
  if (instrument.hasIce() && header.iceOption) {
    text += digit(header.iceQuantity);
    text += header.seaWaterChoice == 10 ? 'A' : digit(header.seaWaterChoice);
  }
  text.resize(width, ' ');
  return text;
}

}  // namespace

std::string formatHeader1(const Header1& header) {
  const auto& instrument = instrumentOf(header.kind);
  std::string text = headerTag(header.kind, header.shortInstrument, header.gps);
  if (instrument.hasIce() && header.iceOption) text[7] = 'i';
  for (const int position : {header.lengthUnits, header.listB, header.surveyMode, header.listA}) {
    text += digit(position);
  }
  text += optionColumns(header, instrument);
  text += isPrintable(header.screenMark) ? header.screenMark : ' ';
  return wholeRecord(instrument.fileRecordLength, text);
}

std::string formatHeader2(int recordLength, std::string_view baseName, std::string_view surveyModeValue) {
  return wholeRecord(recordLength, "H " + textField(narrow(baseName), 9) + textField(surveyModeValue, 7));
}

std::string formatLineName(int recordLength, std::string_view lineName) {
  return wholeRecord(recordLength, tag::kLine + textField(narrow(lineName), 8));
}

std::string formatStartStation(int recordLength, double station) {
  return wholeRecord(recordLength, tag::kStart + fixedField(station, 11, 2));
}

std::string formatDirection(int recordLength, int direction, double increment) {
  const auto position = static_cast<std::size_t>(std::clamp(direction, 0, 3));
  return wholeRecord(recordLength, fmt::format("{}{}      {}", tag::kDirection, kDirectionLetters[position],
                                               fixedField(increment, 11, 3)));
}

std::string formatDate(int recordLength, const LocalTime& time) {
  return wholeRecord(recordLength, fmt::format("{}{:02}{:02}{:04} {:02}:{:02}:{:02}", tag::kDate, twoDigits(time.day),
                                               twoDigits(time.month), std::clamp(time.year, 0, 9999),
                                               twoDigits(time.hour), twoDigits(time.minute), twoDigits(time.second)));
}

std::string formatCalibration(int recordLength, int channel, double factor, double replaced) {
  return wholeRecord(recordLength, fmt::format("{}{}{} {}", tag::kCalibration, digit(channel),
                                               fixedField(factor, 10, 3), fixedField(replaced, 10, 3)));
}

std::string formatTimeMark(int recordLength, const LocalTime& time, std::uint32_t tick) {
  return recordWithTick(
      recordLength,
      fmt::format("{}{:02}:{:02}:{:02}.{:03}", tag::kTimeMark, twoDigits(time.hour), twoDigits(time.minute),
                  twoDigits(time.second), std::clamp(time.millisecond, 0, 999)),
      tick);
}

std::string formatStation(int recordLength, double station, const LocalTime& time) {
  return wholeRecord(recordLength, fmt::format("{}{} {:02}{:02}{:02}{:02}", tag::kStation, fixedField(station, 11, 2),
                                               twoDigits(time.hour), twoDigits(time.minute), twoDigits(time.second),
                                               twoDigits(time.millisecond / 10)));
}

std::string formatReading(int recordLength, std::string_view text, std::uint32_t tick) {
  return recordWithTick(recordLength, textField(text, widthOf(readingTextLength(recordLength))), tick);
}

std::string formatNote(int recordLength, char tag, std::string_view text, std::uint32_t tick) {
  return recordWithTick(recordLength, tag + textField(narrow(text), 11), tick);
}

std::string formatGpsSentence(int recordLength, std::string_view sentence, std::uint32_t tick, char first, char more) {
  const std::size_t chunk = widthOf(recordLength - 2);
  const std::string text = printableBytes(sentence);
  std::string records = wholeRecord(recordLength, first + text.substr(0, chunk));
  const std::size_t fullChunks = text.size() / chunk;
  for (std::size_t k = 1; k < fullChunks; ++k) {
    records += wholeRecord(recordLength, more + text.substr(k * chunk, chunk));
  }
  // The rest always has a record of its own: blanks after a sentence of whole chunks, and a sentence shorter than one
  // chunk stands in it a second time.
  records += wholeRecord(recordLength, more + text.substr(fullChunks * chunk));
  return records + recordWithTick(recordLength, std::string(1, tag::kGpsTick), tick);
}

}  // namespace kalmira
