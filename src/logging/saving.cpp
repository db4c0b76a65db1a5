#include "logging/saving.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "logging/signs.h"

namespace kalmira {
namespace {

constexpr std::uint32_t kSuppliesPeriodMs = 10000;
// The rate is that of about so long. Until there is a tenth of it, what the settings ask for stands in.
constexpr double kRateMs = 300000;
constexpr std::string_view kWritten = "written";
constexpr double kMsAnHour = 3600000;
// Sentences a second, and records that a usual one takes.
constexpr double kUsualSentenceRecords = 5;

double expectedBytesPerMs(const Session& session) {
  const auto length = static_cast<double>(session.file.recordLength());
  const double period = std::max(1.0, static_cast<double>(session.link.recordPeriodMs));
  const double readings = session.surveyMode() == kModeAuto ? 1.0 / (session.recordInterval * period) : 0.001;
  return length * (readings + (session.gpsEnabled() ? kUsualSentenceRecords / 1000 : 0.0));
}

double bytesPerMs(const Session& session) {
  const auto& saving = session.saving;
  if (saving.loggedMs < kRateMs / 10 || saving.loggedBytes <= 0) return expectedBytesPerMs(session);
  return saving.loggedBytes / saving.loggedMs;
}

void takeRate(Session& session, std::uint32_t passed) {
  auto& saving = session.saving;
  const auto& file = session.file;
  const auto bytes = file.size() + file.waitingRecords() * file.recordLength();
  const auto before = std::exchange(saving.bytes, bytes);
  if (session.loggingState != kLogging || bytes < before || before == 0) return;
  saving.loggedMs += passed;
  saving.loggedBytes += static_cast<double>(bytes - before);
  if (saving.loggedMs < 2 * kRateMs) return;
  saving.loggedMs /= 2;
  saving.loggedBytes /= 2;
}

void lookAtSupplies(Session& session, std::uint32_t now) {
  auto& saving = session.saving;
  if (saving.suppliesTick != 0 && ticksSince(now, saving.suppliesTick) < kSuppliesPeriodMs) return;
  saving.suppliesTick = now;
  saving.freeBytes = session.disk.freeBytes(session.file.path().parent_path());
  saving.batteryPercent = session.readBattery();
  saving.batteryHours = session.readBatteryHours();
}

Urgency urgencyOf(double hours) {
  if (hours < kAlarmHours) return Urgency::alarm;
  return hours < kWarnHours ? Urgency::warning : Urgency::fine;
}

std::string hoursText(double hours) {
  constexpr double kMostHours = 100;
  if (hours >= kMostHours) return "over 99 h";
  if (hours >= kWarnHours) return fmt::format("{} h", static_cast<int>(hours));
  return fmt::format("{} min", static_cast<int>(hours * 60));
}

SavingSigns::Part roomPart(const Session& session, std::uint64_t freeBytes) {
  const double hours = static_cast<double>(freeBytes) / bytesPerMs(session) / kMsAnHour;
  return {.text = fmt::format("disk {} left", hoursText(hours)), .urgency = urgencyOf(hours)};
}

SavingSigns::Part batteryPart(const Session::Saving& saving) {
  SavingSigns::Part part{.text = fmt::format("battery {} %", *saving.batteryPercent)};
  if (saving.batteryHours) {
    part.text += ", " + hoursText(*saving.batteryHours);
    part.urgency = urgencyOf(*saving.batteryHours);
  }
  if (part.urgency == Urgency::fine && *saving.batteryPercent < kWarnPercent) part.urgency = Urgency::warning;
  return part;
}

}  // namespace

Urgency SavingSigns::worst() const {
  auto worst = Urgency::fine;
  for (const auto& part : parts) worst = std::max(worst, part.urgency);
  return worst;
}

std::string SavingSigns::text() const {
  std::string all;
  for (const auto& part : parts) all += (all.empty() ? "" : ", ") + part.text;
  return all;
}

std::string SavingSigns::shortText() const {
  const auto urgency = worst();
  SavingSigns chosen;
  for (const auto& part : parts) {
    const bool proof = &part == &parts.front() || part.text.starts_with(kWritten);
    if (urgency == Urgency::fine ? proof : part.urgency == urgency) chosen.parts.push_back(part);
  }
  return chosen.text();
}

void watchSaving(Session& session) {
  if (!session.file.isOpen()) return;
  auto& saving = session.saving;
  const auto now = session.clock.tick();
  takeRate(session, ticksSince(now, saving.lookTick));
  saving.lookTick = now;
  const auto written = session.file.size();
  if (std::exchange(saving.written, written) != written) saving.writeTick = now;
  if (session.file.waitingRecords() == 0) saving.readings = session.counts.readings;
  lookAtSupplies(session, now);
}

SavingSigns savingSignsOf(const Session& session) {
  if (!session.sessionActive) return {};
  if (!session.file.isOpen()) return {.parts = {{.text = "No file yet: nothing is saved"}}};
  const auto& saving = session.saving;
  const auto age = ticksSince(session.clock.tick(), saving.writeTick);
  SavingSigns signs;
  signs.parts.push_back({.text = fmt::format("{} reading{}", saving.readings, saving.readings == 1 ? "" : "s")});
  if (session.gpsEnabled()) signs.parts.push_back({.text = fmt::format("GPS {}", session.gpsRecordCount)});
  signs.parts.push_back({.text = fmt::format("{} {} ago", kWritten, ageText(age))});
  if (const auto waiting = session.file.waitingRecords(); waiting > 0) {
    signs.parts.push_back(
        {.text = fmt::format(fmt::runtime(waiting == 1 ? "{} record waits" : "{} records wait"), waiting),
         .urgency = Urgency::alarm});
  }
  for (auto& part : supplySignsOf(session).parts) signs.parts.push_back(std::move(part));
  return signs;
}

SavingSigns supplySignsOf(const Session& session) {
  const auto& saving = session.saving;
  SavingSigns signs;
  if (saving.freeBytes) signs.parts.push_back(roomPart(session, *saving.freeBytes));
  if (saving.batteryPercent) signs.parts.push_back(batteryPart(saving));
  return signs;
}

}  // namespace kalmira
