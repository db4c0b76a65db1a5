#include "export/export_command.h"

#include <fmt/format.h>

#include <filesystem>
#include <optional>
#include <system_error>
#include <vector>

#include "export/csv_export.h"
#include "export/output_file.h"

namespace kalmira {
namespace {

using Say = std::function<void(std::string_view)>;

constexpr std::string_view kUsage = "usage: kalmira-export FILE... [-o OUT]";
constexpr std::string_view kHelp =
    "usage: kalmira-export FILE... [-o OUT]\n"
    "\n"
    "Turns data files into comma-separated values, one row a reading, on standard output.\n"
    "The instrument is recognised from the file; several files of one kind give one table.\n"
    "\n"
    "  -o OUT  write the table to the file OUT; a data file is never overwritten\n"
    "  --help  show this text\n"
    "\n"
    "Exit status: 0 done, 1 a file gave nothing or the table could not be written, 2 wrong usage.\n";

struct Request {
  std::vector<std::filesystem::path> files;
  std::optional<std::filesystem::path> out;
  bool help = false;
  std::string mistake;  // empty when the usage was right
};

Request parseArguments(std::span<const std::string> arguments) {
  Request request;
  bool options = true;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const auto& argument = arguments[i];
    if (!options || !argument.starts_with('-')) {
      request.files.emplace_back(argument);
    } else if (argument == "--") {
      options = false;
    } else if (argument == "--help" || argument == "-h") {
      request.help = true;
    } else if (argument != "-o") {
      request.mistake = fmt::format("unknown option {}", argument);
    } else if (i + 1 == arguments.size()) {
      request.mistake = "-o wants a file name";
    } else if (request.out) {
      request.mistake = "-o was given twice";
    } else {
      request.out = arguments[++i];
    }
  }
  if (request.mistake.empty() && request.files.empty()) request.mistake = "no data file was named";
  return request;
}

// A day's work is not to be lost to a slip in the order of the names.
std::string whyNotOverwrite(const Request& request) {
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

std::string readingsText(std::uint64_t count) {
  return count == 1 ? "1 reading" : fmt::format("{} readings", count);
}

// What the file's reader met on its way. True when there was any damage.
bool reportDamage(const RecordReader& reader, const ExportResult& result, const Say& report) {
  bool damaged = false;
  const auto damage = [&](std::string_view text) {
    damaged = true;
    report(text);
  };
  if (!reader.headerWhole())
    damage("the first record is damaged; its settings are taken as far as they can be read");
  if (reader.skippedBytes() > 0) damage(fmt::format("{} damaged bytes were left out", reader.skippedBytes()));
  if (result.unreadableRecords > 0) {
    damage(fmt::format("{} records that cannot be understood were left out", result.unreadableRecords));
  }
  if (reader.tornBytes() > 0) {
    damage(
        fmt::format("ends in the middle of a record; its last {} bytes were left out", reader.tornBytes()));
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

enum class FileOutcome { exported, nothing, outputFailed };

FileOutcome exportFile(const std::filesystem::path& file, CsvTable& table, const Say& say) {
  const auto report = [&](std::string_view text) { say(fmt::format("{}: {}", file.string(), text)); };
  RecordReader reader;
  if (const auto error = reader.open(file); error.kind != FileErrorKind::none) {
    report(error.text + "; nothing exported");
    return FileOutcome::nothing;
  }
  const auto result = exportReadings(reader, table);
  if (result.outcome == ExportOutcome::outputFailed) return FileOutcome::outputFailed;
  if (result.outcome == ExportOutcome::otherColumns) {
    report("has other columns than the files before it; export it by itself");
    return FileOutcome::nothing;
  }
  const bool damaged = reportDamage(reader, result, report);
  return damaged && result.readings == 0 ? FileOutcome::nothing : FileOutcome::exported;
}

int outputFailure(const OutputFile& output, const Say& say) {
  say(fmt::format("{}: cannot be written: {}", output.name(), output.problem()));
  return kExportFailed;
}

int exportAll(const Request& request, OutputFile& output, const Say& say) {
  CsvTable table{.write = [&](std::string_view text) { return output.write(text); }, .columns = {}};
  int status = kExportDone;
  for (const auto& file : request.files) {
    const auto outcome = exportFile(file, table, say);
    if (outcome == FileOutcome::outputFailed) return outputFailure(output, say);
    if (outcome == FileOutcome::nothing) status = kExportFailed;
  }
  return output.finish() ? status : outputFailure(output, say);
}

}  // namespace

int runExport(std::span<const std::string> arguments, const Say& say) {
  const auto request = parseArguments(arguments);
  if (request.help) {
    OutputFile output;
    return output.write(kHelp) && output.finish() ? kExportDone : outputFailure(output, say);
  }
  if (!request.mistake.empty()) {
    say(request.mistake);
    say(kUsage);
    return kExportUsage;
  }
  if (const auto reason = whyNotOverwrite(request); !reason.empty()) {
    say(fmt::format("{}: {}", request.out->string(), reason));
    return kExportUsage;
  }
  if (!request.out) {
    OutputFile output;
    return exportAll(request, output, say);
  }
  OutputFile output(*request.out);
  return exportAll(request, output, say);
}

}  // namespace kalmira
