#include "ui/viewer/export_dialog.h"

#include <fmt/format.h>

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <atomic>

#include "platform/worker.h"
#include "ui/screen/file_dialog.h"
#include "ui/screen/template_dialog.h"
#include "ui/screen/theme.h"

namespace kalmira {
namespace {

constexpr std::chrono::milliseconds kUnseen(300);  // so long nobody wants to be told
constexpr int kLook_ms = 100;
constexpr int kPermille = 1000;

void showContent(const QDialog& dialog, int index) {
  const auto& row = exportFormats()[static_cast<std::size_t>(index)];
  part<QLabel>(dialog, "exportContent").setText(qtText(row.content));
}

// The export on its thread, and what is shared with it.
struct ExportRun {
  explicit ExportRun(const ExportRequest& request) {
    worker.start([this, &request] {
      const auto folder = request.files.front().parent_path().string() + "/";
      const auto say = [this, &folder](std::string_view text) {
        if (text.starts_with(folder)) text.remove_prefix(folder.size());
        said += fmt::format("{}{}", said.empty() ? "" : "\r\n", text);
      };
      const auto goOn = [this](std::string_view, std::uint64_t done, std::uint64_t total) {
        permille = static_cast<int>(total == 0 ? 0 : done * kPermille / total);
        return !worker.stopping();
      };
      const auto done = runExport(request, say, goOn);
      worker.change([&] {
        result = done;
        ended = true;
      });
    });
  }
  bool endsWithin(std::chrono::milliseconds time) {
    auto held = worker.lock();
    return worker.waitFor(held, time, [this] { return ended; });
  }

  std::atomic<int> permille{0};
  bool ended = false;  // under the worker's lock, as the rest
  ExportResult result;
  std::string said;
  Worker worker{"kalmira-export"};
};

// True when it was cancelled.
bool showProgress(QWidget* parent, const std::filesystem::path& out, ExportRun& run) {
  QDialog dialog(parent);
  dialog.setWindowTitle("Export");
  auto* layout = new QVBoxLayout(&dialog);
  auto* text = new QLabel(qtText(out.filename().string()), &dialog);
  auto* bar = new QProgressBar(&dialog);
  auto* cancel = new QPushButton("Cancel", &dialog);
  bar->setRange(0, kPermille);
  bar->setAccessibleName("Progress");
  for (auto* const piece : std::initializer_list<QWidget*>{text, bar, cancel}) layout->addWidget(piece);
  QObject::connect(cancel, &QPushButton::clicked, &dialog, &QDialog::reject);
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, &dialog, [&] {
    bar->setValue(run.permille);
    if (run.endsWithin(std::chrono::milliseconds(0))) dialog.accept();
  });
  look.start(kLook_ms);
  dressLike(dialog, parent);
  fitForFingers(dialog);
  placeInParent(dialog);
  return execDialog(dialog) != QDialog::Accepted;
}

}  // namespace

std::optional<ExportChoice> runExportDialog(QWidget* parent, const std::optional<std::string>& lineName,
                                            const ExportChoice& last) {
  const auto dialog = makeDialog("Export", parent);
  if (dialog == nullptr) return std::nullopt;
  auto& format = part<QComboBox>(*dialog, "exportFormat");
  auto& whole = part<QComboBox>(*dialog, "exportPart");
  for (const auto& row : exportFormats()) {
    format.addItem(qtText(fmt::format("{} (.{})", row.name, row.ending)));
    if (row.format == last.format) format.setCurrentIndex(format.count() - 1);
  }
  if (lineName) whole.addItem(qtText(fmt::format("Line {}", *lineName)));
  whole.addItem("Whole file");
  whole.setCurrentIndex(last.wholeFile ? whole.count() - 1 : 0);
  showContent(*dialog, format.currentIndex());
  QObject::connect(&format, &QComboBox::currentIndexChanged, dialog.get(),
                   [&dialog](int index) { showContent(*dialog, index); });
  if (!runDialog(*dialog)) return std::nullopt;
  return ExportChoice{.format = exportFormats()[static_cast<std::size_t>(format.currentIndex())].format,
                      .wholeFile = lineName ? whole.currentIndex() == 1 : last.wholeFile};
}

WatchedExport runWatchedExport(QWidget* parent, const ExportRequest& request) {
  ExportRun run(request);
  bool soon = false;
  {
    const WaitingCursor cursor;
    soon = run.endsWithin(kUnseen);
  }
  const bool cancelled = !soon && showProgress(parent, *request.out, run);
  run.worker.stop();
  if (cancelled && run.result.status != kExportDone)
    return {.status = kExportFailed, .readings = 0, .said = "Cancelled: nothing was written"};
  return {.status = run.result.status, .readings = run.result.readings, .said = run.said};
}

}  // namespace kalmira
