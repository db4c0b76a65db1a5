#pragma once

#include <QTimer>
#include <functional>
#include <memory>

#include "gps/nmea.h"
#include "logging/handlers.h"
#include "logging/keys.h"
#include "platform/hand_over.h"
#include "platform/tone.h"
#include "ui/screen/action_bar.h"
#include "ui/screen/touch_button.h"
#include "ui/session/curve_window.h"
#include "ui/session/logging_window.h"
#include "ui/session/panel_view.h"
#include "ui/session/saving_line.h"

// What LoggingWnd is made of. Private to its two source files.
namespace kalmira {

// Counts up for as long as it lives.
class Depth {
 public:
  explicit Depth(int& count) : count_(count) { ++count_; }
  ~Depth() { --count_; }
  Depth(const Depth&) = delete;
  Depth& operator=(const Depth&) = delete;

 private:
  int& count_;
};

// The session's way to the screen.
class LoggingWnd::View final : public SessionView {
 public:
  explicit View(LoggingWnd& window) : window_(window) {}

  void show(PanelField field, std::string_view text) override;
  void beep(Beep sound) override;
  bool ask(Question question, const Message& message) override;
  void tell(const Message& message) override;
  void addProfilePoint(const ProfilePoint& point) override;
  void redrawProfile() override;
  void clearProfile() override;
  void loggingStateChanged() override;
  void closeDialogs() override;
  void loggingLeft() override;

 private:
  LoggingWnd& window_;
};

// One session and its ports. Kept until the next one begins, for the code that ends a session may be on the way back
// through it.
struct LoggingRun {
  LoggingRun(const LoggingHost& host, SessionView& view, HandOver& handOver, std::function<void()> onRecord)
      : session(host.setup, host.settings, link, host.clock, host.disk, view, host.saveSettings),
        ports(host.setup.kind, host.settings, host.deviceOf, link, handOver, host.clock, host.portFactory,
              {.onRecord = std::move(onRecord),
               .onSentence = [this](const GpsLine& line) { OnGpsLine(session, line); }}) {
    session.ports = &ports;
    session.interrupted = host.interrupted;
  }

  LinkState link;
  Session session;
  SerialSessionPorts ports;
};

struct LoggingWnd::Parts {
  Parts(LoggingWnd& window, const Theme& theme, SoundFactory sound);

  View view;
  HandOver handOver;
  PanelView* panel;
  CurveWnd* chart;
  SavingLine* saving;
  TouchButton* fit;  // over the chart, while something is off its scale
  ActionBar buttons;
  QRect buttonRow;
  TonePlayer tones;
  QTimer flashTimer;            // the flash for a sound that nobody could hear ends
  std::uint32_t alarmTick = 0;  // of the last alarm about saving
  bool alarmed = false;
  QTimer serviceTimer;
  std::unique_ptr<LoggingRun> run;
  Focus focus;
  std::uint32_t signsTick = 0;  // when the signs were looked at last
  std::uint32_t flashTick = 0;
  int commandDepth = 0;  // a command is being carried out: its dialog or question may be open
  int readingDepth = 0;  // a reading is being handled, which a calibration's question may hold up
  bool ending = false;   // nobody is there to read
  int askingDepth = 0;   // a message or question of the session is open
};

}  // namespace kalmira
