#include <fmt/format.h>

#include <gmock/gmock.h>
#include <algorithm>

#include "support/dialogs.h"
#include "ui/session/panel_view.h"

namespace kalmira {
namespace {

// Every panel there is: kinds and the ORLA's ice option, both layouts, with and without GPS, at `scales`.
std::vector<PanelSpace> allPanelSpaces(const std::vector<double>& scales) {
  std::vector<PanelSpace> spaces;
  for (const double scale : scales) {
    for (int variant = 0; variant < 4 * (kKindCount + 1); ++variant) {
      const bool wide = variant % 2 == 0;
      const int kind = variant / 4;
      spaces.push_back({.kind = static_cast<Kind>(kind % kKindCount),
                        .iceOption = kind == kKindCount,
                        .wideLayout = wide,
                        .gps = variant % 4 >= 2,
                        .scale = scale,
                        .width = static_cast<int>((wide ? 240 : 320) * scale)});
    }
  }
  return spaces;
}

std::string describe(const PanelSpace& space) {
  return fmt::format("{}{} {} wide, scale {}, {}", instrumentOf(space.kind).name, space.iceOption ? " ice" : "",
                     space.width, space.scale, space.gps ? "gps" : "no gps");
}

const PanelCell* findCell(const PanelLayout& layout, PanelField field) {
  const auto found = std::find_if(layout.cells.begin(), layout.cells.end(),
                                  [field](const PanelCell& cell) { return cell.field == field; });
  return found == layout.cells.end() ? nullptr : &*found;
}

// A text has a cell, and at its full size room in it.
void expectRoom(const PanelLayout& layout, const MeasureText& measure, PanelField field, std::string text) {
  const auto* cell = findCell(layout, field);
  ASSERT_NE(cell, nullptr) << panelFieldName(field) << " shows " << text;
  text.resize(text.find_last_not_of(' ') + 1);
  const double needed = measure(cell->font, layout.size(cell->font), text) + cell->labelWidth + 2 * cell->padding;
  EXPECT_LE(needed, cell->width) << panelFieldName(field) << " shows " << text;
}

QRect rectOf(const PanelCell& cell) { return {cell.left, cell.top, cell.width, cell.height}; }

TEST(PanelLayout, NothingOverlapsIsCutOrTakesTheChartsRoom) {
  const auto measure = measureWith(QApplication::font());
  for (const auto& space : allPanelSpaces({1.0, 1.5, 2.0, 3.0})) {
    SCOPED_TRACE(describe(space));
    const auto layout = layOutPanel(space, measure);
    std::vector<QRect> rects;
    for (const auto& cell : layout.cells) rects.push_back(rectOf(cell));
    expectApart({0, 0, space.width, layout.height}, rects);
    // Below it a row of buttons, 34 units, and a chart of 118 units, of 100 where four or six values are low.
    EXPECT_LE(layout.height, (space.wideLayout ? 145 : space.kind == Kind::tesk2 ? 106 : 93) * space.scale);
    EXPECT_GE(layout.textSize, 11 * space.scale - 1);
    EXPECT_GE(layout.valueSize, 13 * space.scale);
    EXPECT_GE(layout.stateSize, 15 * space.scale);
    for (int i = 0; i < kPanelFields; ++i) {
      const auto field = static_cast<PanelField>(i);
      const auto texts = widestTexts(space, field);
      EXPECT_TRUE(!texts.empty() || findCell(layout, field) == nullptr) << panelFieldName(field);
      for (const auto& text : texts) expectRoom(layout, measure, field, text);
    }
  }
}

}  // namespace
}  // namespace kalmira
