// Logger setup and GPS port setup: dialogs of lists, with the devices behind COM numbers.
#include <fmt/format.h>

#include <QComboBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScroller>
#include <QTimer>
#include <algorithm>
#include <memory>

#include "gps/nmea.h"
#include "instruments/catalogue.h"
#include "link/network_port.h"
#include "link/port.h"
#include "settings/setup_lists.h"
#include "ui/screen/template_dialog.h"
#include "ui/screen/theme.h"
#include "ui/screen/window_fit.h"
#include "ui/setup/setup_dialogs.h"

namespace kalmira {
namespace {

constexpr int kLookMs = 1000;  // how often devices are looked for

// Lets the dialog grow, within its window, when a line of text in its form has become longer. It never shrinks: buttons
// are not to jump about under a finger.
void makeRoom(QDialog& dialog) {
  const auto& form = part<QWidget>(dialog, "form");
  const int missing = form.layout()->totalHeightForWidth(form.width()) - form.parentWidget()->height();
  if (!dialog.isVisible() || missing <= 0) return;
  const int most = std::min(dialog.parentWidget()->window()->height(), roomFor(dialog).height());
  dialog.resize(dialog.width(), std::min(dialog.height() + missing, most));
  keepOnScreen(dialog);
}

// Said by the words; the weight only makes it seen.
void showDevice(QLabel& label, const DeviceText& device) {
  label.setText(qtText(device.text));
  QFont font = label.font();
  font.setBold(device.trouble);
  label.setFont(font);
}

void fillLists(const QDialog& dialog, std::span<const SetupList> lists, const Settings& settings) {
  for (const auto& list : lists) {
    auto& box = part<QComboBox>(dialog, list.name);
    box.clear();
    for (const auto& entry : list.entries) box.addItem(qtText(entry));
    box.setCurrentIndex(shownPosition(list, settings));
  }
}

Settings withLists(const QDialog& dialog, std::span<const SetupList> lists, Settings settings) {
  for (const auto& list : lists) {
    takePosition(list, part<QComboBox>(dialog, list.name).currentIndex(), settings);
  }
  return settings;
}

// Keeps the label `line` saying which device stands behind the entry selected in `list`, as long as the dialog lives;
// `comOf` gives the COM number of a position, 0 for none.
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
    const auto device = com == 0 ? DeviceText{} : deviceLine(com);
    showDevice(label, device);
    label.setVisible(!device.text.empty());
    makeRoom(dialog);
  };
  QObject::connect(&box, &QComboBox::currentIndexChanged, &dialog, show);
  // Behind what the button itself does.
  QObject::connect(&part<QPushButton>(dialog, "devices"), &QPushButton::clicked, &dialog, show);
  auto* look = new QTimer(&dialog);
  QObject::connect(look, &QTimer::timeout, &dialog, show);
  look->start(kLookMs);
  show();
}

// To be called before showDeviceOf, which shows what the button changed.
void connectDevicesButton(QDialog& dialog, const PortLists& ports) {
  auto& button = part<QPushButton>(dialog, "devices");
  button.setVisible(static_cast<bool>(ports.assignDevices));
  QObject::connect(&button, &QPushButton::clicked, &dialog,
                   [&dialog, assign = ports.assignDevices] { assign(dialog.parentWidget()); });
}

