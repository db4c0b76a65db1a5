#include "viewer/readout.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "datafile/reading_context.h"
#include "datafile/record_parse.h"
#include "platform/text.h"

namespace kalmira {
namespace {

// A station has a few dozen records at most; what a damaged file holds more must not hold up the screen.
constexpr unsigned kMostRecords = 2000;
constexpr std::size_t kMostNotes = 40;

constexpr double kMetresPerFoot = 0.3048;
constexpr int kThicknessTrace = 4;

// --- what stands at a station ---

using Moment = std::optional<std::uint32_t>;

// "HHMMSS" and two digits of hundredths in columns 14 to 21.
Moment timeOfStation(std::string_view record) {
  std::uint32_t value = 0;
  for (const char c : record.substr(13, 8)) {
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + static_cast<std::uint32_t>(c - '0');
  }
  const std::uint32_t hour = value / 1000000;
  const std::uint32_t minute = value / 10000 % 100;
  const std::uint32_t second = value / 100 % 100;
  return ((hour * 60 + minute) * 60 + second) * 1000 + value % 100 * 10;
}

class NoteCollector {
 public:
  NoteCollector(const ScannedFile& file, StationNotes& notes)
      : header_(file.header), decoder_(file.header), notes_(notes) {}

  // The station's first reading ties the ticks to the clock until a time mark does.
  void takePlace(const RowPlace& place) { place_ = place; }

  void take(const Record& record) {
    const auto bytes = record.bytes;
    switch (recordTypeOf(bytes)) {
      case RecordType::timeMark:
        if (const auto mark = parseTimeMark(bytes)) times_.takeMark(*mark);
        break;
      case RecordType::comment: add(NoteKind::comment, parseNote(bytes), timeOf(bytes)); break;
      case RecordType::event: add(NoteKind::event, parseNote(bytes), timeOf(bytes)); break;
      case RecordType::station:
        add(NoteKind::newStation, std::string(trimmedStation(bytes)), timeOfStation(bytes));
        break;
      case RecordType::reading: takeReading(record); break;
      default: break;
    }
  }

 private:
  static std::string_view trimmedStation(std::string_view record) {
    const auto text = record.substr(1, 11);
    const auto first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string_view() : text.substr(first);
  }

  void takeReading(const Record& record) {
    const auto tick = parseTick(record.bytes);
    if (tick && record.offset == place_.offset && place_.timeOfDayMs != RowPlace::kNoTime)
      times_.takeMark({.timeOfDayMs = place_.timeOfDayMs, .tick = *tick});
    const auto reading = decoder_.decode(readingText(record.bytes));
    if (reading.batteryLevels) notes_.batteryLevels = true;
    // In the other modes the trigger is what takes every reading.
    if (reading.secondMode == 'M' && header_.surveyMode == kModeAuto) add(NoteKind::mark, "Mark", timeOf(record.bytes));
  }

  Moment timeOf(std::string_view record) const {
    const auto tick = parseTick(record);
    const auto moment = tick ? times_.at(*tick) : std::nullopt;
    return moment ? Moment(moment->timeOfDayMs) : std::nullopt;
  }

  void add(NoteKind kind, const std::string& text, Moment time) {
    if (notes_.notes.size() < kMostNotes) {
      notes_.notes.push_back({kind, narrow(text), time});
    } else {
      notes_.more = true;
    }
  }

