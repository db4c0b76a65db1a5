#pragma once

#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QMessageBox>
#include <functional>
#include <string>

#include "end_to_end/programs.h"
#include "logging/session_view.h"
#include "settings/settings.h"
#include "support/temp_folder.h"
#include "ui/shell/main_window.h"
#include "ui/shell/program_options.h"

namespace kalmira {

// Waits, with the windows alive, until `happened`; false after kPatienceMs, and at once where the test has
// failed.
bool comes(const std::function<bool()>& happened);

// Somebody who works with the program's windows, by keys or by taps: sees what the panel shows, and answers.
class Operator {
 public:
  Operator(MainWindow& window, bool byTouch) : window_(window), by_touch_(byTouch) {}

  MainWindow& window() { return window_; }
  LoggingWnd& logging() { return window_.logging(); }
  std::filesystem::path file() { return logging().session()->file.path(); }
  std::string text(PanelField field);
  // Waits until a panel text begins so.
  void sees(PanelField field, std::string_view start);
  // Sends `record` and waits for what is shown of it then: sent once, it must not be shown yet. An instrument
  // that is just being listened to is `waking`: what it sends may be lost, a second try is then due.
  void sends(const Device& device, std::string_view record, std::string_view start,
             PanelField field = PanelField::value1, bool waking = false);

  // A command of the present row: its key, to the window that has the keyboard now, or its button.
  void command(Qt::Key key, const QString& button);
  void press(Qt::Key key);
  void hold(Qt::Key key);
  void release(Qt::Key key);

  // Gives the command, does `act` in the dialog that opens from it, and fails where that stays open.
  void answers(const QString& title, const std::function<void()>& open, const std::function<void(QDialog&)>& act);
  void answers(const QString& title, const std::function<void()>& open, const QString& button);
  // Types into the fields, over what stands there, and confirms by the button or by Enter.
  using Fields = std::vector<std::pair<const char*, QString>>;
  void fills(const QString& title, const std::function<void()>& open, const Fields& fields,
             const QString& button = "OK");
  std::function<void()> commands(Qt::Key key, const QString& button);
  // A command of the menu, by its letter.
  std::function<void()> chooses(Qt::Key key);

 private:
  void tap(const QString& button);
  MainWindow& window_;
  bool by_touch_;
};

// A machine with the program on it: a storage root, and settings of its own.
struct Machine {
  Machine(Kind kind, const Settings& settings);

  // Runs the program with its windows and lets the operator work in it. The program's exit status; the
  // operator has to end it.
  int run(const std::function<void(Operator&)>& work, bool byTouch = false);
  Settings savedSettings() const;

  TempFolder folder;
  ProgramOptions options;
};

}  // namespace kalmira
