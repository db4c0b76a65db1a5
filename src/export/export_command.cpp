#include "export/export_command.h"

#include <fmt/format.h>

#include <system_error>

#include "export/csv_export.h"
#include "instruments/start_options.h"
#include "platform/files.h"

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

std::string readingsText(std::uint64_t count) { return count == 1 ? "1 reading" : fmt::format("{} readings", count); }

// What the file's reader met on its way. True when there was any damage.
bool reportDamage(const RecordReader& reader, const ExportResult& result, const Say& report) {
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

FileOutcome exportFile(const std::filesystem::path& file, CsvTable& table, bool teskTimes10, const Say& say,
                       const GoOn& goOn) {
  const auto report = [&](std::string_view text) { say(fmt::format("{}: {}", file.string(), text)); };
  RecordReader reader;
  if (const auto error = reader.open(file); error.kind != FileErrorKind::none) {
    report(error.text + "; nothing exported");
    return FileOutcome::nothing;
  }
  const auto name = file.filename().string();
  reader.watch({.goOn = [&](std::uint64_t offset) { return goOn(name, offset, reader.size()); }});
  const auto result = exportReadings(reader, table, teskTimes10);
  if (result.outcome == ExportOutcome::outputFailed) return FileOutcome::outputFailed;
  if (result.outcome == ExportOutcome::otherColumns) {
    report("has other columns than the files before it; export it by itself");
    return FileOutcome::nothing;
  }
  if (reader.error().kind == FileErrorKind::left) {
    report(reader.error().text + "; there is no table");
    return FileOutcome::left;
  }
  const bool damaged = reportDamage(reader, result, report);
  return damaged && result.readings == 0 ? FileOutcome::nothing : FileOutcome::exported;
}

int outputFailure(const OutputFile& output, const Say& say) {
  say(fmt::format("{}: cannot be written: {}", output.name(), output.problem()));
  return kExportFailed;
}

int exportAll(const ExportRequest& request, OutputFile& output, const Say& say, const GoOn& goOn) {
  CsvTable table{.write = [&](std::string_view text) { return output.write(text); }, .columns = {}};
  int status = kExportDone;
  for (const auto& file : request.files) {
    const auto outcome = exportFile(file, table, request.teskTimes10, say, goOn);
    if (outcome == FileOutcome::outputFailed) return outputFailure(output, say);
    if (outcome == FileOutcome::left) return kExportFailed;
    if (outcome == FileOutcome::nothing) status = kExportFailed;
  }
  return output.finish() ? status : outputFailure(output, say);
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
              "The instrument is recognised from the file; several files of one kind give one table.",
          .usages = {"FILE... [-o OUT] [--tesk-x10]"},
          .groups = {{"Table",
                      {{"-o", "OUT", "write the table to the file OUT; a data file is never overwritten", takeOut,
                        "a file name", CommandOption::Again::refused},
                       teskTimes10Option(request.teskTimes10)}}},
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
