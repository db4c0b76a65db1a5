#include "ui/setup/logger_setup_dialog.h"

#include <QComboBox>
#include <QLabel>

#include "instruments/resource_names.h"
#include "link/port.h"
#include "ui/screen/template_dialog.h"

namespace kalmira {
namespace {

void showPortLabel(const QDialog& dialog, Kind kind) {
  const auto label = instrumentOf(kind).portLabel;
  if (label.empty()) return;
  part<QLabel>(dialog, "instrumentPortLabel")
      .setText(QString::fromUtf8(label.data(), static_cast<qsizetype>(label.size())));
}

// The lists that mean nothing without an ice display.
void greyByIceDisplay(QDialog& dialog, const std::vector<SetupList>& lists) {
  const auto* display = dialog.findChild<QComboBox*>("iceDisplay");
  if (display == nullptr) return;
  std::vector<QComboBox*> dependent;
  for (const auto& list : lists) {
    if (list.needsIceDisplay) dependent.push_back(&part<QComboBox>(dialog, list.name));
  }
  const auto grey = [display, dependent] {
    for (auto* box : dependent) box->setEnabled(display->currentIndex() == 1);
  };
  QObject::connect(display, &QComboBox::currentIndexChanged, &dialog, grey);
  grey();
}

}  // namespace

std::optional<Settings> runLoggerSetupDialog(QWidget* parent, const SetupFrame& frame,
                                             const Settings& settings, const PortLists& ports) {
  const auto dialog = makeDialog(loggerSetupTemplate(frame.kind, frame.iceOption), parent);
  if (dialog == nullptr) return std::nullopt;
  const auto lists = loggerSetupLists(frame);
  showPortLabel(*dialog, frame.kind);
  fillLists(*dialog, lists, settings);
  greyByIceDisplay(*dialog, lists);
  connectDevicesButton(*dialog, ports);
  showDeviceOf(*dialog, "instrumentPort", "instrumentDevice", ports,
               [](int position) { return position + 1; });
  if (instrumentOf(frame.kind).hasMarker)
    showDeviceOf(*dialog, "markerPort", "markerDevice", ports, markerComNumber);
  if (!runDialog(*dialog)) return std::nullopt;
  return withLists(*dialog, lists, settings);
}

}  // namespace kalmira
