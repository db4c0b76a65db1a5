#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>
#include <string>

#include "ui/screen/action_bar.h"
#include "ui/screen/theme.h"
#include "ui/screen/window_fit.h"
#include "ui/session/logging_window.h"
#include "ui/shell/main_menu.h"
#include "ui/shell/remembered.h"

namespace kalmira {

class TitleView;
class TouchButton;

// What the main menu's commands do, by index. "Monitor/Log" and "Exit" are the window's own; a command without an
// action is greyed.
using MenuActions = std::array<std::function<void(QWidget* parent)>, kMenuCommands>;

// What the main window needs of the program. What is referred to outlives the window.
struct MainWindowHost {
  const Clock& clock;
  RememberedKind instrument;
  bool night = false;
  // Loads the instrument's settings and gives what its logging window needs; what was given for another instrument is
  // no longer used. The window adds onLeft and endProgram by itself.
  std::function<LoggingHost(RememberedKind)> open;
  std::function<void()> sessionBegins;  // before the ports are opened
  std::function<void(RememberedKind)> rememberInstrument;
  std::function<void(bool night)> rememberNight;
  std::function<void()> endProgram;
  MenuActions actions{};
  std::function<void(QWidget* parent)> showFonts{};  // the font window; none: it is not offered
};

// The main window: the title screen and the main menu, and, while a session runs, the logging window all over it.
class MainWindow final : public QWidget {
 public:
  explicit MainWindow(MainWindowHost host);
  ~MainWindow() override;

  LoggingWnd& logging() { return *logging_; }
  int highlight() const { return commands_.highlight(); }
  // Shows a child window in the menu's or the session's place, which get no keys meanwhile; nullptr: what it covered.
  void cover(QWidget* window);
  // To the front, for another start of the program on the same root.
  void bringToFront();
  // The machine asks the program to end: leaves a session without a question, then ends the program.
  void endAtOnce();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  bool focusNextPrevChild(bool next) override;

 private:
  void makeMenu();
  void useInstrument(RememberedKind instrument);
  void showTheme();
  void showMenu();
  void arrange();
  void afterFirstPaint();
  void act(MenuCommand command);
  void startSession();
  void chooseInstrument();
  void toggleTheme();
  void showFonts();
  void toggleFullScreen();
  void tellSettingsProblem();
  void watchSettings();
  const Theme& theme() const { return host_.night ? nightTheme() : dayTheme(); }

  MainWindowHost host_;
  std::function<std::string()> take_settings_problem_;
  QWidget* menu_;
  ActionBar commands_;
  TitleView* title_ = nullptr;
  TouchButton* model_button_ = nullptr;
  TouchButton* theme_button_ = nullptr;
  QPointer<QWidget> cover_;
  QTimer settings_watch_;
  FrameWatch frame_watch_{*this, [this] { keepOnScreen(*this); }};
  bool uptime_exceeded_ = false;
  bool painted_ = false;
  bool acting_ = false;
  std::unique_ptr<LoggingWnd> logging_;
};

}  // namespace kalmira
