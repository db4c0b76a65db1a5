#pragma once

#include <QWidget>
#include <optional>
#include <string>

#include "export/export_run.h"

// How a file leaves the viewer as a table or map.
namespace kalmira {

struct ExportChoice {
  ExportFormat format = ExportFormat::csv;
  bool wholeFile = false;  // or the line that is shown
};

// "Export": of the line of that name or of the whole file; without lines that is not asked. Begins with `last`. Nothing
// when it was cancelled.
std::optional<ExportChoice> runExportDialog(QWidget* parent, const std::optional<std::string>& lineName,
                                            const ExportChoice& last);

struct WatchedExport {
  int status = kExportDone;
  std::uint64_t readings = 0;
  std::string said;  // messages, a line each, or that it was cancelled
};
// Does it on a thread of its own, so that a session goes on meanwhile, and shows how far it is when that takes a
// while. "Cancel" leaves nothing behind.
WatchedExport runWatchedExport(QWidget* parent, const ExportRequest& request);

}  // namespace kalmira
