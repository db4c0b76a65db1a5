#include "ui/shell/main_menu.h"

#include <gtest/gtest.h>

#include <QWidget>

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
  const struct {
    int width, height, touch;
  } windows[]{{240, 320, 34},
              {320, 240, 34},
              {480, 640, 34},
              {640, 480, 34},
              {800, 1280, 60},
              {1920, 1080, 34},
              // Handhelds of 3.5 inches, where 9 mm are 81 dots.
              {480, 640, 81},
              {640, 480, 81}};
  for (const auto& [width, height, touch] : windows) {
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    const auto layout = layOutMenu(width, height, touch);
    std::vector<QRect> rects{layout.title, layout.model, layout.theme};
    rects.insert(rects.end(), layout.buttons.begin(), layout.buttons.end());
    EXPECT_GE(rects[0].height(), height / 4);
    EXPECT_GE(rects[0].width(), width * 2 / 5);
    for (std::size_t i = 0; i < rects.size(); ++i) {
      EXPECT_TRUE(QRect(0, 0, width, height).contains(rects[i])) << i;
      EXPECT_GE(std::min(rects[i].width(), rects[i].height()), touch) << i;
      for (std::size_t j = 0; j < i; ++j) EXPECT_FALSE(rects[i].intersects(rects[j])) << i << " over " << j;
    }
  }
}

TEST(OpeningPlace, TheLargestScaleThatFits) {
  const struct {
    int roomWidth, roomHeight;
    std::optional<bool> portrait;
    std::optional<double> scale;
    int width, height;
    bool fullScreen;
  } cases[]{
      {1920, 1040, {}, {}, 480, 640, false},  // a desktop
      {1024, 600, {}, {}, 640, 480, false},   // a netbook: upright would not fit
      {800, 480, {}, {}, 480, 360, true},     // a handheld held across
      {480, 800, {}, {}, 480, 640, false},    // and upright
      {480, 640, {}, {}, 360, 480, true},
      {240, 320, {}, {}, 240, 320, true},
      {1920, 1040, false, {}, 640, 480, false},
      {800, 480, true, {}, 240, 320, false},  // asked for upright on a wide screen
      {1920, 1040, {}, 0.5, 120, 160, false},
      {640, 480, false, 3.0, 960, 720, false},  // as asked for, whatever the screen
  };
  for (const auto& each : cases) {
    const auto place = openingPlace({each.roomWidth, each.roomHeight}, each.portrait, each.scale);
    EXPECT_EQ(place.width, each.width) << &each - cases;
    EXPECT_EQ(place.height, each.height) << &each - cases;
    EXPECT_EQ(place.fullScreen, each.fullScreen) << &each - cases;
  }
}

}  // namespace
}  // namespace kalmira
