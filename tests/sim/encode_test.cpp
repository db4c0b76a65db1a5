#include "sim/encode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "instruments/catalogue.h"

namespace kalmira::sim {
namespace {

constexpr Stance kV{.vertical = true};
constexpr Stance kH{.vertical = false};
constexpr Stance kPressedV{.vertical = true, .pressed = true};
constexpr Stance kPressedH{.vertical = false, .pressed = true};

// Half a count of the range that a value needs: never finer than `finest`, else a share of the value.
struct Precision {
  double finest;
  double share;
  double of(double value) const { return std::max(finest, std::abs(value) * share) * 1.001 + 1e-5; }
};

const std::vector<double> kConductivities{-76.5, -3.3, 0, 0.37, 2.9, 9.99, 12.4, 12.6, 99, 101, 124.9, 512, 999};
const std::vector<double> kInphases{-5.5, -0.2, 0, 0.31, 0.37, 2.87, 2.89, 7.4};

TEST(Encode, DecodesBackToTheValues) {
  struct Row {
    Kind kind;
    std::function<std::string(Stance, double, double)> encode;
    Precision conductivity;
    Precision inphase;
  };
  const Precision anything{1e9, 0};  // not in the record
  const std::vector<Row> rows{
      {Kind::orla, encodeOrla, {0.00125, 1.0 / 800}, {0.00125, 0}},
      {Kind::teskb, encodeTeskb, {0.05, 1.0 / 200}, {0.00144, 1.0 / 200}},
      {Kind::tesk,
       [](Stance s, double c, double) { return encodeTesk(s, Component::conductivity, c, 7); },
       {0.00625, 1.0 / 200},
       anything},
      {Kind::tesk,
       [](Stance s, double, double i) { return encodeTesk(s, Component::inphase, i, 12); },
       anything,
       {0.00018, 1.0 / 200}},
      {Kind::vardo, [](Stance s, double c, double) { return encodeVardo(s, 20, c); }, {0.000375, 1.0 / 2000}, anything},
      {Kind::mirka, encodeMirka, {0.125, 1.0 / 8}, {0.125, 0}}};
  for (const auto& row : rows) {
    for (const auto stance : {kV, kH, kPressedV, kPressedH}) {
      for (const double conductivity : kConductivities) {
        for (const double inphase : kInphases) {
          const auto record = row.encode(stance, conductivity, inphase);
          SCOPED_TRACE(record);
          const auto reading = instrumentOf(row.kind).decode(record, {});
          EXPECT_NEAR(reading.conductivity, conductivity, row.conductivity.of(conductivity));
          EXPECT_NEAR(reading.inphase, row.kind == Kind::vardo ? 20 : inphase, row.inphase.of(inphase));
          EXPECT_EQ(reading.orientation, stance.vertical ? 'V' : 'H');
          EXPECT_EQ(reading.secondMode, stance.pressed ? 'M' : 'N');
        }
      }
    }
  }
}

TEST(Encode, Tesk2DecodesBackAndNeverLooksEnded) {
  for (int step = 0; step < 3000; ++step) {
    const double conductivity = -1200 + 0.8 * step;
    const Tesk2Values values{conductivity, -34 + step * 0.0226, conductivity / 3, -8.6 + step * 0.0057, 31, 31};
    const auto stance = step % 2 == 0 ? kV : kH;
    const auto record = encodeTesk2(stance, values);
    EXPECT_EQ(terminated(Framing::tesk2, record).find("\xFF\xFF"), 14U);
    const auto reading = instrumentOf(Kind::tesk2).decode(record, {});
    const auto& channels = reading.channels;
    const std::size_t slot = stance.vertical ? 0 : 1;
    EXPECT_NEAR(channels.value[slot], values.conductivity1, 0.0197);
    EXPECT_NEAR(channels.value[slot + 2], values.inphase1, 0.00058);
    EXPECT_NEAR(channels.value[slot + 4], values.conductivity2, 0.0197);
    EXPECT_NEAR(channels.value[slot + 6], values.inphase2, 0.00016);
    EXPECT_EQ(reading.secondMode, 'N');
  }
}

}  // namespace
}  // namespace kalmira::sim
