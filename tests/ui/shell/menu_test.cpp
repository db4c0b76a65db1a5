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

TEST(ActionBar, TheHighlightLeavesAButtonThatIsGreyed) {
  QWidget window;
  ActionBar bar(&window, dayTheme(), [](int) {});
  bar.setActions(menuEntries());
  bar.setHighlight(5);
  bar.setUsable(5, false);
  EXPECT_EQ(bar.highlight(), 6);
}

TEST(MenuLayout, NothingOverlapsAndFingersHit) {
  // The last are handhelds of 3.5 inches, where 9 mm are 81 dots.
  for (const auto& [width, height, touch] : {std::tuple{240, 320, 34},
                                             {320, 240, 34},
                                             {480, 640, 34},
                                             {640, 480, 34},
                                             {800, 1280, 60},
                                             {1920, 1080, 34},
                                             {480, 640, 81},
                                             {640, 480, 81}}) {
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    const auto layout = layOutMenu(width, height, touch);
    std::vector<QRect> rects{layout.title, layout.model, layout.theme};
    rects.insert(rects.end(), layout.buttons.begin(), layout.buttons.end());
    EXPECT_TRUE(rects[0].height() >= height / 4 && rects[0].width() >= width * 2 / 5);
    expectApart({0, 0, width, height}, rects);
    for (const auto& rect : rects) EXPECT_GE(std::min(rect.width(), rect.height()), touch);
  }
}

TEST(OpeningPlace, TheLargestScaleThatFits) {
  const struct {
    int roomWidth, roomHeight;
    std::optional<bool> portrait;
    std::optional<double> scale;
    int width, height;
    bool fullScreen;
  } cases[]{{1920, 1040, {}, {}, 480, 640, false},  // a desktop
            {1024, 600, {}, {}, 640, 480, false},   // a netbook: upright would not fit
            {800, 480, {}, {}, 480, 360, true},     // a handheld held across
            {480, 800, {}, {}, 480, 640, false},    // and upright
            {480, 640, {}, {}, 360, 480, true},
            {240, 320, {}, {}, 240, 320, true},
            {1920, 1040, false, {}, 640, 480, false},
            {800, 480, true, {}, 240, 320, false},  // asked for upright on a wide screen
            {1920, 1040, {}, 0.5, 120, 160, false},
            {640, 480, false, 3.0, 960, 720, false}};  // as asked for, whatever the screen
  for (const auto& each : cases) {
    const auto place = openingPlace({each.roomWidth, each.roomHeight}, each.portrait, each.scale);
    EXPECT_EQ(place.width, each.width) << &each - cases;
    EXPECT_EQ(place.height, each.height) << &each - cases;
    EXPECT_EQ(place.fullScreen, each.fullScreen) << &each - cases;
  }
}

TEST(Title, EveryPictureNameIsADrawingAndTheScreensShapeChoosesOne) {
  std::vector<std::string_view> names(commonTitlePictures().begin(), commonTitlePictures().end());
  for (int index = 0; index < 2 * kKindCount; ++index) {
    const auto own = titlePictures(static_cast<Kind>(index / 2), index % 2 == 1);
    names.insert(names.end(), own.begin(), own.end());
  }
  EXPECT_GE(names.size(), 41U);
  for (const auto name : names) EXPECT_TRUE(QFile::exists(titleDrawing(name))) << name;
  EXPECT_TRUE(titleDrawing("STATICTIT_").isEmpty());
  const struct {
    Kind kind;
    bool ice;
    QSize screen;
    std::string_view name;
  } cases[]{{Kind::orla, false, {480, 640}, "STATICTIT_ORLAVVGA"},
            {Kind::orla, false, {640, 480}, "STATICTIT_ORLAHVGA"},
            {Kind::orla, false, {240, 320}, "STATICTIT_ORLAMX"},
            {Kind::orla, true, {480, 640}, "STATICTIT_ICEV_VGA"},
            {Kind::glaco, false, {800, 480}, "STATICTIT_GLACOH_VGA"},
            {Kind::glaco, false, {320, 240}, "STATICTIT_GLACOAR"},
            {Kind::tesk2, false, {480, 640}, "STATICTIT_TESK2ARVGA"},
            {Kind::mirka, false, {480, 640}, "STATICBMPAARVGA"},
            {Kind::mirka, false, {240, 320}, "STATICBMPA"}};
  for (const auto& test : cases) EXPECT_EQ(titlePictureFor(test.kind, test.ice, test.screen), test.name);
}

TEST(Title, EveryInstrumentLooksDifferentInTheThemesColours) {
  std::set<std::string> pictures;
  for (int index = 0; index <= kKindCount; ++index) {
    const bool ice = index == kKindCount;
    const auto drawing = drawingOf(ice ? Kind::orla : static_cast<Kind>(index), ice, {480, 640});
    for (const Theme* theme : {&dayTheme(), &nightTheme()}) {
      const auto image = renderDrawing(drawing, *theme, {320, 200}, 1.0).toImage();
      EXPECT_TRUE(countPixels(image, theme->focus) > 0 && countPixels(image, theme->text) > 0) << index;
      pictures.emplace(reinterpret_cast<const char*>(image.constBits()), static_cast<std::size_t>(image.sizeInBytes()));
    }
  }
  EXPECT_EQ(pictures.size(), 2U * 9U);
}

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

TEST(Chooser, ByKeysAndByTouchAndTheSecondTapOfADoubleTapChoosesNothing) {
  const RememberedKind orla{.kind = Kind::orla, .ice = false};
  const RememberedKind orlaIce{.kind = Kind::orla, .ice = true};
  const RememberedKind vardo{.kind = Kind::vardo, .ice = false};
  const struct {
    std::optional<RememberedKind> current;
    std::vector<Qt::Key> keys;
    std::string wanted;
  } cases[]{{std::nullopt, {Qt::Key_Return}, "ORLA"},
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
            {orla, {Qt::Key_Escape}, ""}};
  for (const auto& each : cases) {
    const auto byKeys = [&each](QDialog& dialog) {
      for (const auto key : each.keys) QTest::keyClick(&dialog, key);
    };
    EXPECT_EQ(choose(each.current, byKeys), each.wanted) << &each - cases;
  }
  for (const auto* name : {"ORLA", "TESKDD", "GLACO", "ORLA ice"})
    EXPECT_EQ(choose({}, [name](QDialog& dialog) { tap(dialog, name); }), name);
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
