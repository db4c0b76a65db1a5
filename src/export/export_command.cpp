#include "export/export_command.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <system_error>

#include "datafile/survey_notes.h"
#include "export/csv_export.h"
#include "instruments/start_options.h"
#include "platform/files.h"
#include "platform/text.h"

namespace kalmira {
namespace {

using Say = std::function<void(std::string_view)>;

// A day's work is not to be lost to a slip in the order of the names.
std::string whyNotOverwrite(const ExportRequest& request) {
  if (!request.out) return {};
  std::error_code ignored;
  for (const auto& file : request.files) {
    if (std::filesystem::equivalent(file, *request.out, ignored)) return "is one of the files to export";
  }
  if (!std::filesystem::is_regular_file(*request.out, ignored)) return {};
  RecordReader reader;
  const bool dataFile = reader.open(*request.out).kind == FileErrorKind::none;
  return dataFile ? "is a data file, which is never overwritten" : "";
}

std::string counted(std::uint64_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

std::string readingsText(std::uint64_t count) { return counted(count, "reading", "readings"); }

// What of the receiver's sentences was not used; empty when all of it was.
std::string leftOutText(const LeftOut& left) {
  std::string text;
  const auto add = [&text](std::uint64_t count, std::string_view why) {
    if (count > 0) text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, why);
  };
  add(left.badChecksum, "with a wrong checksum");
  add(left.noFix, "without a fix");
  add(left.unreadable, "that cannot be read");
  add(left.untimely, "out of time");
  add(left.jumps, "that jump");
  return text;
}

void reportPlaces(const RowsResult& result, const Say& report) {
  if (result.placelessReadings > 0) report(readingsText(result.placelessReadings) + " without a position");
  if (const auto text = leftOutText(result.leftOut); !text.empty())
    report(
        fmt::format("{} left out: {}", counted(result.leftOut.all(), "position sentence", "position sentences"), text));
}

// What the file's reader met on its way. True when there was any damage.
bool reportDamage(const RecordReader& reader, const RowsResult& result, const Say& report) {
  bool damaged = false;
  const auto damage = [&](std::string_view text) {
    damaged = true;
    report(text);
  };
  if (!reader.headerWhole()) damage("the first record is damaged; its settings are taken as far as they can be read");
  if (reader.skippedBytes() > 0) damage(fmt::format("{} damaged bytes were left out", reader.skippedBytes()));
  if (result.unreadableRecords > 0) {
    damage(fmt::format("{} records that cannot be understood were left out", result.unreadableRecords));
  }
  if (reader.tornBytes() > 0) {
    damage(fmt::format("ends in the middle of a record; its last {} bytes were left out", reader.tornBytes()));
  }
  if (reader.error().kind != FileErrorKind::none) damage(reader.error().text);
  if (result.timelessReadings > 0) {
    report(fmt::format("{} without a time: no time mark before them, or no readable tick",
                       readingsText(result.timelessReadings)));
  }
  if (damaged) report(fmt::format("{} exported", readingsText(result.readings)));
  if (!damaged && result.readings == 0) report("holds no reading");
  return damaged;
}

enum class FileOutcome { exported, nothing, left, outputFailed };

// One file on its way into the table.
struct Source {
  PositionOptions positions;
  bool teskTimes10 = false;
  std::optional<double> utcOffset_s;
  RecordReader reader;
  RecordReader scanner;  // the same file, for the way before
  PositionScan scan;
};

// What the command line does not say, the notes beside the file may.
void takeNotes(const std::filesystem::path& file, const ExportRequest& request, Source& source, const Say& report) {
  std::string problem;
  const auto notes = readNotesBeside(file, problem).value_or(SurveyNotes{});
  if (!problem.empty()) report(fmt::format("the notes beside it: {}", problem));
  source.positions = request.positions;
  source.positions.lag_s = request.lag_s.value_or(notes.gpsLag.value_or(0));
  if (!request.antennaGiven) {
    source.positions.ahead_m = notes.antennaAhead.value_or(0);
    source.positions.right_m = notes.antennaRight.value_or(0);
    source.positions.up_m = notes.antennaUp.value_or(0);
  }
  source.teskTimes10 = request.teskTimes10 || notes.teskRangeTimes10.value_or(false);
  source.utcOffset_s = notes.utcOffset;
}

// Nothing, or what it ends with.
std::optional<FileOutcome> openSource(const std::filesystem::path& file, const ExportRequest& request, Source& source,
                                      const Say& report, const GoOn& goOn) {
  if (const auto error = source.reader.open(file); error.kind != FileErrorKind::none) {
    report(error.text + "; nothing exported");
    return FileOutcome::nothing;
  }
  takeNotes(file, request, source, report);
  const auto name = file.filename().string();
  const auto size = source.reader.size();
  if (!source.reader.header().gps) {
    source.reader.watch({.goOn = [=](std::uint64_t offset) { return goOn(name, offset, size); }});
    return std::nullopt;
  }
  // The file is gone over twice.
  source.reader.watch({.goOn = [=](std::uint64_t offset) { return goOn(name, (size + offset) / 2, size); }});
  if (const auto error = source.scanner.open(file); error.kind != FileErrorKind::none) {
    report(error.text + "; no positions");
    return std::nullopt;
  }
  source.scanner.watch({.goOn = [=](std::uint64_t offset) { return goOn(name, offset / 2, size); }});
  source.scan = scanPositions(source.scanner, source.positions, source.utcOffset_s);
  if (source.scanner.error().kind != FileErrorKind::left) return std::nullopt;
  report(source.scanner.error().text + "; there is no table");
  return FileOutcome::left;
}

FileOutcome exportFile(const std::filesystem::path& file, CsvTable& table, const ExportRequest& request, const Say& say,
                       const GoOn& goOn) {
  const auto report = [&](std::string_view text) { say(fmt::format("{}: {}", file.string(), text)); };
  Source source;
  if (const auto ended = openSource(file, request, source, report, goOn)) return *ended;
  auto& reader = source.reader;
  const auto result = exportReadings(reader, table, file.filename().string(),
                                     {.teskRangeTimes10 = source.teskTimes10,
                                      .scan = &source.scan,
                                      .positions = source.positions,
                                      .grid = request.grid});
  if (result.stopped) return FileOutcome::outputFailed;
  if (reader.error().kind == FileErrorKind::left) {
    report(reader.error().text + "; there is no table");
    return FileOutcome::left;
  }
  const bool damaged = reportDamage(reader, result, report);
  reportPlaces(result, report);
  return damaged && result.readings == 0 ? FileOutcome::nothing : FileOutcome::exported;
}

// Gives the table the channels of all files. Empty, or why they do not go into one table.
std::string channelsOfAll(const ExportRequest& request, CsvTable& table) {
  std::optional<Kind> first;
  for (const auto& file : request.files) {
    RecordReader reader;
    if (reader.open(file).kind != FileErrorKind::none) continue;
    const auto kind = reader.header().kind;
    if (!first) first = kind;
    if (*first != kind && !request.mixed)
      return fmt::format("{}: is of {}, the files before it are of {}; --mixed puts both into one table", file.string(),
                         instrumentOf(kind).name, instrumentOf(*first).name);
    takeChannels(table, reader.header());
  }
  return {};
}

int outputFailure(const OutputFile& output, const Say& say) {
  say(fmt::format("{}: cannot be written: {}", output.name(), output.problem()));
  return kExportFailed;
}

int exportAll(const ExportRequest& request, OutputFile& output, const Say& say, const GoOn& goOn) {
  CsvTable table{.write = [&](std::string_view text) { return output.write(text); }, .zone = request.zone};
  if (const auto problem = channelsOfAll(request, table); !problem.empty()) {
    say(problem);
    return kExportUsage;
  }
  int status = kExportDone;
  for (const auto& file : request.files) {
    const auto outcome = exportFile(file, table, request, say, goOn);
    if (outcome == FileOutcome::outputFailed) return outputFailure(output, say);
    if (outcome == FileOutcome::left) return kExportFailed;
    if (outcome == FileOutcome::nothing) status = kExportFailed;
  }
  return output.finish() ? status : outputFailure(output, say);
}

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
  return {.program = "kalmira-export",
          .summary =
              "Turns data files into comma-separated values, one row a reading, on standard output.\n"
              "The instrument is recognised from the file. Each reading has the place that the file's position "
              "sentences give it.",
          .usages = {"FILE... [-o OUT] [OPTIONS]"},
          .groups = {{"Table",
                      {{"-o", "OUT", "write the table to the file OUT; a data file is never overwritten", takeOut,
                        "a file name", CommandOption::Again::refused},
                       {"--mixed", "", "files of several kinds in one table",
                        [&request](const std::string&) { return request.mixed = true, std::string{}; }},
                       teskTimes10Option(request.teskTimes10)}},
                     positionOptions(request)},
          .operands = {"", "FILE...", "data files", takeFile},
          .check = [&request] { return std::string(request.files.empty() ? "no data file was named" : ""); },
          .notes = "Exit status: 0 done, 1 a file gave nothing or the table could not be written, 2 wrong usage.\n",
          .wording = {.unknown = "unknown option {0}", .then = CommandWording::Then::usage}};
}

int runExport(const ExportRequest& request, const Say& say, const GoOn& goOn) {
  if (const auto reason = whyNotOverwrite(request); !reason.empty()) {
    say(fmt::format("{}: {}", request.out->string(), reason));
    return kExportUsage;
  }
  if (!request.out) {
    OutputFile output;
    return exportAll(request, output, say, goOn);
  }
  OutputFile output(*request.out);
  return exportAll(request, output, say, goOn);
}

}  // namespace kalmira
