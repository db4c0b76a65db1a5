#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <condition_variable>
#include <fstream>
#include <map>
#include <mutex>
#include <sstream>
#include <vector>

#include "support/fake_clock.h"
#include "support/temp_folder.h"
#include "ui/session/logging_window.h"
#include "ui/session/panel_view.h"

namespace kalmira {

// A serial line whose bytes come from the test.
class Wire {
 public:
  void feed(std::string_view bytes) {
    const std::lock_guard lock(mutex_);
    bytes_ += bytes;
    changed_.notify_all();
  }
  std::size_t read(std::span<std::uint8_t> buffer, int timeoutMs) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, std::chrono::milliseconds(std::min(timeoutMs, 20)),
                      [this] { return !bytes_.empty(); });
    const auto count = std::min(buffer.size(), bytes_.size());
    std::copy_n(bytes_.begin(), count, buffer.begin());
    bytes_.erase(0, count);
    return count;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::string bytes_;
};

// A port on the wire of its device; a device without one is missing.
class WirePort final : public Port {
 public:
  explicit WirePort(std::map<std::string, Wire>& wires) : wires_(wires) {}
  std::optional<PortError> open(const std::string& device, const LineSettings&) override {
    const auto found = wires_.find(device);
    if (found == wires_.end()) return PortError{.kind = PortErrorKind::missing, .text = "no such device"};
    wire_ = &found->second;
    return std::nullopt;
  }
  ReadResult read(std::span<std::uint8_t> buffer, int timeoutMs) override {
    return {.count = wire_->read(buffer, timeoutMs), .gone = false};
  }
  void purge() override {}
  unsigned modemStatus() override { return 0; }
  bool write(std::span<const std::uint8_t>, int) override { return true; }
  void close() override { wire_ = nullptr; }

 private:
  std::map<std::string, Wire>& wires_;
  Wire* wire_ = nullptr;
};

// Waits, with events going on, until `happened`; false when it never does.
inline bool waitFor(const std::function<bool()>& happened) {
  return QTest::qWaitFor(happened, 20000);
}

// What stands open, by its title; nullptr when there is no such thing.
inline QDialog* openDialog(const QString& title) {
  for (auto* widget : QApplication::topLevelWidgets()) {
    auto* dialog = qobject_cast<QDialog*>(widget);
    if (dialog != nullptr && dialog->isVisible() && dialog->windowTitle() == title) return dialog;
  }
  return nullptr;
}

// Once the dialog of that title is open, does `act` in it. Made before the command that opens it.
class WhenOpen {
 public:
  WhenOpen(QString title, std::function<void(QDialog&)> act) {
    QObject::connect(&timer_, &QTimer::timeout, [this, title = std::move(title), act = std::move(act)] {
      auto* dialog = openDialog(title);
      if (dialog == nullptr || acted_) return;
      acted_ = true;
      timer_.stop();
      act(*dialog);
    });
    timer_.start(5);
  }
  bool acted() const { return acted_; }

 private:
  QTimer timer_;
  bool acted_ = false;
};

inline void answer(QDialog& box, QMessageBox::StandardButton button) {
  auto* message = qobject_cast<QMessageBox*>(&box);
  ASSERT_NE(message, nullptr) << box.windowTitle().toStdString();
  // A question that comes by itself is deaf at first.
  const QPointer<QMessageBox> open(message);
  while (open && open->isVisible()) {
    QTest::mouseClick(open->button(button), Qt::LeftButton);
    QTest::qWait(20);
  }
}

// The logging window on a clock, a folder and wires of the test's own. COM1 is the wire "instrument", COM2
// "gps".
struct TestWindow {
  explicit TestWindow(Kind kind, bool ice = false, QSize size = {480, 640})
      : window(
            {.setup = {.kind = kind, .iceChosen = ice, .root = folder.path()},
             .settings = settings,
             .clock = clock,
             .disk = disk,
             .deviceOf = [](int com) { return std::string(com == 1   ? "instrument"
                                                          : com == 2 ? "gps"
                                                                     : ""); },
             .portFactory = [this] { return std::make_unique<WirePort>(wires); },
             .saveSettings =
                 [this](const Settings&) {
                   ++saved;
                   return std::string{};
                 },
             .takeSettingsProblem = {},
             .onLeft = [this] { left = true; },
             .endProgram = [this] { ended = true; },
             .displayOptions = {}},
            dayTheme(), nullptr) {
    wires["instrument"];
    wires["gps"];
    settings.audio = 0;
    window.resize(size);
  }

  Session& session() { return *window.session(); }
  std::string text(PanelField field) const {
    return dynamic_cast<PanelView*>(window.findChild<QWidget*>("panel"))->text(field);
  }

  void start() { ASSERT_EQ(window.startLogging(), StartOutcome::started); }
  // Creates the data file with the proposed name.
  void create() {
    const WhenOpen dialog("Create Data File", [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Return); });
    press(Qt::Key_C);
    ASSERT_TRUE(dialog.acted());
    ASSERT_EQ(session().loggingState, kStandBy);
  }
  void press(Qt::Key key) { QTest::keyClick(&window, key); }
  void tap(const QString& button) {
    for (auto* each : window.findChildren<QPushButton*>()) {
      if (each->isVisible() && each->text() == button) return QTest::mouseClick(each, Qt::LeftButton);
    }
    ADD_FAILURE() << "no button " << button.toStdString();
  }
  std::vector<std::string> buttons() const {
    std::vector<std::string> out;
    for (auto* each : window.findChildren<QPushButton*>()) {
      if (each->isVisible()) out.push_back(each->text().toStdString());
    }
    return out;
  }
  // Sends records until so many readings have been recorded since the session began.
  void log(std::string_view record, std::uint64_t readings) {
    ASSERT_TRUE(waitFor([&] {
      if (session().counts.readings >= readings) return true;
      clock.advance(91);
      wires["instrument"].feed(record);
      return false;
    }));
  }
  std::string content() {
    std::ifstream in(session().file.path(), std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
  }

  TempFolder folder;
  FakeClock clock;
  LocalDisk disk;
  Settings settings;
  std::map<std::string, Wire> wires;
  int saved = 0;
  bool left = false;
  bool ended = false;
  LoggingWnd window;
};

}  // namespace kalmira
