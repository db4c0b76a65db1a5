#include "ui/screen/theme.h"

#include <QFontInfo>
#include <QGuiApplication>

namespace kalmira {

const Theme& dayTheme() {
  static constexpr Theme kDay;
  return kDay;
}

const Theme& nightTheme() {
  static constexpr Theme kNight{.night = true,
                                .background = 0x000000,
                                .text = 0xE0D0C0,
                                .faintText = 0xA89888,
                                .button = 0x2A2420,
                                .buttonText = 0xE8D8C8,
                                .buttonEdge = 0x7A6A5C,
                                .pressedButton = 0x4A3E36,
                                .focus = 0xFF9040,
                                .monitor = 0x404040,
                                .monitorText = 0xE8E8E8,
                                .standBy = 0xA87C00,
                                .standByText = 0x000000,
                                .logging = 0x00501E,
                                .loggingText = 0xE8F8E8,
                                .stale = 0xC85400,
                                .staleText = 0x000000,
                                .oldText = 0x6A6058,
                                .calibration = 0x1C2F6E,
                                .calibrationText = 0xD8E0F8,
                                .warning = 0x8A1020,
                                .warningText = 0xFFE8E0,
                                .chart = 0x101010,
                                .chartGrid = 0x4A4A4A,
                                .chartText = 0xC8B8A8};
  return kNight;
}

ChartColours chartColoursOf(const Theme& theme) {
  return {.dark = theme.night, .background = theme.chart, .grid = theme.chartGrid};
}

std::uint32_t traceColourOn(const Theme& theme, int settingsColour) {
  return traceColourOn(chartColoursOf(theme), settingsColour);
}

QPalette paletteOf(const Theme& theme) {
  const QColor text(theme.text);
  const QColor background(theme.background);
  // From button and window colour Qt works out its edges and shadows.
  QPalette palette(QColor(theme.button), background);
  for (const auto role : {QPalette::Window, QPalette::Base}) palette.setColor(role, background);
  for (const auto role : {QPalette::WindowText, QPalette::Text}) palette.setColor(role, text);
  palette.setColor(QPalette::ButtonText, QColor(theme.buttonText));
  palette.setColor(QPalette::AlternateBase, QColor(theme.button));
  palette.setColor(QPalette::ToolTipBase, background);
  palette.setColor(QPalette::ToolTipText, text);
  palette.setColor(QPalette::PlaceholderText, QColor(theme.faintText));
  palette.setColor(QPalette::Highlight, QColor(theme.focus));
  palette.setColor(QPalette::HighlightedText, background);
  palette.setColor(QPalette::Link, QColor(theme.focus));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(theme.faintText));
  }
  return palette;
}

int dialogTextPixels(double scale) {
  constexpr double kTextUnits = 10;
  constexpr int kLeast = 12;
  const int ownChoice = std::max(kLeast, static_cast<int>(kTextUnits * scale));
  return std::clamp(QFontInfo(QGuiApplication::font()).pixelSize(), ownChoice, 2 * ownChoice);
}

}  // namespace kalmira
