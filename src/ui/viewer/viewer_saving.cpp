#include "ui/viewer/viewer_saving.h"

#include <algorithm>
#include <cctype>

#include "datafile/record_reader.h"
#include "export/csv_export.h"
#include "instruments/catalogue.h"
#include "platform/output_file.h"

namespace kalmira {
namespace {

std::string upperCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
  return text;
}

bool hasDataExtension(const std::filesystem::path& path) {
  const auto extension = upperCase(path.extension().string());
  for (int kind = 0; kind < kKindCount; ++kind) {
    if (extension == instrumentOf(static_cast<Kind>(kind)).extension) return true;
  }
  return false;
}

bool fitsFileName(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '.' || c == '+';
}

}  // namespace

std::string saveProblem(const std::filesystem::path& target, const std::filesystem::path& openFile) {
  std::error_code ignored;
  if (hasDataExtension(target)) return "This is the name of a data file. Please enter another name";
  if (std::filesystem::equivalent(target, openFile, ignored))
    return "This is the open data file. Please enter another name";
  return {};
}

std::filesystem::path proposedName(const std::filesystem::path& dataFile, std::string_view lineName,
                                   std::string_view extension) {
  auto name = dataFile.stem().string();
  if (!lineName.empty()) name += "-";
  for (const char c : lineName) name += fitsFileName(c) ? c : '_';
  return dataFile.parent_path() / (name + "." + std::string(extension));
}

std::string exportTable(const std::filesystem::path& dataFile, const std::filesystem::path& target,
                        bool teskRangeTimes10, std::uint64_t& readings) {
  RecordReader reader;
  if (const auto error = reader.open(dataFile); error.kind != FileErrorKind::none) return error.text;
  OutputFile output(target);
  CsvTable table{.write = [&output](std::string_view text) { return output.write(text); }, .columns = {}};
  const auto result = exportReadings(reader, table, teskRangeTimes10);
  if (result.outcome != ExportOutcome::done || !output.finish()) return output.problem();
  readings = result.readings;
  return reader.error().kind == FileErrorKind::none ? "" : reader.error().text;
}

}  // namespace kalmira
