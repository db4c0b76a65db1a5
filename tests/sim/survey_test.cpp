#include "sim/survey.h"

#include <gtest/gtest.h>

namespace kalmira::sim {
namespace {

TEST(Survey, OneSeedGivesOneSurvey) {
  for (int kind = 0; kind < kKindCount; ++kind) {
    SCOPED_TRACE(kind);
    const auto* instrument = findInstrument(kind);
    auto plan = naturalPlan(instrument->kind, instrument->instrumentLength);
    plan.sentencePeriod_s = 0.1;
    auto other = plan;
    other.seed = 2;
    int different = 0;
    for (std::uint64_t i = 0; i < 200; ++i) {
      EXPECT_EQ(recordAt(plan, i), recordAt(SurveyPlan(plan), i));
      EXPECT_EQ(sentenceAt(plan, i), sentenceAt(SurveyPlan(plan), i));
      different += recordAt(plan, i) != recordAt(other, i) ? 1 : 0;
    }
    EXPECT_GT(different, 20);
  }
}

}  // namespace
}  // namespace kalmira::sim
