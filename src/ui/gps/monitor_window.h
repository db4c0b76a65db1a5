#pragma once

#include <QTimer>
#include <functional>

#include "gps/fix_summary.h"
#include "gps/gps_readers.h"
#include "gps/monitor.h"
#include "link/port_thread.h"
#include "logging/serial_session_ports.h"
#include "platform/clock.h"
#include "platform/hand_over.h"
#include "settings/settings.h"
#include "ui/screen/action_bar.h"
#include "ui/screen/cover_window.h"

class QLabel;
class QLineEdit;

namespace kalmira {

class SentenceList;

// What the monitor needs of the program. What is referred to outlives the window.
struct MonitorHost {
  const Settings& settings;
  const Clock& clock;
  DeviceResolver deviceOf;
  PortFactory portFactory;
  std::function<void()> onLeft;  // the monitor is closed; the main menu is to be shown
};

// MonitorGPSWnd: watches what the GPS receiver sends and sends it messages. All over its parent while it is shown.
// Typed letters are commands; the edit line has the keyboard only after it was tapped, and Escape, Tab or Enter give it
// back.
class MonitorGPSWnd final : public CoverWindow {
 public:
  MonitorGPSWnd(MonitorHost host, const Theme& theme, QWidget* parent);
  ~MonitorGPSWnd() override;

  // Opens the GPS port of the settings and shows the window. False when GPS input is disabled, and when the port did
  // not open: the operator has been told why.
  bool open();
  // Closes the port and hides the window; ignored while it is not open.
  void leave();
  const MonitorState& state() const { return state_; }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void makeButtons();
  void makeEdit(const Theme& theme);
  bool openPort();
  void startReader();
  void showSummary();
  void showNews(const MonitorNews& news);
  void run(MonitorCommand command);
  void sendMessage();
  bool editKey(const QKeyEvent& event);
  void showButtons();
  void arrange();

  MonitorHost host_;
  MonitorState state_;
  bool receiver_gone_ = false;
  bool entering_ = false;  // the message dialog is open
  FixSummary summary_;
  QLabel* summary_text_;
  QTimer summary_timer_;
  SentenceList* list_;
  QLineEdit* edit_;
  ActionBar buttons_;
  MonitorRequests requests_;
  HandOver hand_over_;
  PortThread port_;
};

}  // namespace kalmira
