#include "end_to_end/window_operator.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <QTimer>

#include "settings/settings_file.h"
#include "ui/session/panel_view.h"
#include "ui/shell/program.h"

namespace kalmira {
namespace {

constexpr int kLookMs = 10;

// Who gets the keys. Where a dialog has closed, a desktop makes its window the active one again; here there
// is no desktop.
QWidget* receiver(QWidget& window) {
  window.activateWindow();
  EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
  auto* focus = QApplication::focusWidget();
  return focus != nullptr ? focus : &window;
}

MainWindow* mainWindow() {
  for (auto* widget : QApplication::topLevelWidgets()) {
    auto* window = dynamic_cast<MainWindow*>(widget);
    if (window != nullptr && window->isVisible()) return window;
  }
  return nullptr;
}

QDialog* openDialog(const QWidget& window, const QString& title) {
  for (auto* dialog : window.findChildren<QDialog*>()) {
    if (dialog->isVisible() && dialog->windowTitle() == title) return dialog;
  }
  return nullptr;
}

// Whatever keeps the operator waiting is shut, so that a test fails instead of hanging.
void shutWhatIsOpen() {
  if (auto* popup = QApplication::activePopupWidget()) popup->close();
  if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
    ADD_FAILURE() << "left open: " << dialog->windowTitle().toStdString();
    dialog->reject();
  }
}

// `open` keeps its caller waiting; meanwhile `act` is tried again and again until it says that it has acted.
void meanwhile(const std::function<void()>& open, const std::function<bool()>& act) {
  bool acting = false;
  bool acted = false;
  QTimer look;
  QTimer patience;
  QObject::connect(&look, &QTimer::timeout, [&] {
    if (acting || acted) return;
    acting = true;
    acted = act();
    acting = false;
    if (acted) look.stop();
  });
  QObject::connect(&patience, &QTimer::timeout, [] { shutWhatIsOpen(); });
  look.start(kLookMs);
  patience.start(kPatienceMs);
  open();
  EXPECT_TRUE(acted) << "it never opened";
}

}  // namespace

bool comes(const std::function<bool()>& happened) {
  // What comes after a failure is not waited for.
  return testing::Test::HasFailure() ? happened() : QTest::qWaitFor(happened, kPatienceMs);
}

std::string Operator::text(PanelField field) {
  return dynamic_cast<PanelView*>(window_.findChild<QWidget*>(QStringLiteral("panel")))->text(field);
}

bool Operator::sees(PanelField field, std::string_view start) {
  if (comes([&] { return text(field).starts_with(start); })) return true;
  ADD_FAILURE() << panelFieldName(field) << " shows \"" << text(field) << "\", not \"" << start << '"';
  return false;
}

void Operator::press(Qt::Key key) {
  QTest::keyClick(receiver(window_), key);
}
void Operator::hold(Qt::Key key) {
  QTest::keyPress(receiver(window_), key);
}
void Operator::release(Qt::Key key) {
  QTest::keyRelease(receiver(window_), key);
}

void Operator::tap(const QString& button) {
  for (auto* each : window_.findChildren<QPushButton*>()) {
    if (!each->isVisible() || each->text() != button) continue;
    // Taps in a row, at one place, are not meant as double taps.
    QTest::qWait(QApplication::doubleClickInterval() + kLookMs);
    QTest::mouseClick(each, Qt::LeftButton);
    return;
  }
  ADD_FAILURE() << "there is no button " << button.toStdString();
}

void Operator::answering(const QString& title, const std::function<void()>& open,
                         const std::function<void(QDialog&)>& act) {
  SCOPED_TRACE(title.toStdString());
  meanwhile(open, [&] {
    auto* dialog = openDialog(window_, title);
    if (dialog == nullptr) return false;
    EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
    act(*dialog);
    return true;
  });
  EXPECT_EQ(openDialog(window_, title), nullptr);
}

void Operator::choosing(const std::function<void()>& open, Qt::Key key) {
  meanwhile(open, [&] {
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (menu != nullptr) QTest::keyClick(menu, key);
    return menu != nullptr;
  });
}

void type(QDialog& dialog, const char* field, const QString& text) {
  auto* edit = dialog.findChild<QLineEdit*>(QLatin1String(field));
  ASSERT_NE(edit, nullptr) << field;
  QTest::mouseClick(edit, Qt::LeftButton);
  QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClicks(edit, text);
}

void tapIn(QDialog& dialog, const QString& button) {
  for (auto* each : dialog.findChildren<QPushButton*>()) {
    if (each->isVisible() && QString(each->text()).remove('&') == button) {
      QTest::mouseClick(each, Qt::LeftButton);
      return;
    }
  }
  ADD_FAILURE() << "there is no button " << button.toStdString();
}

void acceptByKey(QDialog& dialog) {
  auto* focus = dialog.focusWidget();
  QTest::keyClick(focus != nullptr ? focus : &dialog, Qt::Key_Return);
}

Machine::Machine(Kind kind, const Settings& settings) {
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                     QString::fromStdString((folder.path() / "config").string()));
  options.kind = kind;
  options.root = folder.path() / "Kalmira";
  options.tickBase = TickBase::program;
  EXPECT_EQ(saveSettings({.kind = kind, .root = options.root}, settings), "");
}

int Machine::run(const std::function<void(Operator&)>& work) {
  QTimer begin;
  begin.setSingleShot(true);
  QObject::connect(&begin, &QTimer::timeout, [&work] {
    EXPECT_TRUE(comes([] { return mainWindow() != nullptr && mainWindow()->isActiveWindow(); }));
    auto* window = mainWindow();
    if (window == nullptr) return QCoreApplication::exit(-1);
    Operator person(*window);
    work(person);
    if (mainWindow() == nullptr) return;
    ADD_FAILURE() << "the program goes on";
    shutWhatIsOpen();
    window->endAtOnce();
  });
  begin.start(0);
  return runProgram(options);
}

Settings Machine::savedSettings() const {
  Settings settings;
  EXPECT_EQ(loadSettings({.kind = *options.kind, .root = options.root}, settings).how, SettingsLoad::loaded);
  return settings;
}

void wakeUp(Operator& person, const Device& device, std::string_view record, PanelField field,
            std::string_view start) {
  // What comes before the reader has begun is thrown away; a second try is then due.
  constexpr int kTryAgainMs = 5000;
  for (int tried = 0; tried < kPatienceMs; tried += kTryAgainMs) {
    ASSERT_FALSE(testing::Test::HasFailure());
    ASSERT_TRUE(device.send(record));
    if (QTest::qWaitFor([&] { return person.text(field).starts_with(start); }, kTryAgainMs)) return;
  }
  ADD_FAILURE() << panelFieldName(field) << " shows \"" << person.text(field) << '"';
}

void sendOnce(Operator& person, const Device& device, std::string_view record, PanelField field,
              std::string_view start) {
  ASSERT_FALSE(person.text(field).starts_with(start)) << "a new reading could not be told from the last";
  ASSERT_TRUE(device.send(record));
  person.sees(field, start);
}

}  // namespace kalmira
