#include "ui/setup/lists_dialog.h"

#include <QComboBox>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QTimer>
#include <algorithm>

#include "ui/screen/template_dialog.h"

namespace kalmira {
namespace {

constexpr int kLookMs = 1000;  // how often devices are looked for

void showLine(QDialog& dialog, QLabel& label, const DeviceLine& line) {
  label.setText(QString::fromStdString(line.text));
  // Said by the words; the weight only makes it seen.
  QFont font = label.font();
  font.setBold(line.trouble);
  label.setFont(font);
  label.setVisible(!line.text.empty());
  makeRoom(dialog);
}

}  // namespace

void makeRoom(QDialog& dialog) {
  const auto& form = part<QWidget>(dialog, "form");
  const int missing = form.layout()->totalHeightForWidth(form.width()) - form.parentWidget()->height();
  if (!dialog.isVisible() || missing <= 0) return;
  const int most = dialog.parentWidget()->window()->height();
  dialog.resize(dialog.width(), std::min(dialog.height() + missing, most));
}

void fillLists(const QDialog& dialog, std::span<const SetupList> lists, const Settings& settings) {
  for (const auto& list : lists) {
    auto& box = part<QComboBox>(dialog, list.name);
    box.clear();
    for (const auto& entry : list.entries) box.addItem(QString::fromStdString(entry));
    box.setCurrentIndex(shownPosition(list, settings));
  }
}

Settings withLists(const QDialog& dialog, std::span<const SetupList> lists, Settings settings) {
  for (const auto& list : lists) {
    takePosition(list, part<QComboBox>(dialog, list.name).currentIndex(), settings);
  }
  return settings;
}

void showDeviceOf(QDialog& dialog, const char* list, const char* line, const PortLists& ports,
                  int (*comOf)(int position)) {
  auto& box = part<QComboBox>(dialog, list);
  auto& label = part<QLabel>(dialog, line);
  if (!ports.deviceLine) {
    label.hide();
    return;
  }
  const auto show = [&dialog, &box, &label, deviceLine = ports.deviceLine, comOf] {
    const int com = comOf(box.currentIndex());
    showLine(dialog, label, com == 0 ? DeviceLine{} : deviceLine(com));
  };
  QObject::connect(&box, &QComboBox::currentIndexChanged, &dialog, show);
  // Behind what the button itself does, see connectDevicesButton.
  QObject::connect(&part<QPushButton>(dialog, "devices"), &QPushButton::clicked, &dialog, show);
  auto* look = new QTimer(&dialog);
  QObject::connect(look, &QTimer::timeout, &dialog, show);
  look->start(kLookMs);
  show();
}

void connectDevicesButton(QDialog& dialog, const PortLists& ports) {
  auto& button = part<QPushButton>(dialog, "devices");
  button.setVisible(static_cast<bool>(ports.assignDevices));
  QObject::connect(&button, &QPushButton::clicked, &dialog,
                   [&dialog, assign = ports.assignDevices] { assign(dialog.parentWidget()); });
}

}  // namespace kalmira
