// What LoggingWnd does at a command: the dialog or menu, and what was entered in it.
#include <QApplication>

#include <QMenu>
#include <algorithm>

#include "instruments/catalogue.h"
#include "logging/calibration.h"
#include "logging/commands.h"
#include "settings/display_options.h"
#include "ui/screen/file_dialog.h"
#include "ui/screen/touch_button.h"
#include "ui/session/dialogs.h"
#include "ui/session/logging_window_parts.h"

namespace kalmira {
namespace {

// Where the popup menu opens, in units.
constexpr QPoint kMenuPlace{20, 10};
constexpr int kMenuRight = 220;
constexpr int kViewFile = 1120;  // below the menu's own identifiers' end

struct MenuRow {
  int identifier;  // 0: a separator
  const char* text;
};
constexpr MenuRow kMenu[] = {{1101, "&Scale"}, {1102, "&Display Options"}, {0, nullptr}, {1106, "&Hide Menu"}};
constexpr MenuRow kTesk2Menu[] = {{1101, "&Scale"},
                                  {1102, "&Display Options"},
                                  {0, nullptr},
                                  {1111, "C&alibrate TESK-2"},
                                  {1112, "D&elete Calibration"},
                                  {0, nullptr},
                                  {1106, "&Hide Menu"}};

std::span<const MenuRow> menuOf(const Instrument& instrument) {
  if (instrument.calibrated) return kTesk2Menu;
  return kMenu;
}

// A landscape screen of the usual handheld: some dialogs have a form of their own for it.
bool lyingHandheld(const Session& session) { return session.setup.storageClass == 1 && !session.setup.wideLayout; }

}  // namespace

void LoggingWnd::runCode(int code) {
  // A second tap on a button whose dialog is opening, or a key behind a question, asks for nothing.
  if (!sessionActive() || parts_->commandDepth > 0 || QApplication::activeModalWidget() != nullptr) return;
  const auto command = commandOf(*session(), code);
  if (!command || !commandAllowed(*session(), *command)) return;
  const Depth busy(parts_->commandDepth);
  setFocus();
  runCommand(*command);
  if (!sessionActive()) return;
  setFocus();
  parts_->serviceTimer.start(0);  // a calibration's two seconds have begun
}

// After a dialog that wrote nothing the profile is redrawn all the same.
void LoggingWnd::runCommand(Command command) {
  auto& session = *this->session();
  switch (command) {
    case Command::createFile: return createFile();
    case Command::start: return startRecording(session);
    case Command::pause: return pauseRecording(session);
    case Command::newLine: return enterLine();
    case Command::newStation: return enterStation();
    case Command::comment: return enterComment();
    case Command::menu: return runMenu();
    case Command::scale: return enterScale();
    case Command::displayOptions: return changeDisplay();
    case Command::repaint: return redrawAfterDialog();
    case Command::calibrate: startCalibration(session); return;
    case Command::deleteCalibration: deleteCalibration(session); return;
    case Command::fit: return fitScale();
    case Command::leave: LeaveLogging(session, false); return;
  }
}

void LoggingWnd::redrawAfterDialog() {
  if (sessionActive()) redrawChart();
}

void LoggingWnd::createFile() {
  auto& session = *this->session();
  const auto place = dataPlaceOf(session);
  const auto choose = [&](const std::string& proposal) -> std::optional<std::filesystem::path> {
    // The link may have been given up behind the dialog, and the session with it.
    if (!session.sessionActive) return std::nullopt;
    auto path = runCreateFileDialog(this, place, proposal);
    if (!session.sessionActive) return std::nullopt;
    return path;
  };
  const auto outcome = beginDataFile(session, choose);
  if (outcome.how == CreateOutcome::How::failed && host_.endProgram) host_.endProgram();
}

void LoggingWnd::enterLine() {
  auto& session = *this->session();
  const auto entry = runNewLineDialog(this, session.settings, session.station);
  if (!session.sessionActive) return;
  if (entry) return newLine(session, *entry);
  redrawChart();
}

void LoggingWnd::enterStation() {
  auto& session = *this->session();
  const auto name = newStationTemplate(lyingHandheld(session));
  const auto station = runNewStationDialog(this, name, session.settings, session.station);
  if (!session.sessionActive) return;
  if (station) return newStation(session, *station);
  redrawChart();
}

void LoggingWnd::enterComment() {
  auto& session = *this->session();
  const auto outcome = runCommentDialog(this);
  if (!session.sessionActive) return;
  if (outcome.how == CommentOutcome::How::confirmed) return addComment(session, outcome.text);
  if (outcome.how == CommentOutcome::How::cancelledWithText) {
    parts_->view.tell({.title = "Comment Warning", .text = "Comment entry was cancelled"});
  }
  redrawAfterDialog();
}

void LoggingWnd::enterScale() {
  auto& session = *this->session();
  const auto name = profileScaleTemplate(session.instrument.kind, session.iceOption, lyingHandheld(session));
  const auto changed = runProfileScaleDialog(this, name, session.instrument.kind, session.iceOption, session.settings,
                                             parts_->chart->fitted());
  if (!session.sessionActive) return;
  if (changed) return takeEnteredScale(*changed);
  session.chartPointCount = 0;
  redrawAfterDialog();
}

void LoggingWnd::takeEnteredScale(const Settings& entered) {
  auto& session = *this->session();
  session.chartPointCount = 0;
  takeScales(entered, session.settings);
  clearTraces(session);
  saveSettingsOrTell(session);
  redrawAfterDialog();
}

void LoggingWnd::changeDisplay() {
  auto& session = *this->session();
  if (!host_.displayOptions) return;
  const auto changed = host_.displayOptions(this, session.settings);
  if (!session.sessionActive) return;
  if (changed) {
    takeDisplayOptions(*changed, session.settings);
    saveSettingsOrTell(session);
  }
  redrawAfterDialog();
}

void LoggingWnd::runMenu() {
  auto& session = *this->session();
  QMenu menu(this);
  menu.setFont(font());
  menu.setStyleSheet(QString("QMenu::item { min-height: %1px; padding: 0 24px; }").arg(touchHeight(screen())));
  for (const auto& row : menuOf(session.instrument)) {
    if (row.identifier == 0) {
      menu.addSeparator();
      continue;
    }
    auto* action = menu.addAction(row.text);
    action->setData(row.identifier);
    if (row.identifier == 1102) action->setEnabled(static_cast<bool>(host_.displayOptions));
  }
  if (host_.viewFile) menu.addAction("&View File")->setData(kViewFile);
  const double unit = session.setup.wideLayout ? width() / 240.0 : width() / 320.0;
  QPoint place = kMenuPlace * unit;
  if (!session.setup.wideLayout) {
    place.setX(std::max(0, static_cast<int>(kMenuRight * unit) - menu.sizeHint().width()));
  }
  const auto* chosen = menu.exec(mapToGlobal(place));
  if (!session.sessionActive) return;
  if (chosen != nullptr && chosen->data().toInt() == kViewFile) {
    // Once this command is over: it gives the keys back to this window.
    QMetaObject::invokeMethod(
        this, [this, file = session.file.path()] { host_.viewFile(file); }, Qt::QueuedConnection);
    return;
  }
  const auto command = chosen != nullptr ? commandOf(session, menuCommandOf(chosen->data().toInt())) : std::nullopt;
  if (command && commandAllowed(session, *command)) return runCommand(*command);
  redrawAfterDialog();
}

}  // namespace kalmira
