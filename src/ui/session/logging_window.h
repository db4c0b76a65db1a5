#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "datafile/disk.h"
#include "logging/commands.h"
#include "logging/serial_session_ports.h"
#include "logging/session.h"
#include "logging/session_link.h"
#include "platform/tone.h"
#include "ui/screen/cover_window.h"
#include "ui/screen/theme.h"

namespace kalmira {

// What the logging window needs of the program. Everything referred to outlives the window.
struct LoggingHost {
  SessionSetup setup;  // the layout fields are the window's own to set
  Settings& settings;
  const Clock& clock;
  Disk& disk;
  DeviceResolver deviceOf;
  PortFactory portFactory;
  // Has the settings file written; an empty text, or why not.
  std::function<std::string(const Settings&)> saveSettings;
  // What went wrong with an earlier saving, once; empty when there is nothing to tell.
  std::function<std::string()> takeSettingsProblem;
  std::function<std::filesystem::path()> mirror = {};        // where a second copy goes, asked when a session begins
  std::function<bool()> interrupted = [] { return false; };  // the program is to end: nothing is waited for
  std::function<void()> onLeft;                              // the session is over; the main menu is to be shown
  std::function<void()> endProgram;                          // the operator was told why
  SoundFactory sound = {};                                   // none: what would sound is flashed
  // "Display Options" of the menu: the settings as changed, nothing when cancelled. Greyed while there is none.
  std::function<std::optional<Settings>(QWidget* parent, const Settings& settings)> displayOptions;
  // "View File" of the menu: shows the file being logged over the session. Not in the menu while there is none.
  std::function<void(const std::filesystem::path& file)> viewFile = {};
};

// LoggingWnd: the screen on which a survey is recorded. It owns the session from startLogging until it is left, and is
// the session's view. It covers while a session is active. Its size decides its layout: upright or lying, and how many
// pixels a unit of the layout has (240 x 320 or 320 x 240 units).
class LoggingWnd final : public CoverWindow {
 public:
  LoggingWnd(LoggingHost host, const Theme& theme, QWidget* parent);
  ~LoggingWnd() override;

  // "Monitor/Log": opens the ports and shows the window. The operator has been told what went wrong.
  StartOutcome startLogging();
  bool sessionActive() const;
  // The program is to be closed: asks "Exit Logging?" when there is a data file. False when it is to stay open.
  bool mayClose();
  // The machine asks the program to end: closes what is open, pauses and leaves, without a question. What there is to
  // tell goes to standard error.
  void leaveAtOnce();
  void setTheme(const Theme& theme);
  // What of the session cannot wait until its window is seen again, in words: a silent instrument, a file that takes no
  // records. Empty while all is well.
  std::string concern();

  // The session as it stands, for tests and pictures; nullptr before the first.
  Session* session();
  // Carries out a code of the buttons, keys or menus (keys.h). Ignored while a dialog or question is open.
  void runCode(int code);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  class View;
  struct Parts;

  void pauseAndLeave();
  void runCommand(Command command);
  void createFile();
  void enterLine();
  void enterStation();
  void enterComment();
  void enterScale();
  void changeDisplay();
  void runMenu();
  void redrawAfterDialog();
  void arrange();
  void showButtons();
  void placeButtons();
  void service();
  void showSigns();
  void alarmAboutSaving(std::uint32_t now);
  void flash();
  void offerFit();
  void redrawChart();
  void fitScale();
  void takeEnteredScale(const Settings& entered);

  LoggingHost host_;
  std::unique_ptr<Parts> parts_;
};

}  // namespace kalmira
