#pragma once

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

// Somebody who works with the program's windows: sees what the panel shows, presses keys and taps.
namespace kalmira {

// Waits, with the windows alive, until `happened`; false after kPatienceMs, and at once where the test has
// failed.
bool comes(const std::function<bool()>& happened);

class Operator {
 public:
  explicit Operator(MainWindow& window) : window_(window) {}

  MainWindow& window() { return window_; }
  LoggingWnd& logging() { return window_.logging(); }
  std::filesystem::path file() { return logging().session()->file.path(); }
  std::string text(PanelField field);
  // Waits until a panel text begins so.
  bool sees(PanelField field, std::string_view start);

  // To the window that has the keyboard now.
  void press(Qt::Key key);
  void hold(Qt::Key key);
  void release(Qt::Key key);
  // A button of the present row or menu.
  void tap(const QString& button);

  // Does `open`, `act` in the dialog or menu that opens from that, and fails where it stays open.
  void answering(const QString& title, const std::function<void()>& open,
                 const std::function<void(QDialog&)>& act);
  void choosing(const std::function<void()>& open, Qt::Key key);

 private:
  MainWindow& window_;
};

// Over what stands in a field, key by key.
void type(QDialog& dialog, const char* field, const QString& text);
// By the letters of a button.
void tapIn(QDialog& dialog, const QString& button);
void acceptByKey(QDialog& dialog);

// A machine with the program on it: a storage root, and settings of its own.
struct Machine {
  Machine(Kind kind, const Settings& settings);

  // Runs the program with its windows and lets the operator work in it. The program's exit status; the
  // operator has to end it.
  int run(const std::function<void(Operator&)>& work);
  Settings savedSettings() const;

  TempFolder folder;
  ProgramOptions options;
};

// Sends `record` until the panel shows `start`: from then on the program reads, and nothing is left unread.
void wakeUp(Operator& person, const Device& device, std::string_view record, PanelField field,
            std::string_view start);
// Sends it once and waits for it to be shown.
void sendOnce(Operator& person, const Device& device, std::string_view record, PanelField field,
              std::string_view start);

}  // namespace kalmira