void showPortLabel(const QDialog& dialog, Kind kind) {
  const auto label = instrumentOf(kind).portLabel;
  if (label.empty()) return;
  part<QLabel>(dialog, "instrumentPortLabel").setText(qtText(label));
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

constexpr int kSearchLookMs = 100;
constexpr int kMonitorResult = QDialog::Accepted + 1;

// The button "Find" and what comes of it: listens with one line setting after another and sets the lists to the one
// that a receiver was heard with. The operator may stop it, change a list or leave meanwhile.
class Finder {
 public:
  Finder(QDialog& dialog, const std::vector<SetupList>& lists, const Settings& settings, const ReceiverAccess& access)
      : dialog_(dialog),
        lists_(lists),
        settings_(settings),
        access_(access),
        button_(part<QPushButton>(dialog, "find")),
        line_(part<QLabel>(dialog, "findLine")) {
    line_.hide();
    button_.setVisible(access.portFactory && access.deviceOf && access.clock != nullptr);
    QObject::connect(&button_, &QPushButton::clicked, &dialog, [this] { search_ ? stop() : start(); });
    QObject::connect(&watch_, &QTimer::timeout, &dialog, [this] { look(); });
    // What is behind the port may be another device now.
    QObject::connect(&part<QPushButton>(dialog, "devices"), &QPushButton::clicked, &dialog, [this] { stop(); });
    for (const auto& list : lists) {
      QObject::connect(&part<QComboBox>(dialog, list.name), &QComboBox::activated, &dialog, [this] { stop(); });
    }
  }

 private:
  void say(const std::string& text) {
    line_.setText(qtText(text));
    line_.setVisible(!text.empty());
    makeRoom(dialog_);
  }

  void start() {
    const auto shown = withLists(dialog_, lists_, settings_);
    const auto device = access_.deviceOf(gpsComNumber(shown));
    if (device.empty()) return say(fmt::format("There is no device behind {}", comName(gpsComNumber(shown))));
    search_ = std::make_unique<ReceiverSearch>(access_.portFactory, device, receiverTrials(shown), *access_.clock);
    button_.setText(QStringLiteral("&Stop"));
    watch_.start(kSearchLookMs);
    look();
  }

  void stop() {
    if (!search_) return;
    end();
    say("");
  }

  void end() {
    watch_.stop();
    search_.reset();
    button_.setText(QStringLiteral("&Find"));
  }

  void look() {
    if (const auto outcome = search_->outcome()) {
      end();
      return propose(*outcome);
    }
    const auto trial = search_->trial();
    say(fmt::format("Listening at {} baud ({} of {})", baudText(search_->trials()[trial]), trial + 1,
                    search_->trials().size()));
  }

  void propose(const FindOutcome& outcome) {
    switch (outcome.how) {
      case FindOutcome::How::found: {
        auto proposal = withLists(dialog_, lists_, settings_);
        takeReceiverLine(outcome.line, proposal);
        proposal.gpsInput = 1;
        for (const auto& list : lists_) {
          part<QComboBox>(dialog_, list.name).setCurrentIndex(shownPosition(list, proposal));
        }
        std::string address;
        GetNmeaField(outcome.sentence, 1, ',', address);
        return say(fmt::format("Found: {} baud ({})", baudText(outcome.line), address));
      }
      case FindOutcome::How::nothingHeard: return say("Nothing heard: is the receiver on, and is this its port?");
      case FindOutcome::How::notUnderstood: return say("Something sends here, but no GPS sentences were understood");
      case FindOutcome::How::cannotOpen: return say(outcome.problem);
      case FindOutcome::How::cancelled: return say("");
    }
  }

  std::string baudText(const ReceiverLine& line) const {
    return part<QComboBox>(dialog_, "gpsBaud").itemText(line.baudIndex).toStdString();
  }

  QDialog& dialog_;
  const std::vector<SetupList>& lists_;
  const Settings& settings_;
  const ReceiverAccess& access_;
  QPushButton& button_;
  QLabel& line_;
  QTimer watch_;
  std::unique_ptr<ReceiverSearch> search_;
};

// The list of ports scrolls when there is room for fewer than all.
constexpr int kLeastRows = 3;
constexpr int kOtherRows = 9;  // room for the rest of the dialog, its texts wrapped

class Assigner {
 public:
  Assigner(QDialog& dialog, const DeviceSetup& setup, const DeviceSight& sight)
      : sight_(sight),
        ports_(part<QListWidget>(dialog, "ports")),
        device_(part<QComboBox>(dialog, "device")),
        address_(part<QLineEdit>(dialog, "address")),
        line_(part<QLabel>(dialog, "deviceLine")),
        mirror_(part<QLineEdit>(dialog, "mirror")),
        assigned_(setup.com),
        present_(sight.present()) {
    mirror_.setText(qtText(setup.mirror.string()));
    for (int com = 1; com <= kComPorts; ++com) ports_.addItem(QString());
    ports_.setCurrentRow(0);
    const int rowHeight = ports_.sizeHintForRow(0);
    const int room = dialog.parentWidget()->window()->height() / rowHeight - kOtherRows;
    ports_.setFixedHeight(std::clamp(room, kLeastRows, kComPorts) * rowHeight + 2 * ports_.frameWidth());
    QScroller::grabGesture(ports_.viewport(), QScroller::TouchGesture);
    QObject::connect(&ports_, &QListWidget::currentRowChanged, &dialog, [this] {
      showAddress();
      show();
    });
    QObject::connect(&device_, &QComboBox::activated, &dialog, [this](int choice) { assign(choice); });
    QObject::connect(&address_, &QLineEdit::textEdited, &dialog, [this] { takeAddress(); });
    QObject::connect(&watch_, &QTimer::timeout, &dialog, [this] { look(); });
    watch_.start(kLookMs);
    showAddress();
    show();
  }
  DeviceSetup setup() const { return {.com = assigned_, .mirror = mirror_.text().trimmed().toStdString()}; }

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
    showAddress();
    show();
  }

  // Not with every look at the devices: what is being typed stays.
  void showAddress() {
    const auto& assigned = assigned_[static_cast<std::size_t>(com() - 1)];
    address_.setText(isNetworkName(assigned) ? qtText(assigned) : QString());
  }

  // What is typed counts as soon as it is an address; until then the line says what is wrong with it.
  void takeAddress() {
    const auto typed = address_.text().trimmed().toStdString();
    const bool hadAddress = isNetworkName(assigned_[static_cast<std::size_t>(com() - 1)]);
    if (parseNetworkAddress(typed)) {
      assignDevice(assigned_, com(), typed);
    } else if (hadAddress) {
      assignDevice(assigned_, com(), {});
    }
    show();
    if (!typed.empty() && !parseNetworkAddress(typed)) {
      showDevice(line_, {.text = "No address yet: tcp://HOST:PORT or gpsd://HOST", .trouble = true});
    }
  }

  void show() {
    const auto devices = resolveComDevices(assigned_, present_);
    for (int row = 0; row < ports_.count(); ++row) {
      const auto index = static_cast<std::size_t>(row);
      ports_.item(row)->setText(qtText(comRowText(row + 1, devices[index], assigned_[index].empty(), present_)));
    }
    showChoices();
    showDevice(line_, deviceTextOf(devices[static_cast<std::size_t>(com() - 1)], present_, sight_.look));
  }

  void showChoices() {
    choices_ = deviceChoices(assigned_, present_);
    device_.clear();
    for (const auto& choice : choices_) device_.addItem(qtText(choice.text));
    device_.setCurrentIndex(static_cast<int>(choiceOf(choices_, assigned_[static_cast<std::size_t>(com() - 1)])));
  }

  const DeviceSight& sight_;
  QListWidget& ports_;
  QComboBox& device_;
  QLineEdit& address_;
  QLabel& line_;
  QLineEdit& mirror_;
  ComAssignments assigned_;
  std::vector<SerialDevice> present_;
  std::vector<DeviceChoice> choices_;  // what stands in `device_`
  QTimer watch_;
};

}  // namespace

