#pragma once

#include <gtest/gtest.h>

#include "settings/settings_file.h"
#include "support/dialogs.h"
#include "support/fake_clock.h"
#include "support/fake_port.h"
#include "support/temp_folder.h"
#include "ui/session/logging_window.h"
#include "ui/session/panel_view.h"

namespace kalmira {

// Waits, with events going on, until `happened`; false when it never does.
inline bool waitFor(const std::function<bool()>& happened) { return QTest::qWaitFor(happened, 20000); }

// What windows with a session stand on. COM1 is the instrument, COM2 the receiver.
struct SessionGround {
  SessionGround() { settings.audio = 0; }
  LoggingHost host(Kind kind, bool ice = false) {
    return {.setup = {.kind = kind, .iceChosen = ice, .root = folder.path()},
            .settings = settings,
            .clock = clock,
            .disk = disk,
            .deviceOf = [this](int com) { return deviceOf(com); },
            .portFactory = ports,
            .saveSettings = [](const Settings&) { return std::string(); },
            .takeSettingsProblem = {},
            .onLeft = [this] { left = true; },
            .endProgram = {},
            .displayOptions = {}};
  }

  TempFolder folder;
  FakeClock clock;
  LocalDisk disk;
  Settings settings;
  FakeDevices devices;
  FakeDevice& device = devices["instrument"];
  FakeDevice& receiver = devices["gps"];
  PortFactory ports = [this] { return std::make_unique<FakePort>(devices); };
  std::function<std::string(int)> deviceOf = [](int com) {
    return std::string(com == 1 ? "instrument" : com == 2 ? "gps" : "");
  };
  bool left = false;
};

// The logging window on that ground.
struct TestWindow : SessionGround {
  explicit TestWindow(Kind kind, QSize size = {480, 640}) : window(host(kind), dayTheme(), nullptr) {
    window.resize(size);
  }
  Session& session() { return *window.session(); }
  std::string text(PanelField field) const {
    return dynamic_cast<PanelView*>(window.findChild<QWidget*>("panel"))->text(field);
  }

  void start() { ASSERT_EQ(window.startLogging(), StartOutcome::started); }
  // Creates the data file with the proposed name.
  void create() {
    const DialogActor dialog("Create Data File", Qt::Key_Return);
    press(Qt::Key_C);
    ASSERT_EQ(session().loggingState, kStandBy);
    path = session().file.path();
  }
  void press(Qt::Key key) { QTest::keyClick(&window, key); }
  void tap(const QString& button) { tapButton(window, button); }
  // Sends records until so many readings have been recorded since the session began.
  void log(std::string_view record, std::uint64_t readings) {
    ASSERT_TRUE(waitFor([&] {
      if (session().counts.readings >= readings) return true;
      clock.advance(91);
      device.send(record);
      return false;
    }));
  }
  // The tags of the data file's records behind its opening ones, readings that follow each other as one.
  std::string tags() const {
    constexpr std::size_t kLength = 24;
    const auto content = readFile(path);
    std::string out;
    for (std::size_t at = 7 * kLength; at + kLength <= content.size(); at += kLength) {
      if (out.empty() || content[at] != 'T' || out.back() != 'T') out += content[at];
    }
    return out;
  }

  LoggingWnd window;
  std::filesystem::path path;
};

}  // namespace kalmira
