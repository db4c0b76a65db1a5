#include <gmock/gmock.h>

#include <QFile>
#include <algorithm>
#include <set>

#include "instruments/catalogue.h"
#include "support/dialogs.h"
#include "ui/shell/chooser_dialog.h"
#include "ui/shell/main_menu.h"
#include "ui/shell/title.h"

namespace kalmira {
namespace {

TEST(MenuLayout, NothingOverlapsAndFingersHit) {
  for (const auto& [width, height, touch] :
       {std::tuple{240, 320, 34}, {320, 240, 34}, {800, 1280, 60}, {480, 640, 81}, {640, 480, 81}}) {
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    const auto layout = layOutMenu(width, height, touch);
    std::vector<QRect> rects{layout.title, layout.model, layout.theme};
    rects.insert(rects.end(), layout.buttons.begin(), layout.buttons.end());
    EXPECT_TRUE(rects[0].height() >= height / 4 && rects[0].width() >= width * 2 / 5);
    expectApart({0, 0, width, height}, rects);
    for (const auto& rect : rects) EXPECT_GE(std::min(rect.width(), rect.height()), touch);
  }
}

TEST(Title, EveryPictureNameIsADrawing) {
  std::vector<std::string_view> names(commonTitlePictures().begin(), commonTitlePictures().end());
  for (int index = 0; index < 2 * kKindCount; ++index) {
    const auto own = titlePictures(static_cast<Kind>(index / 2), index % 2 == 1);
    names.insert(names.end(), own.begin(), own.end());
  }
  EXPECT_GE(names.size(), 41U);
  for (const auto name : names) EXPECT_TRUE(QFile::exists(titleDrawing(name))) << name;
  EXPECT_TRUE(titleDrawing("STATICTIT_").isEmpty());
}

// Nothing chosen is "".
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

TEST(Chooser, ByKeysAndByTouchAndTheSecondTapOfADoubleTapChoosesNothing) {
  const RememberedKind orla{.kind = Kind::orla, .ice = false};
  const RememberedKind orlaIce{.kind = Kind::orla, .ice = true};
  const RememberedKind vardo{.kind = Kind::vardo, .ice = false};
  using Case = std::tuple<std::optional<RememberedKind>, std::vector<Qt::Key>, std::string>;
  for (const auto& [current, keys, wanted] :
       {Case{std::nullopt, {Qt::Key_Return}, "ORLA"}, Case{orla, {Qt::Key_7}, "TESK2"}, Case{orla, {Qt::Key_8}, ""},
        Case{vardo, {Qt::Key_Right, Qt::Key_Return}, "MIRKA"}, Case{vardo, {Qt::Key_Down, Qt::Key_Return}, "TESK2"},
        Case{orla, {Qt::Key_Left, Qt::Key_Enter}, "ORLA ice"}, Case{orlaIce, {Qt::Key_Tab, Qt::Key_Return}, "ORLA"},
        Case{orla, {Qt::Key_Escape}, ""}}) {
    const auto byKeys = [&keys = keys](QDialog& dialog) {
      for (const auto key : keys) QTest::keyClick(&dialog, key);
    };
    EXPECT_EQ(choose(current, byKeys), wanted);
  }
  EXPECT_EQ(choose({}, tapCancel), "");
  QWidget parent;
  parent.resize(480, 640);
  parent.show();
  const auto tapTwice = [](QDialog& dialog) {
    tap(dialog, "GLACO");
    EXPECT_TRUE(dialog.isVisible());
    QTest::qWait(QApplication::doubleClickInterval() + 50);
    tap(dialog, "MIRKA");
  };
  EXPECT_EQ(choose({}, tapTwice, &parent), "MIRKA");
}

}  // namespace
}  // namespace kalmira
