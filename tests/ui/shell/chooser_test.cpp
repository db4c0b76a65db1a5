#include "ui/shell/chooser_dialog.h"

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QTest>
#include <QTimer>

#include "ui/shell/title.h"

namespace kalmira {
namespace {

// Shows the chooser and does `what` with it as soon as it is up. Nothing chosen is "".
std::string choose(std::optional<RememberedKind> current, const std::function<void(QDialog&)>& what,
                   QWidget* parent = nullptr) {
  QTimer::singleShot(0, [&what] {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(dialog, nullptr);
    what(*dialog);
    if (dialog->isVisible()) dialog->reject();
  });
  const auto chosen = runChooserDialog(parent, dayTheme(), current);
  return chosen ? shownName(chosen->kind, chosen->ice) : "";
}

std::string chooseByKeys(std::optional<RememberedKind> current, const std::vector<Qt::Key>& keys) {
  return choose(current, [&keys](QDialog& dialog) {
    for (const auto key : keys) QTest::keyClick(&dialog, key);
  });
}

TEST(Chooser, ByKeys) {
  const RememberedKind orla{.kind = Kind::orla, .ice = false};
  const RememberedKind orlaIce{.kind = Kind::orla, .ice = true};
  const RememberedKind vardo{.kind = Kind::vardo, .ice = false};
  const std::vector<std::tuple<std::optional<RememberedKind>, std::vector<Qt::Key>, std::string>> cases{
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
  for (const auto& [current, keys, wanted] : cases) EXPECT_EQ(chooseByKeys(current, keys), wanted);
}

TEST(Chooser, ByTouchAndCancelled) {
  for (const auto* name : {"ORLA", "TESKDD", "GLACO", "ORLA ice"}) {
    EXPECT_EQ(choose({},
                     [name](QDialog& dialog) {
                       QTest::mouseClick(dialog.findChild<QAbstractButton*>(name), Qt::LeftButton);
                     }),
              name);
  }
  EXPECT_EQ(choose({},
                   [](QDialog& dialog) {
                     QTest::mouseClick(dialog.findChild<QAbstractButton*>("cancel"), Qt::LeftButton);
                   }),
            "");
}

TEST(Chooser, TheSecondTapOfADoubleTapChoosesNothing) {
  QWidget parent;
  parent.resize(480, 640);
  parent.show();
  EXPECT_EQ(choose(
                {},
                [](QDialog& dialog) {
                  auto* tile = dialog.findChild<QAbstractButton*>("GLACO");
                  QTest::mouseClick(tile, Qt::LeftButton);
                  EXPECT_TRUE(dialog.isVisible());
                  QTest::qWait(QApplication::doubleClickInterval() + 50);
                  QTest::mouseClick(dialog.findChild<QAbstractButton*>("MIRKA"), Qt::LeftButton);
                },
                &parent),
            "MIRKA");
}

}  // namespace
}  // namespace kalmira
