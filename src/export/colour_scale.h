#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The colours of a map of values.
namespace kalmira {

struct ColourClass {
  double from = 0, to = 0;
  std::uint32_t rgb = 0;  // 0xRRGGBB
};

// A sample of values as they come, a few thousand of them spread evenly over all.
class ValueSample {
 public:
  void take(double value);
  bool empty() const { return count_ == 0; }
  std::uint64_t count() const { return count_; }

  // Up to eight classes of one width, a round number, the first and the last one wide enough for all values. The width
  // is chosen without the outermost fiftieths of the values. Limits have the fewest decimals. Of values that are all
  // the same one class; of none no class.
  std::vector<ColourClass> classes() const;

 private:
  std::vector<double> values_;
  std::uint64_t count_ = 0;
  std::uint64_t stride_ = 1;
  double least_ = 0, most_ = 0;
};

// The channel of a map's colours: the chosen one, else the first that has values.
std::optional<std::size_t> colouredChannel(std::optional<std::size_t> chosen, std::span<const ValueSample> samples);

// The class that a value lies in, to single precision, which is that of readings; of a limit the one above it. The
// first or last one for what lies beside all.
std::size_t classOf(const std::vector<ColourClass>& classes, double value);
// "10 to 20 mS/m", "10 mS/m"
std::string classText(const ColourClass& range, std::string_view unit);

}  // namespace kalmira
