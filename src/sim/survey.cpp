#include "sim/survey.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "sim/encode.h"
#include "sim/world.h"

namespace kalmira::sim {
namespace {

// In every 20 s the operator turns the instrument on its side for 4 s.
constexpr double kTurnPeriod_s = 20;
constexpr double kTurnAt_s = 12;
constexpr double kTurnFor_s = 4;
// A press of the trigger lasts this many records, or half of those between two presses when they are fewer.
constexpr double kPressRecords = 3;
constexpr double kConductivityNoise = 0.1;  // mS/m
constexpr double kInphaseNoise = 0.02;      // parts per thousand
constexpr double kLongCoils_m = 4;
constexpr double kShortCoils_m = 2;

// One moment of the walk.
struct Moment {
  const SurveyPlan& plan;
  std::uint64_t number;
  double time_s;
  Stance stance;
};

double distance_m(const Moment& moment) { return kWalk_mPerS * moment.time_s; }

double noise(const Moment& moment, std::uint64_t which) {
  return bell(moment.plan.seed, Use::reading, moment.number, which);
}

Response measure(const Moment& moment, double separation_m, bool vertical) {
  auto response = groundResponse(moment.plan.seed, distance_m(moment), separation_m, vertical);
  const auto which = static_cast<std::uint64_t>(separation_m) * 4 + (vertical ? 2 : 0);
  response.conductivity += kConductivityNoise * noise(moment, which);
  response.inphase += kInphaseNoise * noise(moment, which + 1);
  return response;
}

// Both components take turns, record by record. The turn slips after every 13 records: a logger that takes, say, every
// 14th record would otherwise see only one component.
Component componentOf(std::uint64_t number) {
  return (number + number / 13) % 2 == 0 ? Component::conductivity : Component::inphase;
}

double valueOf(const Response& response, Component component) {
  return component == Component::inphase ? response.inphase : response.conductivity;
}

std::string orlaRecord(const Moment& moment) {
  const auto response = measure(moment, kLongCoils_m, moment.stance.vertical);
  return encodeOrla(moment.stance, response.conductivity, response.inphase);
}

std::string teskbRecord(const Moment& moment) {
  const auto response = measure(moment, kShortCoils_m, moment.stance.vertical);
  return encodeTeskb(moment.stance, response.conductivity, response.inphase);
}

std::string teskddRecord(const Moment& moment) {
  const auto component = componentOf(moment.number);
  // It has coils for both dipoles and is never turned.
  return encodeTeskdd({.vertical = true, .pressed = moment.stance.pressed}, component,
                      valueOf(measure(moment, kShortCoils_m, true), component),
                      valueOf(measure(moment, kShortCoils_m, false), component));
}

std::string teskRecord(const Moment& moment) {
  const auto component = componentOf(moment.number);
  const auto response = measure(moment, kShortCoils_m, moment.stance.vertical);
  return encodeTesk(moment.stance, component, valueOf(response, component), moment.plan.recordLength);
}

// Goes through its six coil settings, one a record.
std::string vardoRecord(const Moment& moment) {
  constexpr std::array<int, 3> kSeparations_m{10, 20, 40};
  const int separation_m = kSeparations_m[moment.number % 3];
  const bool vertical = moment.number % 6 < 3;
  const auto response = measure(moment, separation_m, vertical);
  return encodeVardo({.vertical = vertical, .pressed = moment.stance.pressed}, separation_m, response.conductivity);
}

std::string mirkaRecord(const Moment& moment) {
  const auto response = measure(moment, kLongCoils_m, true);
  return encodeMirka({.vertical = true, .pressed = moment.stance.pressed}, response.conductivity, response.inphase);
}

std::string glacoRecord(const Moment& moment) {
  const double thickness_m = seaIce(moment.plan.seed, distance_m(moment)) + 0.01 * noise(moment, 0);
  // The sea below fades as the ice grows.
  return encodeGlaco(thickness_m, 900 * std::exp(-0.6 * thickness_m) + noise(moment, 1));
}

std::string tesk2Record(const Moment& moment) {
  const auto far = measure(moment, kShortCoils_m, moment.stance.vertical);
  const auto near = measure(moment, kShortCoils_m / 2, moment.stance.vertical);
  return encodeTesk2(moment.stance, {.conductivity1 = far.conductivity,
                                     .inphase1 = far.inphase,
                                     .conductivity2 = near.conductivity,
                                     .inphase2 = near.inphase,
                                     .auxiliary1 = 20 + 3 * std::sin(moment.time_s / 600),
                                     .auxiliary2 = 21 + 3 * std::sin(moment.time_s / 700)});
}

using RecordMaker = std::string (*)(const Moment&);
constexpr std::array<RecordMaker, kKindCount> kRecordMakers{orlaRecord,  teskbRecord, teskddRecord, teskRecord,
                                                            vardoRecord, mirkaRecord, glacoRecord,  tesk2Record};

// Counted in records, so that rounding of times makes no press longer or shorter.
bool pressedAt(const SurveyPlan& plan, std::uint64_t number) {
  if (plan.triggerEvery_s <= 0) return false;
  constexpr double kRounding = 1e-9;
  const double every = plan.triggerEvery_s / plan.recordPeriod_s;
  const double press = std::floor(static_cast<double>(number) / every + kRounding);
  const double first = std::ceil(press * every - kRounding);
  return press >= 1 && static_cast<double>(number) - first < std::clamp(every / 2, 1.0, kPressRecords);
}

Stance stanceAt(const SurveyPlan& plan, std::uint64_t number, double time_s) {
  const double turn_s = std::fmod(time_s, kTurnPeriod_s);
  return {.vertical = turn_s < kTurnAt_s || turn_s >= kTurnAt_s + kTurnFor_s, .pressed = pressedAt(plan, number)};
}

}  // namespace

SurveyPlan naturalPlan(Kind kind, int recordLength) {
  const auto& instrument = instrumentOf(kind);
  SurveyPlan plan{.kind = kind, .recordLength = recordLength};
  // A TESK with short records sends them faster.
  const bool shortTesk = kind == Kind::tesk && recordLength < instrument.instrumentLength;
  plan.recordPeriod_s = (shortTesk ? 72.0 : instrument.recordPeriodMs) / 1000;
  return plan;
}

std::string recordAt(const SurveyPlan& plan, std::uint64_t number) {
  const double time_s = static_cast<double>(number) * plan.recordPeriod_s;
  const Moment moment{.plan = plan, .number = number, .time_s = time_s, .stance = stanceAt(plan, number, time_s)};
  return terminated(instrumentOf(plan.kind).framing, kRecordMakers[static_cast<std::size_t>(plan.kind)](moment));
}

std::string sentenceAt(const SurveyPlan& plan, std::uint64_t number) {
  const std::uint64_t firstOfFix = number - number % 3;
  const double fix_s = static_cast<double>(firstOfFix) * plan.sentencePeriod_s;
  unsigned error = 0;
  if (fraction(plan.seed, Use::checksum, number, 0) < plan.badChecksum) {
    error = 1 + static_cast<unsigned>(draw(plan.seed, Use::checksum, number, 1) % 255);
  }
  return withChecksum(nmeaBody(plan.seed, number, fix_s), error) + "\r\n";
}

TransmissionSource surveySource(const SurveyPlan& plan) {
  return [plan, record = std::uint64_t{0}, sentence = std::uint64_t{0}]() mutable {
    const double record_s = static_cast<double>(record) * plan.recordPeriod_s;
    const double sentence_s = static_cast<double>(sentence) * plan.sentencePeriod_s;
    if (plan.sentencePeriod_s > 0 && sentence_s <= record_s) {
      return std::optional<Transmission>({sentence_s, Port::gps, sentenceAt(plan, sentence++)});
    }
    return std::optional<Transmission>({record_s, Port::instrument, recordAt(plan, record++)});
  };
}

}  // namespace kalmira::sim
