#include "ui/shell/main_menu.h"

#include <gmock/gmock.h>

#include <QWidget>
#include <cctype>

#include "ui/screen/theme.h"

namespace kalmira {
namespace {

constexpr int kNothing = -1;

// The menu's buttons, of which `usable` are not greyed, with the highlight on `highlight`.
struct Menu {
  explicit Menu(int highlight, const std::vector<int>& usable = {0, 1, 2, 3, 4, 5, 6}) {
    bar.setActions(menuEntries());
    for (int i = 0; i < kMenuCommands; ++i) {
      bar.setUsable(i, std::find(usable.begin(), usable.end(), i) != usable.end());
    }
    bar.setHighlight(highlight);
  }
  int press(int keyCode) {
    bar.moveByKey(keyCode);
    return bar.pressedBy(keyCode).value_or(kNothing);
  }
  QWidget window;
  ActionBar bar{&window, dayTheme(), [](int) {}};
};

TEST(MainMenu, TextsInTheirOrder) {
  std::vector<std::string_view> texts;
  for (const auto& entry : menuEntries()) texts.push_back(entry.text);
  EXPECT_THAT(texts, testing::ElementsAre("Monitor/&Log", "&Survey Setup", "L&ogger Setup", "Set &GPS Port",
                                          "&Display Options", "&View Files", "E&xit"));
}

TEST(MainMenu, LettersOfEitherCaseAct) {
  const std::string_view letters = "LSOGDVXE";
  const std::array<int, 8> indices{0, 1, 2, 3, 4, 5, 6, 6};
  Menu menu(3);
  for (int code = 0; code < 256; ++code) {
    if (code == 9 || code == 13 || (code >= 37 && code <= 40)) continue;
    const auto at = letters.find(static_cast<char>(std::toupper(code)));
    EXPECT_EQ(menu.press(code), at == std::string_view::npos ? kNothing : indices[at]) << code;
    EXPECT_EQ(menu.bar.highlight(), 3) << code;
  }
}

TEST(MainMenu, ArrowsAndTabMoveAndEnterActs) {
  const std::vector<int> all{0, 1, 2, 3, 4, 5, 6};
  const std::vector<int> fewest{0, 6};
  const struct {
    int key, from;
    const std::vector<int>& usable;
    int to, act;
  } moves[] = {
      {37, 3, all, 2, kNothing},     {38, 3, all, 2, kNothing},    {39, 3, all, 4, kNothing},
      {40, 3, all, 4, kNothing},     {9, 3, all, 4, kNothing},     {13, 3, all, 3, 3},
      {38, 0, all, 6, kNothing},     {40, 6, all, 0, kNothing},    {40, 0, fewest, 6, kNothing},
      {38, 6, fewest, 0, kNothing},  {9, 6, fewest, 0, kNothing},  {13, 6, fewest, 6, 6},
      {'S', 0, fewest, 0, kNothing}, {13, 2, fewest, 2, kNothing},
  };
  for (const auto& move : moves) {
    Menu menu(move.from, move.usable);
    EXPECT_EQ(menu.press(move.key), move.act) << "key " << move.key;
    EXPECT_EQ(menu.bar.highlight(), move.to) << "key " << move.key << " from " << move.from;
  }
}

TEST(MainMenu, TheHighlightLeavesAButtonThatIsGreyed) {
  Menu menu(5);
  menu.bar.setUsable(5, false);
  EXPECT_EQ(menu.bar.highlight(), 6);
}

struct Window {
  int width;
  int height;
  int touch;
};

TEST(MenuLayout, NothingOverlapsAndFingersHit) {
  // The last of them are handhelds of 3.5 inches with 640 x 480, where 9 mm are 81 dots.
  for (const auto& window : std::vector<Window>{{240, 320, 34},
                                                {320, 240, 34},
                                                {480, 640, 34},
                                                {640, 480, 34},
                                                {800, 1280, 60},
                                                {1920, 1080, 34},
                                                {480, 640, 81},
                                                {640, 480, 81}}) {
    const auto layout = layOutMenu(window.width, window.height, window.touch);
    std::vector<QRect> boxes(layout.buttons.begin(), layout.buttons.end());
    boxes.insert(boxes.end(), {layout.model, layout.theme});
    for (const auto& box : boxes) {
      EXPECT_GE(box.height(), window.touch) << window.width << " x " << window.height;
      EXPECT_GE(box.width(), window.touch) << window.width << " x " << window.height;
    }
    boxes.push_back(layout.title);
    EXPECT_GE(layout.title.height(), window.height / 4) << window.width << " x " << window.height;
    EXPECT_GE(layout.title.width(), window.width * 2 / 5) << window.width << " x " << window.height;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
      EXPECT_TRUE(QRect(0, 0, window.width, window.height).contains(boxes[i])) << i;
      for (std::size_t j = 0; j < i; ++j) EXPECT_FALSE(boxes[i].intersects(boxes[j])) << i << " over " << j;
    }
  }
}

struct Opening {
  QSize room;
  std::optional<bool> portrait;
  std::optional<double> scale;
  int width, height;
  bool fullScreen;
};

TEST(OpeningPlace, TheLargestScaleThatFits) {
  const std::vector<Opening> cases{
      {{1920, 1040}, {}, {}, 480, 640, false},  // a desktop
      {{1024, 600}, {}, {}, 640, 480, false},   // a netbook: upright would not fit
      {{800, 480}, {}, {}, 480, 360, true},     // a handheld held across
      {{480, 800}, {}, {}, 480, 640, false},    // and upright
      {{480, 640}, {}, {}, 360, 480, true},
      {{240, 320}, {}, {}, 240, 320, true},
      {{1920, 1040}, false, {}, 640, 480, false},
      {{800, 480}, true, {}, 240, 320, false},  // asked for upright on a wide screen
      {{1920, 1040}, {}, 0.5, 120, 160, false},
      {{640, 480}, false, 3.0, 960, 720, false},  // as asked for, whatever the screen
  };
  for (const auto& test : cases) {
    const auto place = openingPlace(test.room, test.portrait, test.scale);
    EXPECT_EQ(place.width, test.width) << test.room.width() << " x " << test.room.height();
    EXPECT_EQ(place.height, test.height) << test.room.width() << " x " << test.room.height();
    EXPECT_EQ(place.fullScreen, test.fullScreen) << test.room.width() << " x " << test.room.height();
  }
}

}  // namespace
}  // namespace kalmira
