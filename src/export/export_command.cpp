#include "export/export_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "instruments/start_options.h"
#include "platform/text.h"

namespace kalmira {
namespace {

// What a number out of its range is answered with, the option's own words tell.
const std::string kWrong = "wrong";

TakeValue numberInto(double& field, double least, double most) {
  return [&field, least, most](const std::string& value) {
    const auto number = wholeNumber<double>(value);
    if (!number || *number < least || *number > most) return kWrong;
    field = *number;
    return std::string();
  };
}

std::string takeAntenna(const std::string& value, PositionOptions& positions) {
  constexpr double kFarthest_m = 100;
  std::string_view rest = value;
  const std::array fields{&positions.ahead_m, &positions.right_m, &positions.up_m};
  for (auto* const field : fields) {
    const auto comma = rest.find(',');
    const auto number = wholeNumber<double>(rest.substr(0, comma));
    const bool last = field == fields.back();
    if (!number || std::abs(*number) > kFarthest_m || (comma == std::string_view::npos) != last) return kWrong;
    *field = *number;
    if (!last) rest.remove_prefix(comma + 1);
  }
  return {};
}

CommandGroup positionOptions(ExportRequest& request) {
  auto& positions = request.positions;
  const auto takeZone = [&request](const std::string& value) {
    const auto number = parseZone(value, true);
    if (!number) return kWrong;
    request.positions.zone = number->number;
    request.zone = parseZone(value, std::nullopt);
    return std::string();
  };
  const auto takeGrid = [&request](const std::string& value) {
    request.grid = parseGridPlacement(value);
    return request.grid ? std::string() : kWrong;
  };
  const auto antenna = [&request](const std::string& value) {
    request.antennaGiven = true;
    return takeAntenna(value, request.positions);
  };
  const auto lag = [&request](const std::string& value) {
    request.lag_s = 0;
    return numberInto(*request.lag_s, -10, 10)(value);
  };
  return {"Positions",
          {{"--gps-lag", "S", "seconds by which the fastest sentence comes after the moment of its fix", lag,
            "a number from -10 to 10"},
           {"--max-gap", "S", "no position is made up across a longer gap between two fixes (5)",
            numberInto(positions.maxGap_s, 0, 3600), "a number from 0 to 3600"},
           {"--max-speed", "M/S", "what is farther from the fix before it than this speed allows is no fix (15)",
            numberInto(positions.maxSpeed_mps, 0, 1000), "a number from 0 to 1000"},
           {"--antenna", "AHEAD,RIGHT,UP", "metres from the middle of the instrument to the antenna", antenna,
            "three numbers from -100 to 100 such as 0.5,0,1.8"},
           {"--utm", "ZONE", "zone of eastings and northings, in place of the first position's own", takeZone,
            "a zone from 1 to 60 such as 33 or 33N"},
           {"--grid", "E,N,AZIMUTH,ZONE",
            "places the survey's own grid: its origin, its y axis clockwise from north, its zone", takeGrid,
            "a place such as 500000,5500000,30,32N"}}};
}

std::vector<std::string> formatNames() {
  std::vector<std::string> names;
  for (const auto& row : exportFormats()) names.emplace_back(row.ending);
  return names;
}
// The table of options only refers to it.
std::string_view formatList() {
  static const auto text = fmt::format("{}", fmt::join(formatNames(), ", "));
  return text;
}
const std::string& helpNotes() {
  static const std::string text = [] {
    std::string lines = "Formats:\n";
    for (const auto& row : exportFormats()) lines += fmt::format("  {:<9}{}\n", row.ending, row.content);
    return lines + "\nExit status: 0 done, 1 a file gave nothing or the output could not be written, 2 wrong usage.\n";
  }();
  return text;
}

std::string takeFormat(const std::string& value, ExportRequest& request) {
  const auto found = std::ranges::find(exportFormats(), value, &FormatRow::ending);
  if (found == exportFormats().end()) return kWrong;
  request.format = found->format;
  return {};
}

// Empty when the choices go together.
std::string whyNot(const ExportRequest& request) {
  if (request.files.empty()) return "no data file was named";
  const auto& format = formatRow(formatOf(request));
  const bool events = request.table == TableOf::events;
  if (events && request.wide) return "--wide is of readings, --events of no reading";
  if (events && !format.events) return fmt::format("--events makes no {}", format.ending);
  if (request.wide && !format.wide) return fmt::format("--wide makes no {}", format.ending);
  if (!request.colour.empty() && !format.coloured) return fmt::format("--colour colours no {}", format.ending);
  if (format.toFileOnly && !request.out) return fmt::format("{} wants a file, -o OUT", format.ending);
  return {};
}

}  // namespace

CommandLine exportCommandLine(ExportRequest& request) {
  const auto takeFile = [&request](const std::string& value) {
    request.files.emplace_back(value);
    return std::string{};
  };
  const auto takeOut = [&request](const std::string& value) {
    request.out = value;
    return std::string{};
  };
  const auto turnOn = [](bool& choice) {
    return [&choice](const std::string&) { return choice = true, std::string{}; };
  };
  return {.program = "kalmira-export",
          .summary =
              "Turns data files into tables and maps, on standard output or in a file.\n"
              "The instrument is recognised from the file. Each reading has the place that the file's position "
              "sentences give it.",
          .usages = {"FILE... [-o OUT] [OPTIONS]"},
          .groups = {{"Output",
                      {{"-o", "OUT", "write to the file OUT; a data file is never overwritten", takeOut, "a file name",
                        CommandOption::Again::refused},
                       {"--format", "NAME", "the output's format, see below; without it by the ending of OUT, else csv",
                        [&request](const std::string& value) { return takeFormat(value, request); }, formatList(),
                        CommandOption::Again::lastCounts, formatNames()},
                       {"--events", "", "lines, stations, comments, pauses and breaks in place of readings",
                        [&request](const std::string&) { return request.table = TableOf::events, std::string{}; }},
                       {"--wide", "", "one row a station, with all its channels", turnOn(request.wide)},
                       {"--colour", "CHANNEL",
                        "colours the map by this channel, such as cond_v, in place of the first one that has values",
                        [&request](const std::string& value) {
                          return request.colour = value, value.empty() ? kWrong : "";
                        },
                        "a channel's name"},
                       {"--mixed", "", "files of several kinds in one output", turnOn(request.mixed)},
                       teskTimes10Option(request.teskTimes10)}},
                     positionOptions(request)},
          .operands = {"", "FILE...", "data files", takeFile},
          .check = [&request] { return whyNot(request); },
          .notes = helpNotes(),
          .wording = {.unknown = "unknown option {0}", .then = CommandWording::Then::usage}};
}

}  // namespace kalmira
