#include "sim/survey.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "gps/nmea.h"
#include "link/decode.h"
#include "link/framing.h"
#include "platform/text.h"
#include "sim/receiver.h"

namespace kalmira::sim {
namespace {

SurveyPlan planOf(int kind, int recordLength = 0) {
  const auto* instrument = findInstrument(kind);
  auto plan = naturalPlan(instrument->kind, recordLength == 0 ? instrument->instrumentLength : recordLength);
  plan.sentencePeriod_s = 0.1;
  return plan;
}

template <typename Framer>
std::vector<std::string> framed(Framer framer, const std::string& stream) {
  std::vector<std::string> records;
  Bytes rest(reinterpret_cast<const std::uint8_t*>(stream.data()), stream.size());
  while (!rest.empty()) {
    const auto step = framer.feed(rest);
    rest = rest.subspan(step.used);
    if (step.result == FrameStep::Result::good) records.emplace_back(framer.record());
    if (step.result == FrameStep::Result::bad) records.emplace_back("bad");
  }
  return records;
}

std::vector<std::string> framed(const SurveyPlan& plan, const std::string& stream) {
  switch (instrumentOf(plan.kind).framing) {
    case Framing::ascii:
      return framed(AsciiFramer(plan.recordLength), stream);
    case Framing::ice:
      return framed(IceFramer(), stream);
    default:
      return framed(Tesk2Framer(), stream);
  }
}

Channels decoded(Kind kind, const std::string& record) {
  Channels channels;
  AsciiReading reading;
  char letter = ' ';
  if (kind == Kind::tesk2) {
    DecodeTesk2Record(record, {}, false, channels, letter, letter);
  } else {
    DecodeAsciiRecord(record, kind, {}, reading, channels);
  }
  return channels;
}

// Every record of a minute's stream is framed and decoded by the logger, all the kind's channels come up, and
// the values are of this world and not all the same.
TEST(Survey, StreamOfEveryKindIsReadable) {
  const std::vector<std::set<std::size_t>> slots{
      {0, 1, 2, 3},       {0, 1, 2, 3}, {0, 1, 2, 3}, {0, 1, 2, 3},
      {0, 1, 2, 3, 4, 5}, {0, 2},       {0, 2},       {0, 1, 2, 3, 4, 5, 6, 7}};
  for (int kind = 0; kind <= kKindCount; ++kind) {
    const auto plan = kind < kKindCount ? planOf(kind) : planOf(3, 7);
    SCOPED_TRACE(instrumentOf(plan.kind).name);
    std::string stream;
    for (std::uint64_t i = 0; i < 600; ++i) stream += recordAt(plan, i);
    const auto records = framed(plan, stream);
    ASSERT_EQ(records.size(), 600U);
    std::set<std::size_t> seen;
    std::set<float> first;
    for (const auto& record : records) {
      const auto channels = decoded(plan.kind, record);
      for (std::size_t slot = 0; slot < kSlots; ++slot) {
        if (channels.present[slot] == 0) continue;
        seen.insert(slot);
        EXPECT_LT(std::abs(channels.value[slot]), plan.kind == Kind::glaco ? 900 : 350);
      }
      if (channels.present[0] != 0) first.insert(channels.value[0]);
    }
    EXPECT_EQ(seen, slots[static_cast<std::size_t>(plan.kind)]);
    EXPECT_GT(first.size(), plan.kind == Kind::mirka ? 5U : 50U);
  }
}

TEST(Survey, OneSeedGivesOneSurvey) {
  const auto plan = planOf(0);
  auto other = plan;
  other.seed = 2;
  int different = 0;
  for (std::uint64_t i = 0; i < 50; ++i) {
    EXPECT_EQ(recordAt(plan, i), recordAt(SurveyPlan(plan), i));
    different += recordAt(plan, i) != recordAt(other, i) ? 1 : 0;
  }
  EXPECT_GT(different, 40);
}

TEST(Survey, EveryFourteenthTeskRecordShowsBothComponents) {
  const auto plan = planOf(3, 7);
  EXPECT_DOUBLE_EQ(plan.recordPeriod_s, 0.072);
  std::set<std::size_t> seen;
  for (std::uint64_t i = 0; i < 140; i += 14) {
    const auto channels = decoded(plan.kind, recordAt(plan, i));
    for (const std::size_t slot : {0U, 2U}) {
      if (channels.present[slot] != 0) seen.insert(slot);
    }
  }
  EXPECT_EQ(seen.size(), 2U);
}

TEST(Survey, TriggerIsPressedForThreeRecordsAtATime) {
  auto plan = planOf(0);
  plan.triggerEvery_s = 0.91;  // ten records
  std::string pressed;
  for (std::uint64_t i = 0; i < 35; ++i) {
    AsciiReading reading;
    Channels channels;
    DecodeAsciiRecord(recordAt(plan, i), plan.kind, {}, reading, channels);
    pressed += reading.secondMode;
  }
  EXPECT_EQ(pressed, "NNNNNNNNNNMMMNNNNNNNMMMNNNNNNNMMMNN");
}

TEST(Survey, SentencesAreWholeAndWalk) {
  auto plan = planOf(0);
  plan.sentencePeriod_s = 1.0 / 3;
  // North of the start by the cosine of 45 degrees, in minutes of 1855.33 m, give or take the receiver's
  // noise.
  const double walked = 100 * kWalk_mPerS * std::sqrt(0.5) / (111320.0 / 60);
  std::string field;
  std::vector<double> latitudes;
  for (const std::uint64_t number : {0U, 300U}) {
    for (std::uint64_t i = number; i < number + 3; ++i) {
      const auto sentence = sentenceAt(plan, i);
      ASSERT_TRUE(sentence.ends_with("\r\n"));
      EXPECT_TRUE(nmeaChecksumOk(std::string_view(sentence).substr(0, sentence.size() - 2))) << sentence;
    }
    const auto gga = sentenceAt(plan, number);
    ASSERT_EQ(GetNmeaField(gga, 3, ',', field), 1);
    latitudes.push_back(parseReal(field));
    ASSERT_EQ(GetNmeaField(gga, 7, ',', field), 1);
    EXPECT_EQ(field, number == 0 ? "1" : "2");
    ASSERT_EQ(GetNmeaField(sentenceAt(plan, number + 1), 16, ',', field), 1);
    EXPECT_GT(parseReal(field), 1.0);
    EXPECT_LT(parseReal(field), 3.0);
  }
  EXPECT_NEAR(latitudes[1] - latitudes[0], walked, 0.3 / 1855);
  EXPECT_TRUE(sentenceAt(plan, 300).starts_with("$GPGGA,080140.00,"));
  EXPECT_NE(sentenceAt(plan, 302).find(",A,5924.79"), std::string::npos);
}

TEST(Survey, WrongChecksumsComeAsOftenAsAsked) {
  auto plan = planOf(0);
  plan.badChecksum = 0.25;
  int wrong = 0;
  for (std::uint64_t i = 0; i < 1000; ++i) {
    const auto sentence = sentenceAt(plan, i);
    wrong += nmeaChecksumOk(std::string_view(sentence).substr(0, sentence.size() - 2)) ? 0 : 1;
  }
  EXPECT_NEAR(wrong, 250, 50);
}

TEST(Survey, StreamsAreMergedInOrderOfTime) {
  auto plan = planOf(7);
  plan.sentencePeriod_s = 0.125;
  auto source = surveySource(plan);
  std::string order;
  for (int i = 0; i < 8; ++i) order += source()->port == Port::gps ? 'g' : 'i';
  EXPECT_EQ(order, "giiigiig");  // 0, 0, 50, 100, 125, 150, 200, 250 ms
  EXPECT_DOUBLE_EQ(source()->time_s, 0.25);
}

}  // namespace
}  // namespace kalmira::sim
