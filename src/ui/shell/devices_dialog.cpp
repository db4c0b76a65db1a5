#include "ui/shell/devices_dialog.h"

#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QScroller>
#include <QTimer>
#include <algorithm>

#include "ui/screen/template_dialog.h"

namespace kalmira {
namespace {

constexpr int kLookMs = 1000;
// The list of ports scrolls when there is room for fewer than all.
constexpr int kLeastRows = 3;
constexpr int kOtherRows = 6;  // room for the rest of the dialog, its texts wrapped

class Assigner {
 public:
  Assigner(QDialog& dialog, ComAssignments assigned, const DeviceSight& sight)
      : sight_(sight),
        ports_(part<QListWidget>(dialog, "ports")),
        device_(part<QComboBox>(dialog, "device")),
        line_(part<QLabel>(dialog, "deviceLine")),
        assigned_(std::move(assigned)),
        present_(sight.present()) {
    for (int com = 1; com <= kComPorts; ++com) ports_.addItem(QString());
    ports_.setCurrentRow(0);
    const int rowHeight = ports_.sizeHintForRow(0);
    const int room = dialog.parentWidget()->window()->height() / rowHeight - kOtherRows;
    ports_.setFixedHeight(std::clamp(room, kLeastRows, kComPorts) * rowHeight + 2 * ports_.frameWidth());
    QScroller::grabGesture(ports_.viewport(), QScroller::TouchGesture);
    QObject::connect(&ports_, &QListWidget::currentRowChanged, &dialog, [this] { show(); });
    QObject::connect(&device_, &QComboBox::activated, &dialog, [this](int choice) { assign(choice); });
    QObject::connect(&watch_, &QTimer::timeout, &dialog, [this] { look(); });
    watch_.start(kLookMs);
    show();
  }
  const ComAssignments& assigned() const { return assigned_; }

 private:
  int com() const { return ports_.currentRow() + 1; }

  void look() {
    // An open list is not changed under the finger that points at it.
    if (device_.view()->isVisible()) return;
    present_ = sight_.present();
    show();
  }

  void assign(int choice) {
    if (choice < 0 || choice >= static_cast<int>(choices_.size())) return;
    assignDevice(assigned_, com(), choices_[static_cast<std::size_t>(choice)].path);
    show();
  }

  void show() {
    const auto devices = resolveComDevices(assigned_, present_);
    for (int row = 0; row < ports_.count(); ++row) {
      const auto index = static_cast<std::size_t>(row);
      ports_.item(row)->setText(
          QString::fromStdString(comRowText(row + 1, devices[index], assigned_[index].empty(), present_)));
    }
    showChoices();
    const auto text = deviceText(devices[static_cast<std::size_t>(com() - 1)], present_, sight_.look);
    line_.setText(QString::fromStdString(text.text));
    QFont font = line_.font();
    font.setBold(text.trouble);
    line_.setFont(font);
  }

  void showChoices() {
    choices_ = deviceChoices(assigned_, present_);
    device_.clear();
    for (const auto& choice : choices_) device_.addItem(QString::fromStdString(choice.text));
    device_.setCurrentIndex(
        static_cast<int>(choiceOf(choices_, assigned_[static_cast<std::size_t>(com() - 1)])));
  }

  const DeviceSight& sight_;
  QListWidget& ports_;
  QComboBox& device_;
  QLabel& line_;
  ComAssignments assigned_;
  std::vector<SerialDevice> present_;
  std::vector<DeviceChoice> choices_;  // what stands in `device_`
  QTimer watch_;
};

}  // namespace

std::optional<ComAssignments> runDevicesDialog(QWidget* parent, const ComAssignments& assigned,
                                               const DeviceSight& sight) {
  const auto dialog = makeDialog("Devices", parent);
  if (dialog == nullptr) return std::nullopt;
  const Assigner assigner(*dialog, assigned, sight);
  if (!runDialog(*dialog)) return std::nullopt;
  return assigner.assigned();
}

}  // namespace kalmira
