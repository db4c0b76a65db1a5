#include "ui/shell/chooser_dialog.h"

#include <gmock/gmock.h>

#include <QTimer>

#include "support/dialogs.h"
#include "ui/shell/title.h"

namespace kalmira {
namespace {

// Shows the chooser and does `act` with it as soon as it is up. Nothing chosen is "".
std::string choose(std::optional<RememberedKind> current, const DialogActor::Act& act, QWidget* parent = nullptr) {
  QTimer::singleShot(0, [&act] {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(dialog, nullptr);
    act(*dialog);
    if (dialog->isVisible()) dialog->reject();
  });
  const auto chosen = runChooserDialog(parent, dayTheme(), current);
  return chosen ? shownName(chosen->kind, chosen->ice) : "";
}

TEST(Chooser, ByKeysAndByTouch) {
  const RememberedKind orla{.kind = Kind::orla, .ice = false};
  const RememberedKind orlaIce{.kind = Kind::orla, .ice = true};
  const RememberedKind vardo{.kind = Kind::vardo, .ice = false};
  const struct {
    std::optional<RememberedKind> current;
    std::vector<Qt::Key> keys;
    std::string wanted;
  } cases[]{
      {std::nullopt, {Qt::Key_Return}, "ORLA"},
      {std::nullopt, {Qt::Key_0}, "ORLA"},
      {orla, {Qt::Key_5}, "MIRKA"},
      {orla, {Qt::Key_7}, "TESK2"},
      {orla, {Qt::Key_8}, ""},
      {vardo, {Qt::Key_Enter}, "VARDO"},
      {vardo, {Qt::Key_Right, Qt::Key_Return}, "MIRKA"},
      {vardo, {Qt::Key_Left, Qt::Key_Return}, "TESK"},
      {vardo, {Qt::Key_Down, Qt::Key_Return}, "TESK2"},
      {vardo, {Qt::Key_Up, Qt::Key_Return}, "TESKB"},
      {orla, {Qt::Key_Left, Qt::Key_Return}, "ORLA ice"},
      {orlaIce, {Qt::Key_Tab, Qt::Key_Return}, "ORLA"},
      {orlaIce, {Qt::Key_Return}, "ORLA ice"},
      {orla, {Qt::Key_Escape}, ""},
  };
  for (const auto& each : cases) {
    const auto byKeys = [&each](QDialog& dialog) {
      for (const auto key : each.keys) QTest::keyClick(&dialog, key);
    };
    EXPECT_EQ(choose(each.current, byKeys), each.wanted) << &each - cases;
  }
  for (const auto* name : {"ORLA", "TESKDD", "GLACO", "ORLA ice"}) {
    EXPECT_EQ(choose({}, [name](QDialog& dialog) { tap(dialog, name); }), name);
  }
  EXPECT_EQ(choose({}, tapCancel), "");
}

TEST(Chooser, TheSecondTapOfADoubleTapChoosesNothing) {
  QWidget parent;
  parent.resize(480, 640);
  parent.show();
  EXPECT_EQ(choose(
                {},
                [](QDialog& dialog) {
                  tap(dialog, "GLACO");
                  EXPECT_TRUE(dialog.isVisible());
                  QTest::qWait(QApplication::doubleClickInterval() + 50);
                  tap(dialog, "MIRKA");
                },
                &parent),
            "MIRKA");
}

}  // namespace
}  // namespace kalmira
