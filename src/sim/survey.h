#pragma once

#include <cstdint>
#include <string>

#include "instruments/catalogue.h"
#include "sim/player.h"

// A survey that never took place: an operator walks a line with an instrument and a GPS receiver. Every record and
// sentence is a function of the plan and its number, so the same plan always gives the same bytes.
namespace kalmira::sim {

struct SurveyPlan {
  Kind kind = Kind::orla;
  int recordLength = 12;        // without terminator; TESK: 7 or 12
  double recordPeriod_s = 1;    // above 0
  double sentencePeriod_s = 0;  // 0: no GPS
  double triggerEvery_s = 0;    // 0: the trigger is never pressed
  double badChecksum = 0;       // probability that a sentence carries a wrong checksum, 0 to 1
  std::uint64_t seed = 1;
};

// The kind's records at the rate at which the instrument sends them, without GPS.
SurveyPlan naturalPlan(Kind kind, int recordLength);

// Record `number`, sent at `number * recordPeriod_s`, with its terminator.
std::string recordAt(const SurveyPlan& plan, std::uint64_t number);

// Sentence `number`, sent at `number * sentencePeriod_s`, with CR and LF. Three sentences share one fix.
std::string sentenceAt(const SurveyPlan& plan, std::uint64_t number);

// Both streams without end. At one and the same time the sentence comes first.
TransmissionSource surveySource(const SurveyPlan& plan);

}  // namespace kalmira::sim
