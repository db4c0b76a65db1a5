#include "chart/chart_picture.h"

#include <algorithm>
#include <cmath>

namespace kalmira {
namespace {

constexpr double kLeastContrast = 3.0;  // to be told from the ground by weak eyes
constexpr int kLighteningSteps = 32;    // from the colour to white

double channel(std::uint32_t colour, int shift) { return static_cast<double>((colour >> shift) & 0xFFU) / 255.0; }

double linear(double value) { return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4); }

double luminance(std::uint32_t colour) {
  return 0.2126 * linear(channel(colour, 16)) + 0.7152 * linear(channel(colour, 8)) +
         0.0722 * linear(channel(colour, 0));
}

double contrast(std::uint32_t a, std::uint32_t b) {
  const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

// `step` of kLighteningSteps on the way to white.
std::uint32_t lightened(std::uint32_t colour, unsigned step) {
  std::uint32_t mixed = 0;
  for (const int shift : {16, 8, 0}) {
    const auto value = (colour >> shift) & 0xFFU;
    mixed |= (value + (255U - value) * step / kLighteningSteps) << shift;
  }
  return mixed;
}

// Columns that the picture can scroll before its pixels have to be moved.
constexpr int kSpareColumns = 512;

// Of a row in memory: an odd number of a processor's usual cache lines, or the pixels of an upright line push each
// other out of the cache.
int strideFor(int width) {
  constexpr int kLinePixels = 64 / 4;
  return ((width + kSpareColumns) / kLinePixels | 1) * kLinePixels;
}

constexpr std::uint32_t kOpaque = 0xFF000000U;

// numerator / denominator, rounded half up; denominator above 0.
std::int64_t roundedRatio(std::int64_t numerator, std::int64_t denominator) {
  const std::int64_t twice = 2 * numerator + denominator;
  const std::int64_t quotient = twice / (2 * denominator);
  return twice % (2 * denominator) < 0 ? quotient - 1 : quotient;
}

}  // namespace

std::uint32_t traceColourOn(const ChartColours& colours, int settingsColour) {
  const auto bgr = static_cast<std::uint32_t>(settingsColour) & 0xFFFFFFU;
  const std::uint32_t colour = (bgr & 0xFFU) << 16U | (bgr & 0xFF00U) | bgr >> 16U;
  if (!colours.dark) return colour;
  for (unsigned step = 0; step < kLighteningSteps; ++step) {
    const auto lighter = lightened(colour, step);
    if (contrast(lighter, colours.background) >= kLeastContrast) return lighter;
  }
  return 0xFFFFFF;
}

ChartPicture::ChartPicture(const ChartColours& colours, int width, int height)
    : ground_(colours),
      width_(std::max(width, 1)),
      height_(std::max(height, 1)),
      stride_(strideFor(width_)),
      pixels_(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height_)) {
  clear();
}

void ChartPicture::clear() {
  origin_ = 0;
  std::fill(pixels_.begin(), pixels_.end(), kOpaque | ground_.background);
}

// The whole picture moves. Right of x + 1 there is nothing but grid, alike in all columns: the two that come in on the
// right are copies of the last one.
void ChartPicture::scrollLeft(int /*x*/) {
  if (origin_ + 2 + width_ > stride_) backToStart();
  origin_ += 2;
  for (int y = 0; y < height_; ++y) {
    const auto end = pixels_.begin() + static_cast<std::ptrdiff_t>(place(0, y) + static_cast<std::size_t>(width_));
    std::fill(end - 2, end, *(end - 3));  // on a very narrow picture part of these is left of it
  }
}

void ChartPicture::backToStart() {
  for (int y = 0; y < height_; ++y) {
    const auto row = pixels_.begin() + static_cast<std::ptrdiff_t>(y) * stride_;
    std::copy(row + origin_, row + origin_ + width_, row);
  }
  origin_ = 0;
}

void ChartPicture::eraseColumns(int left, int right) {
  fill(left, right, 0, height_ - 1, kOpaque | ground_.background);
}

void ChartPicture::gridPiece(int left, int right, int y, int pixels) {
  fill(left, right, y, std::int64_t{y} + pixels - 1, kOpaque | ground_.grid);
}

void ChartPicture::point(int x, int y, int colour, int width) { dab(x, y, traceColour(colour), width); }

// Steps along the longer side and rounds the other coordinate anew at each step: whatever part of a line is left out
// for lying outside, the rest stays where it was.
void ChartPicture::line(int x1, int y1, int x2, int y2, int colour, int width) {
  const auto drawn = traceColour(colour);
  const std::int64_t dx = std::int64_t{x2} - x1;
  const std::int64_t dy = std::int64_t{y2} - y1;
  if (dx == 0 || dy == 0) {  // the dabs of an upright or a level line make one block
    const std::int64_t left = std::int64_t{std::min(x1, x2)} - width / 2;
    const std::int64_t top = std::int64_t{std::min(y1, y2)} - width / 2;
    return fill(left, left + std::abs(dx) + width - 1, top, top + std::abs(dy) + width - 1, drawn);
  }
  const bool steep = std::abs(dy) > std::abs(dx);
  const std::int64_t length = steep ? std::abs(dy) : std::abs(dx);
  const std::int64_t start = steep ? y1 : x1;
  const std::int64_t step = (steep ? dy : dx) < 0 ? -1 : 1;
  // Steps whose dab can touch the picture.
  const std::int64_t lowest = -std::int64_t{width};
  const std::int64_t highest = std::int64_t{steep ? height_ : width_} + width;
  const std::int64_t first = std::max<std::int64_t>(0, step > 0 ? lowest - start : start - highest);
  const std::int64_t last = std::min(length, step > 0 ? highest - start : start - lowest);
  for (std::int64_t i = first; i <= last; ++i) {
    const std::int64_t along = start + step * i;
    const std::int64_t across = (steep ? x1 : y1) + roundedRatio((steep ? dx : dy) * i, length);
    dab(steep ? across : along, steep ? along : across, drawn, width);
  }
}

// A square of `width` pixels; of two middles the one further down and to the right.
void ChartPicture::dab(std::int64_t x, std::int64_t y, std::uint32_t colour, int width) {
  const std::int64_t left = x - width / 2;
  const std::int64_t top = y - width / 2;
  fill(left, left + width - 1, top, top + width - 1, colour);
}

void ChartPicture::fill(std::int64_t left, std::int64_t right, std::int64_t top, std::int64_t bottom,
                        std::uint32_t colour) {
  left = std::max<std::int64_t>(left, 0);
  right = std::min<std::int64_t>(right, width_ - 1);
  top = std::max<std::int64_t>(top, 0);
  bottom = std::min<std::int64_t>(bottom, height_ - 1);
  if (left > right || top > bottom) return;
  auto at = static_cast<std::ptrdiff_t>(place(static_cast<int>(left), static_cast<int>(top)));
  for (std::int64_t y = top; y <= bottom; ++y, at += stride_)
    std::fill_n(pixels_.begin() + at, right - left + 1, colour);
}

std::uint32_t ChartPicture::traceColour(int colour) {
  const auto known =
      std::find_if(colours_.begin(), colours_.end(), [&](const auto& entry) { return entry.first == colour; });
  if (known != colours_.end()) return known->second;
  colours_.emplace_back(colour, kOpaque | traceColourOn(ground_, colour));
  return colours_.back().second;
}

}  // namespace kalmira
