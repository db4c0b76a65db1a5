#include "check/report_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "export/cells.h"
#include "gps/nmea.h"
#include "instruments/catalogue.h"

namespace kalmira {
namespace {

using Text = std::string;

template <class... Arguments>
void say(Text& text, std::string_view key, fmt::format_string<Arguments...> pattern, Arguments&&... arguments) {
  fmt::format_to(std::back_inserter(text), "  {}: ", key);
  fmt::format_to(std::back_inserter(text), pattern, std::forward<Arguments>(arguments)...);
  text += '\n';
}

std::string counted(std::uint64_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

template <class Thing>
void sayMore(Text& text, std::string_view key, const Listed<Thing>& list) {
  if (list.count > list.kept.size()) say(text, key, "and {} more", list.count - list.kept.size());
}

// A damaged file may have any bytes in its texts.
std::string inQuotes(std::string_view text) {
  std::string plain(text);
  std::replace_if(
      plain.begin(), plain.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
  return '"' + plain + '"';
}

std::string momentText(const std::optional<Moment>& moment) {
  if (!moment) return "an unknown time";
  std::string text;
  if (moment->day) appendDate(text, *moment->day);
  if (moment->day) text += ' ';
  appendTimeOfDay(text, moment->timeOfDayMs);
  return text;
}

std::string placeText(std::uint64_t offset, int recordLength) {
  return fmt::format("byte {}, record {}", offset, offset / static_cast<std::uint64_t>(recordLength) + 1);
}

// "Component Both", or nothing where the list has no such entry.
void appendChoice(std::string& text, const SurveyList& list, int value) {
  if (!list.offers(value)) return;
  text += fmt::format(", {} {}", list.label, list.entries[static_cast<std::size_t>(value - list.firstValue)]);
}

std::string settingsText(const FileCheck& check) {
  const auto& header = check.header;
  const auto& instrument = instrumentOf(header.kind);
  const auto& value = check.survey.modeValue;
  std::string text;
  switch (header.surveyMode) {
    case kModeAuto: text = fmt::format("Auto, {} readings a second", value.empty() ? "?" : value); break;
    case kModeWheel: text = fmt::format("Wheel, station increment {}", value.empty() ? "?" : value); break;
    case kModeManual: text = fmt::format("Manual, readings averaged {}", value.empty() ? "?" : value); break;
    default: text = fmt::format("survey mode {}, which is none", header.surveyMode); break;
  }
  appendChoice(text, instrument.listA(header.surveyMode), header.listA);
  appendChoice(text, instrument.listB(header.surveyMode), header.listB);
  if (instrument.writesVariant) text += fmt::format(", variant {}", header.tesk2Variant);
  if (header.iceOption) {
    text += fmt::format(", sea water {} mS/m, {}", 2000 + 100 * header.seaWaterChoice,
                        header.iceQuantity == 1 ? "ice thickness" : "no ice thickness");
  }
  return text + (header.lengthUnits == 1 ? ", feet" : ", metres");
}

std::string stationText(const std::optional<double>& station) {
  return station ? fmt::format("{:.2f}", *station) : "unknown";
}

void sayState(Text& text, const FileCheck& check) {
  const auto damage = check.survey.damage.count + (check.tear ? 1 : 0);
  const char* word = "damaged";
  if (check.error.kind != FileErrorKind::none) word = "unreadable";
  if (check.sound()) word = "sound";
  const bool onlyRest = damage == 0 && check.error.kind == FileErrorKind::none &&
                        check.headerState == FileCheck::Header::sound && !check.sound();
  if (onlyRest) word = "not complete";
  say(text, "state", "{}{}", word, damage > 0 ? ", " + counted(damage, "place", "places") : "");
  if (check.error.kind != FileErrorKind::none) say(text, "error", "{}", check.error.text);
}

void sayHeader(Text& text, const FileCheck& check) {
  const auto& header = check.header;
  const auto& instrument = instrumentOf(header.kind);
  const bool missing = check.headerState == FileCheck::Header::missing;
  say(text, "instrument", "{}{}{}{}{}", instrument.name, header.shortInstrument ? ", short" : "",
      header.iceOption ? ", on ice" : "", header.gps ? ", with a GPS receiver" : "",
      missing ? ", by the ending of the name" : "");
  if (missing) {
    say(text, "header", "missing: the settings are not known");
  } else if (check.headerState == FileCheck::Header::damaged) {
    say(text, "header", "damaged: the settings are taken as far as they can be read");
  }
  if (!missing) say(text, "settings", "{}", settingsText(check));
}

void sayLines(Text& text, const SurveyReport& survey) {
  say(text, "lines", "{}", survey.lines.count);
  for (const auto& line : survey.lines.kept) {
    const auto stations =
        line.readings == 0 ? "" : fmt::format("stations {} to {}, ", stationText(line.first), stationText(line.last));
    say(text, "line", "{}, {}{}", inQuotes(line.name), stations, counted(line.readings, "reading", "readings"));
  }
  sayMore(text, "line", survey.lines);
  say(text, "readings", "{}", survey.readings);
  if (survey.timelessReadings > 0) say(text, "readings without a time", "{}", survey.timelessReadings);
  if (survey.first) {
    say(text, "times", "{} to {}", momentText(survey.first), momentText(survey.last));
  } else {
    say(text, "times", "unknown: there is no time mark");
  }
}

void sayGaps(Text& text, const SurveyReport& survey, int recordLength) {
  static constexpr std::array<std::string_view, 3> kWords{"pause", "broken connection", "silence"};
  say(text, "gaps", "{}, {}, {}", counted(survey.gapCounts[0], "pause", "pauses"),
      counted(survey.gapCounts[1], "broken connection", "broken connections"),
      counted(survey.gapCounts[2], "unmarked silence", "unmarked silences"));
  for (const auto& gap : survey.gaps.kept) {
    const auto length = gap.ms ? fmt::format("{:.1f} s", *gap.ms / 1000.0) : "to the end";
    say(text, "gap", "{}, {}, from {}, {}", kWords.at(static_cast<std::size_t>(gap.why)), length, momentText(gap.since),
        placeText(gap.offset, recordLength));
  }
  sayMore(text, "gap", survey.gaps);
  static constexpr std::array<std::string_view, 3> kEnds{
      "recording never began", "paused", "without \"$PAUSED\", which is no damage: something ended the logger"};
  say(text, "end", "{}", kEnds.at(static_cast<std::size_t>(survey.end)));
}

void sayPositions(Text& text, const SurveyReport& survey) {
  say(text, "positions", "{} with a right checksum", counted(survey.gga, "GGA sentence", "GGA sentences"));
  std::uint64_t told = 0;
  for (std::size_t quality = 0; quality < survey.fixes.size(); ++quality) {
    const auto count = survey.fixes[quality];
    told += count;
    if (count > 0) say(text, "fix", "{} of quality {} ({})", count, quality, fixWord(static_cast<char>('0' + quality)));
  }
  if (told < survey.gga) say(text, "fix", "{} without a quality", survey.gga - told);
  say(text, "wrong checksums", "{}", survey.wrongChecksums);
  if (survey.otherSentences > 0) say(text, "other sentences", "{}", survey.otherSentences);
  if (survey.otherTexts > 0) say(text, "other texts of the GPS port", "{}", survey.otherTexts);
}

void sayDamage(Text& text, const FileCheck& check, int recordLength) {
  const auto sayPlace = [&](std::string_view key, const FilePlace& place) {
    say(text, key, "{}, {}: {}", placeText(place.offset, recordLength), counted(place.bytes, "byte", "bytes"),
        place.what);
  };
  auto places = check.survey.damage.kept;
  std::ranges::stable_sort(places, {}, &FilePlace::offset);
  for (const auto& place : places) sayPlace("damage", place);
  sayMore(text, "damage", check.survey.damage);
  if (check.tear) sayPlace("tear", *check.tear);
}

void sayRest(Text& text, const Rest& rest) {
  for (const auto& file : rest.files) {
    say(text, "rest", "{}, {} that found no room in the file, {} of them in it already{}", file.name,
        counted(file.records, "record", "records"), file.already,
        file.damagedBytes > 0 ? fmt::format(", {} damaged bytes", file.damagedBytes) : "");
  }
  if (!rest.problem.empty()) say(text, "rest", "{}", rest.problem);
}

}  // namespace

std::string reportText(const std::string& name, const FileCheck& check, const std::string& repaired) {
  Text text = name + '\n';
  if (!check.opened) {
    say(text, "state", "unreadable");
    say(text, "error", "{}", check.error.text);
  } else {
    const int recordLength = instrumentOf(check.header.kind).fileRecordLength;
    sayState(text, check);
    sayHeader(text, check);
    say(text, "size", "{} bytes, {} sound records of {}", check.size, check.survey.records, recordLength);
    sayLines(text, check.survey);
    sayGaps(text, check.survey, recordLength);
    sayPositions(text, check.survey);
    sayDamage(text, check, recordLength);
    sayRest(text, check.rest);
  }
  if (!repaired.empty()) say(text, "repaired", "{}", repaired);
  return text;
}

}  // namespace kalmira
