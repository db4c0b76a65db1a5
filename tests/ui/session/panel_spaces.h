#pragma once

#include <fmt/format.h>

#include <QApplication>
#include <string>
#include <vector>

#include "ui/session/panel_view.h"

namespace kalmira {

// Every panel there is: kinds and the ORLA's ice option, both layouts, with and without GPS, at `scales`.
inline std::vector<PanelSpace> allPanelSpaces(const std::vector<double>& scales = {1.0, 1.5, 2.0, 3.0}) {
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

inline std::string describe(const PanelSpace& space) {
  return fmt::format("{}{} {} scale {} {}", instrumentOf(space.kind).name, space.iceOption ? " ice" : "",
                     space.wideLayout ? "portrait" : "landscape", space.scale, space.gps ? "gps" : "no gps");
}

inline const PanelCell* findCell(const PanelLayout& layout, PanelField field) {
  for (const auto& cell : layout.cells) {
    if (cell.field == field) return &cell;
  }
  return nullptr;
}

// How many pixels a text lacks in its cell at its full size; 0 or less when it fits.
inline double overhang(const PanelLayout& layout, const PanelCell& cell, std::string text) {
  text.resize(text.find_last_not_of(' ') + 1);
  const double needed = measureWith(QApplication::font())(cell.font, layout.size(cell.font), text);
  return needed + cell.labelWidth + 2 * cell.padding - cell.width;
}

}  // namespace kalmira
