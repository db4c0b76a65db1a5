#include "ui/setup/gps_port_setup_dialog.h"

#include <fmt/format.h>

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <memory>

#include "gps/nmea.h"
#include "instruments/resource_names.h"
#include "ui/screen/template_dialog.h"

namespace kalmira {
namespace {

constexpr int kLookMs = 100;
constexpr int kMonitorResult = QDialog::Accepted + 1;

// The button "Find" and what comes of it: listens with one line setting after another and sets the lists to
// the one that a receiver was heard with. The operator may stop it, change a list or leave meanwhile.
class Finder {
 public:
  Finder(QDialog& dialog, const std::vector<SetupList>& lists, const Settings& settings,
         const ReceiverAccess& access)
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
    QObject::connect(&part<QPushButton>(dialog, "devices"), &QPushButton::clicked, &dialog,
                     [this] { stop(); });
    for (const auto& list : lists) {
      QObject::connect(&part<QComboBox>(dialog, list.name), &QComboBox::activated, &dialog,
                       [this] { stop(); });
    }
  }

 private:
  void say(const std::string& text) {
    line_.setText(QString::fromStdString(text));
    line_.setVisible(!text.empty());
    makeRoom(dialog_);
  }

  void start() {
    const auto shown = withLists(dialog_, lists_, settings_);
    const auto device = access_.deviceOf(gpsComNumber(shown));
    if (device.empty()) return say(fmt::format("There is no device behind {}", comName(gpsComNumber(shown))));
    search_ =
        std::make_unique<ReceiverSearch>(access_.portFactory, device, receiverTrials(shown), *access_.clock);
    button_.setText(QStringLiteral("&Stop"));
    watch_.start(kLookMs);
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
      case FindOutcome::How::nothingHeard:
        return say("Nothing heard: is the receiver on, and is this its port?");
      case FindOutcome::How::notUnderstood:
        return say("Something sends here, but no GPS sentences were understood");
      case FindOutcome::How::cannotOpen:
        return say(outcome.problem);
      case FindOutcome::How::cancelled:
        return say("");
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

}  // namespace

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

}  // namespace kalmira
