#include "export/colour_scale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "export/cells.h"
#include "platform/text.h"

namespace kalmira {
namespace {

constexpr std::size_t kMostValues = 4096;
constexpr double kMostClasses = 8;
// Dark to light through blue, green and yellow: apart for colour-blind eyes, and in print.
constexpr std::array<std::uint32_t, 8> kColours{0x2c1e6d, 0x2f4f9e, 0x2a7fa8, 0x2fa38f,
                                                0x5cbf63, 0xa8d03f, 0xe8d13a, 0xfff3a0};

// The smallest of 1, 2 and 5 times a power of ten that is no smaller.
double roundStep(double step) {
  const double power = std::pow(10, std::floor(std::log10(step)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= step * (1 - 1e-9)) return factor * power;
  }
  return 10 * power;
}

// With the fewest decimals that say the same to single precision.
double plain(double value) {
  constexpr auto kMost = static_cast<double>(std::numeric_limits<float>::max());
  std::string text;
  appendShortest(text, static_cast<float>(std::clamp(value, -kMost, kMost)));
  return parseReal(text);
}

}  // namespace

void ValueSample::take(double value) {
  if (!std::isfinite(value)) return;
  least_ = count_ == 0 ? value : std::min(least_, value);
  most_ = count_ == 0 ? value : std::max(most_, value);
  if (count_++ % stride_ != 0) return;
  values_.push_back(value);
  if (values_.size() < kMostValues) return;
  for (std::size_t i = 0; 2 * i < values_.size(); ++i) values_[i] = values_[2 * i];
  values_.resize(values_.size() / 2);
  stride_ *= 2;
}

std::vector<ColourClass> ValueSample::classes() const {
  if (empty()) return {};
  auto sorted = values_;
  std::ranges::sort(sorted);
  const std::size_t outermost = sorted.size() / 50;
  const double low = plain(sorted[outermost]);
  const double high = plain(sorted[sorted.size() - 1 - outermost]);
  if (!(high > low)) return {{plain(least_), plain(most_), kColours.front()}};
  double step = roundStep((high - low) / kMostClasses);
  const auto firstOf = [&] { return std::floor(low / step + 1e-9); };
  const auto countOf = [&] { return std::ceil(high / step - 1e-9) - firstOf(); };
  while (countOf() > kMostClasses) step = roundStep(step * 1.5);
  const auto first = firstOf();
  const auto count = static_cast<std::size_t>(countOf());
  std::vector<ColourClass> classes;
  for (std::size_t i = 0; i < count; ++i) {
    const auto colour = count == 1 ? 0 : i * (kColours.size() - 1) / (count - 1);
    classes.push_back({plain((first + static_cast<double>(i)) * step),
                       plain((first + static_cast<double>(i + 1)) * step), kColours.at(colour)});
  }
  classes.front().from = std::min(classes.front().from, plain(least_));
  classes.back().to = std::max(classes.back().to, plain(most_));
  return classes;
}

std::optional<std::size_t> colouredChannel(std::optional<std::size_t> chosen, std::span<const ValueSample> samples) {
  if (chosen) return chosen;
  const auto found = std::ranges::find_if(samples, [](const ValueSample& sample) { return !sample.empty(); });
  return found == samples.end() ? std::nullopt : std::optional<std::size_t>(found - samples.begin());
}

std::size_t classOf(const std::vector<ColourClass>& classes, double value) {
  std::size_t found = 0;
  const auto limit = [&] { return static_cast<float>(classes[found + 1].from); };
  while (found + 1 < classes.size() && static_cast<float>(value) >= limit()) ++found;
  return found;
}

std::string classText(const ColourClass& range, std::string_view unit) {
  std::string text;
  appendShortest(text, static_cast<float>(range.from));
  if (range.from < range.to) appendShortest(text += " to ", static_cast<float>(range.to));
  if (!unit.empty()) (text += ' ') += unit;
  return text;
}

}  // namespace kalmira
