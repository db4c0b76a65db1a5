// The viewer's commands that write: pictures and tables.
#include <fmt/format.h>

#include "platform/output_file.h"
#include "ui/screen/message_dialog.h"
#include "ui/viewer/line_picture.h"
#include "ui/viewer/open_file_dialog.h"
#include "ui/viewer/view_files_window.h"
#include "ui/viewer/viewer_saving.h"
#include "ui/viewer/waiting.h"

namespace kalmira {
namespace {

// Asks until a name was given that may be written, or none; true when `path` is one.
bool askForName(QWidget* parent, SaveQuestion question, const std::filesystem::path& openFile,
                std::filesystem::path& path) {
  while (const auto chosen = runSaveDialog(parent, question)) {
    path = *chosen;
    const auto problem = saveProblem(path, openFile);
    std::error_code ignored;
    if (!problem.empty()) {
      tellMessage(parent, {.title = "WARNING", .text = problem, .icon = Icon::exclamation});
    } else if (!std::filesystem::exists(path, ignored) ||
               askMessage(parent,
                          {.title = "WARNING",
                           .text = fmt::format("{} already exists. Write over it?", path.filename().string()),
                           .icon = Icon::question},
                          EnterMeans::no)) {
      return true;
    }
    question.proposal = problem.empty() ? path : question.proposal;
  }
  return false;
}

}  // namespace

std::filesystem::path ViewFilesWnd::savedName(const char* extension) const {
  const auto& lines = file_->scanned.lines;
  const bool any = navigation_.selectedLine < lines.size();
  return proposedName(file_->path, any ? lineNameOf(lines[navigation_.selectedLine]) : "", extension);
}

void ViewFilesWnd::savePicture() {
  if (file_ == nullptr) return;
  std::filesystem::path path;
  const SaveQuestion question{.title = "Save Picture",
                              .filters = {"Pictures (*.png *.svg)"},
                              .extension = "png",
                              .proposal = savedName("png")};
  if (!askForName(this, question, file_->path, path)) return;
  const auto& lines = file_->scanned.lines;
  const auto lineName = lines.empty() ? "" : lineNameOf(lines[navigation_.selectedLine]);
  const LinePicture picture{.scanned = file_->scanned,
                            .line = file_->line,
                            .rowFiles = row_files_,
                            .settings = settings_,
                            .title = fmt::format("{}   Line {}", fileCaption(*file_), lineName)};
  std::string problem;
  {
    const Waiting waiting;
    const bool svg = path.extension() == ".svg" || path.extension() == ".SVG";
    const auto content = svg ? linePictureSvg(picture) : linePicturePng(picture);
    problem = replaceFile(path, {content.constData(), static_cast<std::size_t>(content.size())});
  }
  status_ = problem.empty() ? fmt::format("Saved {}", path.filename().string()) : "";
  showCaption();
  if (!problem.empty()) tell(problem);
}

void ViewFilesWnd::exportCsv() {
  if (file_ == nullptr) return;
  std::filesystem::path path;
  const SaveQuestion question{.title = "Export CSV",
                              .filters = {"Tables (*.csv)"},
                              .extension = "csv",
                              .proposal = proposedName(file_->path, "", "csv")};
  if (!askForName(this, question, file_->path, path)) return;
  std::uint64_t readings = 0;
  std::string problem;
  {
    const Waiting waiting;
    problem = exportTable(file_->path, path, host_.extract.teskRangeTimes10, readings);
  }
  status_ = problem.empty() ? fmt::format("{} readings in {}", readings, path.filename().string()) : "";
  showCaption();
  if (!problem.empty()) tell(problem);
}

}  // namespace kalmira
