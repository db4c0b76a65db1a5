#include "export/export_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <system_error>

#include "export/spool.h"
#include "instruments/catalogue.h"
#include "platform/files.h"

namespace kalmira {
namespace {

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

// One file on its way into the output.
struct Source {
  PositionOptions positions;
  bool teskTimes10 = false;
  SurveyNotes notes;
  RecordReader reader;
  RecordReader scanner;  // the same file, for the way before
  PositionScan scan;
};

// What the command line does not say, the notes beside the file may.
void takeNotes(const std::filesystem::path& file, const ExportRequest& request, Source& source, const Say& report) {
  std::string problem;
  source.notes = readNotesBeside(file, problem).value_or(SurveyNotes{});
  const auto& notes = source.notes;
  if (!problem.empty()) report(fmt::format("the notes beside it: {}", problem));
  source.positions = request.positions;
  source.positions.lag_s = request.lag_s.value_or(notes.gpsLag.value_or(0));
  if (!request.antennaGiven) {
    source.positions.ahead_m = notes.antennaAhead.value_or(0);
    source.positions.right_m = notes.antennaRight.value_or(0);
    source.positions.up_m = notes.antennaUp.value_or(0);
  }
  source.teskTimes10 = request.teskTimes10 || notes.teskRangeTimes10.value_or(false);
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
  source.scan = scanPositions(source.scanner, source.positions, source.notes.utcOffset);
  if (source.scanner.error().kind != FileErrorKind::left) return std::nullopt;
  report(source.scanner.error().text + "; nothing is written");
  return FileOutcome::left;
}

// An output in the making.
struct Output {
  OutputFrame frame;
  OutputFile file;
  std::unique_ptr<SurveyWriter> writer;
  // The end of some formats is most of them: before each piece of it is asked whether to go on.
  bool ending = false;
  bool left = false;
  std::uint64_t written = 0;
};

FileOutcome exportFile(const std::filesystem::path& file, const ExportRequest& request, Output& output,
                       ExportResult& all, const Say& say, const GoOn& goOn) {
  const auto report = [&](std::string_view text) { say(fmt::format("{}: {}", file.string(), text)); };
  Source source;
  if (const auto ended = openSource(file, request, source, report, goOn)) return *ended;
  auto& reader = source.reader;
  const bool placed = request.grid || !source.scan.line.pieces().empty();
  if (!placed && formatRow(formatOf(request)).placedOnly) report("holds no positions: nothing of it is in the output");
  const auto result =
      writeFile(reader, *output.writer, output.frame,
                {.name = file.filename().string(), .header = reader.header(), .notes = source.notes, .placed = placed},
                {.teskRangeTimes10 = source.teskTimes10,
                 .stretch = request.stretch,
                 .scan = &source.scan,
                 .positions = source.positions,
                 .grid = request.grid},
                request.wide);
  all.readings += result.readings;
  if (reader.error().kind == FileErrorKind::left) {
    report(reader.error().text + "; nothing is written");
    return FileOutcome::left;
  }
  if (result.stopped) return FileOutcome::outputFailed;
  const bool damaged = reportDamage(reader, result, report);
  reportPlaces(result, report);
  return damaged && result.readings == 0 ? FileOutcome::nothing : FileOutcome::exported;
}

// Gives the frame the channels of all files. Empty, or why they do not go into one output.
std::string channelsOfAll(const ExportRequest& request, OutputFrame& frame) {
  std::optional<Kind> first;
  for (const auto& file : request.files) {
    RecordReader reader;
    if (reader.open(file).kind != FileErrorKind::none) continue;
    const auto kind = reader.header().kind;
    if (!first) first = kind;
    if (*first != kind && !request.mixed)
      return fmt::format("{}: is of {}, the files before it are of {}; --mixed puts both into one table", file.string(),
                         instrumentOf(kind).name, instrumentOf(*first).name);
    takeChannels(frame, reader.header());
  }
  const auto& channels = frame.channels;
  if (request.colour.empty() || channels.empty()) return {};
  const auto found = std::ranges::find(channels, request.colour, &ChannelColumn::name);
  if (found == channels.end()) {
    std::string names;
    for (const auto& channel : channels) names += fmt::format("{}{}", names.empty() ? "" : ", ", channel.name);
    return fmt::format("--colour: there is no {}, but {}", request.colour, names);
  }
  frame.coloured = static_cast<std::size_t>(found - channels.begin());
  return {};
}

std::string titleOf(const std::vector<std::filesystem::path>& files) {
  const auto first = files.front().filename().string();
  return files.size() == 1 ? first : fmt::format("{} and {} more", first, files.size() - 1);
}

std::unique_ptr<SurveyWriter> makeWriter(const ExportRequest& request, Output& output, const GoOn& goOn) {
  const TextSink write = [&output, &goOn](std::string_view text) {
    output.written += text.size();
    const auto name = std::filesystem::path(output.file.name()).filename().string();
    output.left = output.ending && !goOn(name, output.written, output.written);
    return !output.left && output.file.write(text);
  };
  switch (formatOf(request)) {
    case ExportFormat::csv: return makeCsvWriter(output.frame, request.table, write);
    case ExportFormat::xyz: return makeXyzWriter(output.frame, write);
    case ExportFormat::geopackage: return makeGpkgWriter(output.frame, output.file);
    case ExportFormat::geojson: return makeGeojsonWriter(output.frame, request.table, write);
    case ExportFormat::gpx: return makeGpxWriter(output.frame, spoolFolder(request.out), write);
    case ExportFormat::kml: return makeKmlWriter(output.frame, spoolFolder(request.out), write);
  }
  return nullptr;
}

int outputFailure(const Output& output, const Say& say) {
  if (output.left) {
    say(fmt::format("{}: left before its end; nothing is written", output.file.name()));
    return kExportFailed;
  }
  const auto own = output.writer->problem();
  say(fmt::format("{}: cannot be written: {}", output.file.name(), own.empty() ? output.file.problem() : own));
  return kExportFailed;
}

int exportAll(const ExportRequest& request, Output& output, ExportResult& result, const Say& say, const GoOn& goOn) {
  output.frame.title = titleOf(request.files);
  output.frame.zone = request.zone;
  output.frame.projected = request.positions.zone || request.grid;
  if (const auto problem = channelsOfAll(request, output.frame); !problem.empty()) {
    say(problem);
    return kExportUsage;
  }
  output.writer = makeWriter(request, output, goOn);
  int status = kExportDone;
  for (const auto& file : request.files) {
    const auto outcome = exportFile(file, request, output, result, say, goOn);
    if (outcome == FileOutcome::outputFailed) return outputFailure(output, say);
    if (outcome == FileOutcome::left) return kExportFailed;
    if (outcome == FileOutcome::nothing) status = kExportFailed;
  }
  output.ending = true;
  return output.writer->finish() && output.file.finish() ? status : outputFailure(output, say);
}

constexpr std::array kFormats{
    FormatRow{ExportFormat::csv, "csv", "CSV table", "a table of comma-separated values", true, true, false},
    FormatRow{ExportFormat::xyz, "xyz", "XYZ table", "blocks of lines for gridding and inversion", false, true, false},
    FormatRow{ExportFormat::geopackage, "gpkg", "GeoPackage", "a GeoPackage of map layers", false, true, true, false,
              true},
    FormatRow{ExportFormat::geojson, "geojson", "GeoJSON", "a map for browsers and scripts", true, true, false},
    FormatRow{ExportFormat::gpx, "gpx", "GPX track", "the receiver's way as a track, events as waypoints", false, false,
              false, true},
    FormatRow{ExportFormat::kml, "kml", "KML map", "a map coloured by value", false, true, false, true, true}};

}  // namespace

std::span<const FormatRow> exportFormats() { return kFormats; }

const FormatRow& formatRow(ExportFormat format) { return *std::ranges::find(kFormats, format, &FormatRow::format); }

const FormatRow* formatOfFile(const std::filesystem::path& out) {
  auto ending = out.extension().string();
  std::ranges::transform(ending, ending.begin(),
                         [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
  const auto found =
      std::ranges::find_if(kFormats, [&](const FormatRow& row) { return ending == fmt::format(".{}", row.ending); });
  return found == kFormats.end() ? nullptr : &*found;
}

ExportFormat formatOf(const ExportRequest& request) {
  if (request.format) return *request.format;
  const auto* const row = request.out ? formatOfFile(*request.out) : nullptr;
  return row == nullptr ? ExportFormat::csv : row->format;
}

ExportResult runExport(const ExportRequest& request, const Say& say, const GoOn& goOn) {
  ExportResult result;
  if (const auto reason = whyNotOverwrite(request); !reason.empty()) {
    say(fmt::format("{}: {}", request.out->string(), reason));
    result.status = kExportFailed;
    return result;
  }
  Output output{.frame = {}, .file = request.out ? OutputFile(*request.out) : OutputFile(), .writer = nullptr};
  result.status = exportAll(request, output, result, say, goOn);
  return result;
}

}  // namespace kalmira
