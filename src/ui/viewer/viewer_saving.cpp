#include "ui/viewer/viewer_saving.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

#include "datafile/record_reader.h"
#include "export/csv_export.h"
#include "instruments/catalogue.h"
#include "platform/output_file.h"
#include "ui/screen/file_dialog.h"
#include "ui/screen/message_dialog.h"
#include "ui/viewer/line_picture.h"
#include "ui/viewer/view_files_window.h"

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

// Asks until a name was given that may be written, or none.
std::optional<std::filesystem::path> askForName(QWidget* parent, SaveQuestion question,
                                                const std::filesystem::path& openFile) {
  while (const auto path = runSaveDialog(parent, question)) {
    const auto problem = saveProblem(*path, openFile);
    std::error_code ignored;
    if (!problem.empty()) {
      tellMessage(parent, {.title = "WARNING", .text = problem, .icon = Icon::exclamation});
      continue;
    }
    const auto text = fmt::format("{} already exists. Write over it?", path->filename().string());
    if (!std::filesystem::exists(*path, ignored) ||
        askMessage(parent, {.title = "WARNING", .text = text, .icon = Icon::question}, EnterMeans::no)) {
      return path;
    }
    question.proposal = *path;
  }
  return std::nullopt;
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

// `write` gives an empty text and sets the status, or gives what went wrong.
void ViewFilesWnd::saveAs(const SaveQuestion& question, const WriteFile& write) {
  const auto path = askForName(this, question, file_->path);
  if (!path) return;
  std::string problem;
  {
    const WaitingCursor cursor;
    problem = write(*path);
  }
  if (!problem.empty()) status_.clear();
  showCaption();
  if (!problem.empty()) tell(problem);
}

void ViewFilesWnd::savePicture() {
  if (file_ == nullptr) return;
  const auto& lines = file_->scanned.lines;
  const auto lineName = lines.empty() ? "" : lineNameOf(lines[navigation_.selectedLine]);
  const SaveQuestion question{.title = "Save Picture",
                              .filter = "Pictures (*.png *.svg)",
                              .extension = "png",
                              .proposal = proposedName(file_->path, lineName, "png")};
  saveAs(question, [&](const std::filesystem::path& path) {
    const LinePicture picture{.scanned = file_->scanned,
                              .line = file_->line,
                              .rowFiles = row_files_,
                              .settings = settings_,
                              .title = fmt::format("{}   Line {}", fileCaption(*file_), lineName)};
    const bool svg = path.extension() == ".svg" || path.extension() == ".SVG";
    const auto content = svg ? linePictureSvg(picture) : linePicturePng(picture);
    status_ = fmt::format("Saved {}", path.filename().string());
    return replaceFile(path, {content.constData(), static_cast<std::size_t>(content.size())});
  });
}

void ViewFilesWnd::exportCsv() {
  if (file_ == nullptr) return;
  const SaveQuestion question{.title = "Export CSV",
                              .filter = "Tables (*.csv)",
                              .extension = "csv",
                              .proposal = proposedName(file_->path, "", "csv")};
  saveAs(question, [this](const std::filesystem::path& path) {
    std::uint64_t readings = 0;
    auto problem = exportTable(file_->path, path, host_.extract.teskRangeTimes10, readings);
    status_ = fmt::format("{} readings in {}", readings, path.filename().string());
    return problem;
  });
}

}  // namespace kalmira
