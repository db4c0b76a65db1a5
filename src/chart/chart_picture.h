#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "chart/profile_chart.h"

namespace kalmira {

// What a chart is drawn on, 0xRRGGBB.
struct ChartColours {
  bool dark = false;  // traces are lightened where they would drown
  std::uint32_t background = 0xFFFFFF;
  std::uint32_t grid = 0xC0C0C0;
};

// A trace's colour (0x00BBGGRR, as the settings hold it, chosen on white) as it is drawn, 0xRRGGBB.
std::uint32_t traceColourOn(const ChartColours& colours, int settingsColour);

// A chart as pixels in memory, 0xFFRRGGBB, row by row. Scrolling moves the picture's origin over a wider strip rather
// than the pixels; once in many columns the strip is taken back to its start. Lines are drawn in whole numbers, so that
// they come out the same wherever they are drawn. A y may be any number.
class ChartPicture final : public ChartCanvas {
 public:
  // Both sizes at least 1.
  ChartPicture(const ChartColours& colours, int width, int height);

  void clear() override;
  void scrollLeft(int x) override;
  void eraseColumns(int left, int right) override;
  void gridPiece(int left, int right, int y, int pixels) override;
  void line(int x1, int y1, int x2, int y2, int colour, int width) override;
  void point(int x, int y, int colour, int width) override;

  int width() const { return width_; }
  int height() const { return height_; }
  std::uint32_t at(int x, int y) const { return pixels_[place(x, y)]; }
  // The upper left pixel; the next row begins rowBytes() further. Valid until the next drawing.
  const std::uint32_t* pixels() const { return pixels_.data() + origin_; }
  std::size_t rowBytes() const { return static_cast<std::size_t>(stride_) * sizeof(std::uint32_t); }

 private:
  std::size_t place(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(stride_) + static_cast<std::size_t>(origin_ + x);
  }
  void backToStart();
  void fill(std::int64_t left, std::int64_t right, std::int64_t top, std::int64_t bottom, std::uint32_t colour);
  void dab(std::int64_t x, std::int64_t y, std::uint32_t colour, int width);
  std::uint32_t traceColour(int colour);

  ChartColours ground_;
  int width_;
  int height_;
  int stride_;
  int origin_ = 0;
  std::vector<std::uint32_t> pixels_;
  std::vector<std::pair<int, std::uint32_t>> colours_;  // the settings' colours met so far, as drawn
};

}  // namespace kalmira