  const Header1& header_;
  ReadingDecoder decoder_;
  StationNotes& notes_;
  RowPlace place_;
  RecordTimes times_;
};

bool hasRow(const ExtractedLine& line, int row) { return row >= 1 && row <= line.rowCount(); }

// Where the next station's records begin. Break rows share one place, and a row that was written late has an earlier
// one than the break rows before it.
std::uint64_t endOfRow(RecordReader& reader, const ScannedFile& file, const ExtractedLine& line, int row,
                       std::uint64_t own) {
  auto end = line.end();
  const auto take = [&end, own](int, const LineRow& made) {
    if (made.place.offset <= own) return true;
    end = made.place.offset;
    return false;
  };
  walkRows(reader, file, line, row, take,
           own + std::uint64_t{kMostRecords} * static_cast<unsigned>(reader.recordLength()));
  return end;
}

// --- the values ---

// No "-0.00": the sign of what was rounded away says nothing to anybody.
std::string twoDecimals(double value) { return fmt::format("{:.2f}", std::abs(value) < 0.005 ? 0.0 : value); }

std::string timeText(std::uint32_t timeOfDayMs) {
  const std::uint32_t seconds = timeOfDayMs / 1000;
  return fmt::format("{:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

ReadoutField thicknessField(const ScannedFile& file, float thickness) {
  ReadoutField field{.label = "Th", .value = "out of range", .unit = "", .trace = kThicknessTrace};
  if (thickness < 0.0F) return field;
  const bool feet = file.header.lengthUnits == 1;
  const double metres = static_cast<double>(thickness);
  field.value = twoDecimals(feet ? metres / kMetresPerFoot : metres);
  field.unit = feet ? "ft" : "m";
  return field;
}

void addChannels(const ScannedFile& file, const StationPoint& point, std::vector<ReadoutField>& fields) {
  const auto& instrument = instrumentOf(file.header.kind);
  // The operator asked for the instrument's own counts in place of parts per thousand.
  const bool unscaled = instrument.unscaledInphase && file.header.listA == 1;
  for (const auto& channel : channelsOf(instrument, false)) {
    if (point.channels.present[channel.slot] == 0) continue;
    const bool noUnit = unscaled && channel.axis == kInphaseAxis;
    fields.push_back({.label = std::string(channel.label),
                      .value = twoDecimals(static_cast<double>(point.channels.value[channel.slot])),
                      .unit = noUnit ? std::string() : std::string(channel.unit),
                      .trace = static_cast<int>(channel.slot)});
  }
}

// --- the scales ---

int whole(float value) { return std::isfinite(value) ? static_cast<int>(std::clamp(value, -1e9F, 1e9F)) : 0; }

std::string wholeScale(char letter, float minimum, float maximum) {
  return fmt::format("{}:{}/{}", letter, whole(minimum), whole(maximum));
}

std::string thicknessScale(float minimum, float maximum) {
  return fmt::format("T:{:.1f}/{:.1f}", static_cast<double>(minimum), static_cast<double>(maximum));
}

std::string_view noteWord(NoteKind note) {
  switch (note) {
    case NoteKind::comment: return "Comment: ";
    case NoteKind::event: return "Event: ";
    case NoteKind::newStation: return "New station ";
    case NoteKind::mark: break;
  }
  return "";
}

}  // namespace

StationNotes readStationNotes(RecordReader& reader, const ScannedFile& file, const ExtractedLine& line, int row) {
  StationNotes notes;
  if (!hasRow(line, row)) return notes;
  const auto place = placeOfRow(reader, file, line, row);
  const auto end = endOfRow(reader, file, line, row, place.offset);
  reader.seek(row == 1 ? line.begin : place.offset);
  NoteCollector collector(file, notes);
  collector.takePlace(place);
  Record record;
  unsigned count = 0;
  while (reader.next(record) && record.offset < end) {
    collector.take(record);
    if (++count < kMostRecords) continue;
    notes.more = true;
    break;
  }
  return notes;
}

RowPlace placeOfRow(RecordReader& reader, const ScannedFile& file, const ExtractedLine& line, int row) {
  RowPlace place;
  walkRows(reader, file, line, row, [&place](int, const LineRow& made) {
    place = made.place;
    return false;
  });
  return place;
}

std::vector<ReadoutField> readoutFields(const ScannedFile& file, const RowPlace& place, const StationPoint& point) {
  std::vector<ReadoutField> fields;
  fields.push_back({.label = "Stn", .value = point.valid ? twoDecimals(point.station) : "-", .unit = ""});
  const auto time = place.timeOfDayMs;
  if (time != RowPlace::kNoTime) fields.push_back({.label = "Time", .value = timeText(time), .unit = ""});
  if (!point.valid) return fields;
  addChannels(file, point, fields);
  if (point.hasThickness) fields.push_back(thicknessField(file, point.thickness));
  if (!point.hasExtras) return fields;
  constexpr std::array<std::string_view, 2> kExtraLabels{"T", "t"};
  for (std::size_t i = 0; i < kExtraLabels.size(); ++i) {
    fields.push_back({.label = std::string(kExtraLabels[i]),
                      .value = twoDecimals(static_cast<double>(point.extras[i])),
                      .unit = "",
                      .trace = static_cast<int>(kSlots + i)});
  }
  return fields;
}

std::string readoutText(const ReadoutField& field) {
  return field.unit.empty() ? fmt::format("{}: {}", field.label, field.value)
                            : fmt::format("{}: {} {}", field.label, field.value, field.unit);
}

std::string noteText(const StationNote& note) {
  const std::string time = note.timeOfDayMs ? timeText(*note.timeOfDayMs) + ' ' : std::string();
  return fmt::format("{}{}{}", time, noteWord(note.kind), note.text);
}

std::string scaleStatusText(const ScannedFile& file, const Settings& settings) {
  const auto inphase = wholeScale('I', settings.inphaseMinimum, settings.inphaseMaximum);
  if (file.wantsThickness) return thicknessScale(settings.iceMinimum, settings.iceMaximum) + "  " + inphase;
  const auto& instrument = instrumentOf(file.header.kind);
  if (instrument.firstAxisIsThickness)
    return thicknessScale(settings.conductivityMinimum, settings.conductivityMaximum) + "  " + inphase;
  const auto scales = instrument.scalesOf(file.header.listA);
  auto conductivity = wholeScale('C', settings.conductivityMinimum, settings.conductivityMaximum);
  if (!scales.inphase) return conductivity;
  return scales.conductivity ? conductivity + "  " + inphase : inphase;
}

}  // namespace kalmira
