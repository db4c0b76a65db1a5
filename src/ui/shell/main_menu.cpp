#include "ui/shell/main_menu.h"

#include <algorithm>
#include <cmath>

namespace kalmira {
namespace {

constexpr int kShortUnits = 240;
constexpr int kLongUnits = 320;
constexpr int kWindowFrame = 40;  // what a window manager commonly puts above a window
// The seven commands, and one cell for the instrument and the theme.
constexpr int kCells = kMenuCommands + 1;
constexpr int kWidestColumn = 320;

int gapOf(int width, int height) { return std::max(2, std::min(width, height) / 60); }

// The cells of `area`, row by row.
struct Grid {
  QRect area;
  int columns;
  int gap;

  QRect cell(int index) const {
    const int rows = (kCells + columns - 1) / columns;
    // Downwards first, so that the arrow keys go the way the eye does.
    const int row = index % rows;
    const int column = index / rows;
    const int left = area.x() + (area.width() + gap) * column / columns;
    const int right = area.x() + (area.width() + gap) * (column + 1) / columns - gap;
    const int top = area.y() + (area.height() + gap) * row / rows;
    const int bottom = area.y() + (area.height() + gap) * (row + 1) / rows - gap;
    return {left, top, right - left, bottom - top};
  }
};

int gridHeight(int columns, int rowHeight, int gap) {
  const int rows = (kCells + columns - 1) / columns;
  return rows * rowHeight + (rows - 1) * gap;
}

void placeCells(const Grid& grid, MenuLayout& layout) {
  for (int i = 0; i < kMenuCommands; ++i) layout.buttons[static_cast<std::size_t>(i)] = grid.cell(i);
  const QRect last = grid.cell(kMenuCommands);
  const int share = (last.width() - grid.gap) / 2;
  layout.model = {last.left(), last.top(), share, last.height()};
  layout.theme = last.adjusted(share + grid.gap, 0, 0, 0);
}

MenuLayout layOutPortrait(int width, int height, int touchHeight) {
  const int gap = gapOf(width, height);
  const int share = height * 56 / 100;
  const int columns = gridHeight(1, touchHeight, gap) <= share ? 1 : 2;
  const int wanted = columns == 1 ? share : std::max(gridHeight(2, touchHeight, gap), height * 45 / 100);
  const int buttonsHeight = std::min(wanted, height - 2 * gap);
  MenuLayout layout;
  layout.title = {0, 0, width, std::max(0, height - buttonsHeight - 2 * gap)};
  const int side = columns == 1 ? std::max(gap, (width - kWidestColumn * std::max(1, height / 320)) / 2) : gap;
  placeCells(
      {.area = {side, height - buttonsHeight - gap, width - 2 * side, buttonsHeight}, .columns = columns, .gap = gap},
      layout);
  return layout;
}

MenuLayout layOutLandscape(int width, int height, int touchHeight) {
  const int gap = gapOf(width, height);
  const int columns = gridHeight(1, touchHeight, gap) + 2 * gap <= height ? 1 : 2;
  const int buttonsWidth = columns == 1 ? width * 42 / 100 : width * 58 / 100;
  const int wanted = std::max(gridHeight(columns, touchHeight, gap), height * 8 / 10);
  const int buttonsHeight = columns == 1 ? height - 2 * gap : std::min(wanted, height - 2 * gap);
  MenuLayout layout;
  layout.title = {0, 0, width - buttonsWidth - gap, height};
  placeCells({.area = {width - buttonsWidth - gap, (height - buttonsHeight) / 2, buttonsWidth, buttonsHeight},
              .columns = columns,
              .gap = gap},
             layout);
  return layout;
}

WindowPlace placeOf(bool portrait, double scale) {
  const auto shortSide = static_cast<int>(std::lround(kShortUnits * scale));
  const auto longSide = static_cast<int>(std::lround(kLongUnits * scale));
  return portrait ? WindowPlace{.width = shortSide, .height = longSide}
                  : WindowPlace{.width = longSide, .height = shortSide};
}

bool fits(QSize room, WindowPlace place) {
  return place.width <= room.width() && place.height + kWindowFrame <= room.height();
}

}  // namespace

const std::array<Action, kMenuCommands>& menuEntries() {
  static constexpr std::array<Action, kMenuCommands> kEntries{{
      {.text = "Monitor/&Log", .letters = "L", .identifier = kFirstMenuIdentifier + 0},
      {.text = "&Survey Setup", .letters = "S", .identifier = kFirstMenuIdentifier + 1},
      {.text = "L&ogger Setup", .letters = "O", .identifier = kFirstMenuIdentifier + 2},
      {.text = "Set &GPS Port", .letters = "G", .identifier = kFirstMenuIdentifier + 3},
      {.text = "&Display Options", .letters = "D", .identifier = kFirstMenuIdentifier + 4},
      {.text = "&View Files", .letters = "V", .identifier = kFirstMenuIdentifier + 5},
      {.text = "E&xit", .letters = "XE", .identifier = kFirstMenuIdentifier + 6},
  }};
  return kEntries;
}

MenuLayout layOutMenu(int width, int height, int touchHeight) {
  return width > height ? layOutLandscape(width, height, touchHeight) : layOutPortrait(width, height, touchHeight);
}

WindowPlace openingPlace(QSize room, std::optional<bool> portrait, std::optional<double> scale) {
  const bool wideScreen = room.width() > room.height();
  const bool upright = portrait.value_or(!wideScreen || fits(room, placeOf(true, 2.0)));
  if (scale) {
    const auto place = placeOf(upright, *scale);
    return {.width = std::min(place.width, room.width()), .height = std::min(place.height, room.height())};
  }
  for (const double tried : {2.0, 1.5, 1.0}) {
    auto place = placeOf(upright, tried);
    if (!fits(room, place) && tried > 1.0) continue;
    // On a small screen a frame around the window would be wasted, unless it is to have another shape.
    place.fullScreen = tried < 2.0 && upright != wideScreen;
    return place;
  }
  return placeOf(upright, 1.0);
}

}  // namespace kalmira
