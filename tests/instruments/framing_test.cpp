#include "instruments/framing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace kalmira {
namespace {

Bytes bytesOf(std::string_view text) { return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}; }

// Feeds `block` to its end and appends every record that ends in it to `seen`, a bad one as "bad".
template <class Framer>
void feedAll(Framer& framer, std::string_view block, std::vector<std::string>& seen) {
  while (true) {
    const FrameStep step = framer.feed(bytesOf(block));
    if (step.result == FrameStep::Result::needMore) {
      EXPECT_EQ(step.used, block.size());
      return;
    }
    seen.emplace_back(step.result == FrameStep::Result::good ? framer.record() : "bad");
    block.remove_prefix(step.used);
  }
}

// What comes out of `stream`, which is fed whole, byte by byte and in two blocks cut at every place.
template <class Framer>
std::vector<std::string> frame(const Framer& fresh, std::string_view stream) {
  std::vector<std::string> whole;
  Framer framer = fresh;
  feedAll(framer, stream, whole);

  std::vector<std::string> single;
  framer = fresh;
  for (const char& byte : stream) feedAll(framer, {&byte, 1}, single);
  EXPECT_EQ(single, whole);
  for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
    std::vector<std::string> halves;
    framer = fresh;
    for (const auto part : {stream.substr(0, cut), stream.substr(cut)}) feedAll(framer, part, halves);
    EXPECT_EQ(halves, whole) << "cut at " << cut;
  }
  return whole;
}

struct Case {
  std::string name;
  std::string stream;
  std::vector<std::string> seen;
};

template <class Framer>
void expectFramed(const Framer& fresh, std::initializer_list<Case> cases) {
  for (const auto& [name, stream, seen] : cases) EXPECT_EQ(frame(fresh, stream), seen) << name;
}

TEST(AsciiFraming, FindsRecordsOfItsLength) {
  expectFramed(AsciiFramer(7), {{"seven bytes", "T\x04+0123\rT\x27-9999\r", {"T\x04+0123", "T\x27-9999"}},
                                {"twelve", "TA+0123-0045\r", {"bad"}}});
  const std::string record = "TA+0123-0045";
  expectFramed(AsciiFramer(12),
               {{"whole records", "T12345678901\rTA+0123-0045\r", {"T12345678901", record}},
                {"another first letter", "X12345678901\r", {"bad"}},
                {"stream starts in the middle", "-0045\rTA+0123-0045\r", {record}},
                {"a byte lost: the return comes too early to be looked at", "T1234567890\r", {}},
                {"a byte too many", "T123456789012\rTA+0123-0045\r", {"bad", record}},
                {"a return inside a record", "T1234567890\r\r", {"T1234567890\r"}},
                {"a bad record keeps the buffer", "XT1234567890\r\r", {"bad", "T1234567890\r"}},
                {"a good record empties it", "T12345678901\r\r", {"T12345678901"}},
                {"noise with a NUL and high bytes", std::string("\0\xFF\x80", 3) + record + "\r", {record}},
                {"the return is the last byte that fits", std::string(168, 'x') + record + "\r", {record}},
                {"the return is dropped with the full buffer", std::string(169, 'x') + record + "\r", {}},
                {"in step again after a drop", std::string(169, 'x') + record + "\r" + record + "\r", {record}},
                {"the letter is dropped with the full buffer", std::string(181, 'x') + record + "\r", {}}});
}

TEST(IceFraming, ChecksEveryByteAtItsPlace) {
  expectFramed(
      IceFramer(),
      {{"two records without anything between", "T123I045T000I999", {"T123I045", "T000I999"}},
       {"wrong first byte", "\rT123I045", {"bad", "T123I045"}},
       {"letter among the thickness digits", "T1x", {"bad"}},
       {"fifth byte is no I", "T1234", {"bad"}},
       {"the failing byte is not a new start", "T12T123I045", {"bad", "bad", "bad", "bad", "bad", "bad", "bad", "bad"}},
       {"cut record", "T123I04", {}}});
}

TEST(Tesk2Framing, FindsFramesByTheirTwoEndBytes) {
  const std::string end = "\xFF\xFF";
  const std::string record = "t\x02" + std::string("\x80\x00\x80\x00\x80\x00\x80\x00\x12\x34\x56\x78", 12);
  const std::string full = "T\x06" + std::string(12, '\xFF');
  const std::string filler(165, 'x');
  expectFramed(Tesk2Framer(),
               {{"small and capital letter", record + end + "T234567890ABCD" + end, {record, "T234567890ABCD"}},
                {"one end byte ends nothing", record + "\xFF" + "Z" + record + end, {record}},
                {"another first letter: neither good nor bad", "X234567890ABCD" + end, {}},
                {"and the buffer is kept: one more end byte, one place on",
                 "XT34567890ABC\xFF" + end + "\xFF",
                 {"T34567890ABC\xFF\xFF"}},
                {"too short", "T234567890ABC" + end, {}},
                {"end bytes as data, all words full", full + end, {full}},
                {"stream starts in the middle", record.substr(5) + end + record + end, {record}},
                {"the end is the last byte that fits", filler + record + end, {record}},
                {"the end is dropped with the full buffer", filler + "x" + record + end, {}},
                {"in step again after a drop", filler + "x" + record + end + record + end, {record}}});
}

}  // namespace
}  // namespace kalmira
