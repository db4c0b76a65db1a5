#include "instruments/rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/text.h"

namespace kalmira {
namespace {

constexpr std::size_t kFirstField = 2;
constexpr std::size_t kSecondField = 7;
constexpr std::size_t kFieldLength = 5;
constexpr std::size_t kTwoFields = 8;  // a shorter record has one
constexpr int kConductivityComponent = 2;

constexpr std::array<std::string_view, 3> kDipoles{"Vertical", "Horizontal", "Both"};
constexpr std::array<std::string_view, 3> kComponents{"Both", "Inphase", "Conductivity"};

int modeByte(std::string_view record) { return record.size() > 1 ? static_cast<unsigned char>(record[1]) : ' '; }

float rawField(std::string_view record, std::size_t start) {
  const auto value = static_cast<float>(parseReal(record.substr(std::min(start, record.size()), kFieldLength)));
  return std::isfinite(value) ? value : 0.0F;  // noise may spell "nan"
}

}  // namespace

bool takeWeight(int& rest, int weight) {
  if (rest < weight) return false;
  rest -= weight;
  return true;
}

AsciiMode readMode(std::string_view record, const DecodeOptions& options, Reading& reading) {
  AsciiMode mode;
  int rest = modeByte(record);
  mode.odd = rest % 2 == 1;
  // Exactly 128 is not above 128 and keeps its weight; no instrument sends it, and it leaves range code 8.
  if (rest > 128) rest -= 128;
  const bool marked = takeWeight(rest, 64);
  reading.secondMode = marked && options.gpsLoggingMode != kModeManual ? 'M' : 'N';
  mode.rest = rest;
  reading.orientation = takeWeight(rest, 32) ? 'V' : 'H';
  mode.divisor = takeWeight(rest, 16) ? 8.0 : 1.0;
  takeWeight(rest, 8);
  mode.code = rest;
  return mode;
}

double asciiField(std::string_view record, std::size_t position, std::size_t width) {
  if (position >= record.size()) return 0.0;
  return parseReal(record.substr(position, width));
}

void put(Channels& channels, std::size_t slot, float value) {
  channels.value[slot] = value;
  channels.present[slot] = 1;
}

RangeRow componentRange(int code, int& recordType) {
  recordType = code < 4 ? 1 : 2;
  const bool wide = (code < 4 ? code : code - 4) == 3;
  if (recordType == 1) return wide ? RangeRow{1000, -0.0288} : RangeRow{100, -0.00288};
  return wide ? RangeRow{1000, -1.0} : RangeRow{100, -0.1};
}

bool asciiTriggerPressed(std::string_view record) {
  const int mode = modeByte(record);
  return (mode >= 128 ? mode - 128 : mode) >= 64;
}

RecordFields asciiFirstField(std::string_view record) { return {.value = {rawField(record, kFirstField)}, .count = 1}; }

RecordFields asciiRawFields(std::string_view record) {
  if (record.size() < kTwoFields) return asciiFirstField(record);
  return {.value = {rawField(record, kFirstField), rawField(record, kSecondField)}, .count = 2};
}

// Sign and four digits.
void putAsciiFields(std::span<char> record, const RecordFields& fields) {
  for (std::size_t i = 0; i < fields.count; ++i) {
    const auto text = fmt::format("{:+05}", static_cast<int>(std::clamp(fields.value[i], -9999.0F, 9999.0F)));
    std::ranges::copy(text, record.subspan(i == 0 ? kFirstField : kSecondField).begin());
  }
}

int dipolesAtStation(int, int listB) { return listB == 2 ? 2 : 1; }

SurveyList dipoleList(int) { return {.label = "Dipole Mode", .entries = kDipoles}; }

// Both components can only be had one after the other, at a station where the operator waits for them.
SurveyList componentList(int surveyMode) {
  SurveyList list{.label = "Component", .entries = kComponents};
  if (surveyMode != kModeManual) {
    list.entries = list.entries.subspan(1);
    list.firstValue = 1;
    list.usual = kConductivityComponent;
  }
  return list;
}

std::string dipoleRangeText(const Reading& reading, bool wide) {
  const std::string_view word = reading.orientation == 'V' ? "Vertical" : "Horizontal";
  return wide ? fmt::format("{} Dipoles   Range:{:<4}", word, reading.range)
              : fmt::format("{}  G{:<4}", word, reading.range);
}

std::string valueText(std::string_view label, float value, std::string_view unit, bool wide) {
  return fmt::format("{}:{:<8.2f}{}", label, static_cast<double>(value), wide ? unit : std::string_view{});
}

std::string dipoleModeText(int, int, int listB) {
  constexpr std::string_view kModes = "VHB";
  return fmt::format("Mode:{}", kModes[listB >= 0 && listB < 3 ? static_cast<std::size_t>(listB) : 0]);
}

}  // namespace kalmira