std::optional<Settings> runLoggerSetupDialog(QWidget* parent, const SetupFrame& frame, const Settings& settings,
                                             const PortLists& ports) {
  const auto dialog = makeDialog(loggerSetupTemplate(frame.kind, frame.iceOption), parent);
  if (dialog == nullptr) return std::nullopt;
  const auto lists = loggerSetupLists(frame);
  showPortLabel(*dialog, frame.kind);
  fillLists(*dialog, lists, settings);
  greyByIceDisplay(*dialog, lists);
  connectDevicesButton(*dialog, ports);
  showDeviceOf(*dialog, "instrumentPort", "instrumentDevice", ports, [](int position) { return position + 1; });
  if (instrumentOf(frame.kind).hasMarker) showDeviceOf(*dialog, "markerPort", "markerDevice", ports, markerComNumber);
  if (!runDialog(*dialog)) return std::nullopt;
  return withLists(*dialog, lists, settings);
}

GpsSetupOutcome runGpsPortSetupDialog(QWidget* parent, const Settings& settings, const PortLists& ports,
                                      const ReceiverAccess& access) {
  using How = GpsSetupOutcome::How;
  const auto dialog = makeDialog(kGpsPortSetupTemplate, parent);
  if (dialog == nullptr) return {.how = How::cancelled, .settings = settings};
  const auto lists = gpsSetupLists();
  fillLists(*dialog, lists, settings);
  connectDevicesButton(*dialog, ports);
  showDeviceOf(*dialog, "gpsPort", "gpsDevice", ports, [](int position) { return position + 1; });
  QObject::connect(&part<QPushButton>(*dialog, "monitor"), &QPushButton::clicked, dialog.get(),
                   [&dialog] { dialog->done(kMonitorResult); });
  {
    const Finder finder(*dialog, lists, settings, access);
    runDialog(*dialog);
  }
  if (dialog->result() == QDialog::Rejected) return {.how = How::cancelled, .settings = settings};
  return {.how = dialog->result() == kMonitorResult ? How::monitor : How::saved,
          .settings = withLists(*dialog, lists, settings)};
}

std::optional<DeviceSetup> runDevicesDialog(QWidget* parent, const DeviceSetup& setup, const DeviceSight& sight) {
  const auto dialog = makeDialog("Devices", parent);
  if (dialog == nullptr) return std::nullopt;
  const Assigner assigner(*dialog, setup, sight);
  if (!runDialog(*dialog)) return std::nullopt;
  return assigner.setup();
}

}  // namespace kalmira
