#include "sim/replay.h"

#include <fmt/format.h>

#include "platform/clock.h"
#include "sim/encode.h"

namespace kalmira::sim {
namespace {

constexpr std::size_t kShortTesk = 7;
constexpr std::size_t kGlaco = 8;

std::size_t sentLength(Kind kind, std::string_view text) {
  if (kind == Kind::glaco) return kGlaco;
  const bool shortTesk = kind == Kind::tesk && text.find_first_not_of(' ', kShortTesk) == std::string_view::npos;
  return shortTesk ? kShortTesk : text.size();
}

std::string failure(const std::string& path, const FileError& error) {
  return fmt::format("cannot play {}: {}", path, error.text);
}

}  // namespace

std::string instrumentRecord(Kind kind, std::string_view text) {
  std::string record(text.substr(0, sentLength(kind, text)));
  if (record[0] != 't') record[0] = 'T';
  return record;
}

std::string Replay::open(const std::string& path) {
  const auto error = reader_.open(path);
  return error.kind == FileErrorKind::none ? std::string() : failure(path, error);
}

// A sentence is recorded behind a reading that came after its first byte; a tick never takes the time back.
double Replay::timeOf(std::uint32_t tick) {
  constexpr std::uint32_t kHalfTheCounter = 0x80000000U;
  const std::uint32_t passed_ms = last_tick_ ? ticksSince(tick, *last_tick_) : 0;
  if (!last_tick_ || passed_ms < kHalfTheCounter) {
    last_tick_ = tick;
    played_ms_ += passed_ms;
  }
  return played_ms_ / 1000 / speed_;
}

std::optional<Transmission> Replay::next() {
  Record record;
  while (reader_.next(record)) {
    if (const auto sentence = sentences_.feed(record.bytes)) {
      return Transmission{timeOf(sentence->tick), Port::gps, std::string(sentence->text) + "\r\n"};
    }
    if (readingRepeat(record.bytes) == 0) continue;
    if (const auto tick = parseTick(record.bytes)) {
      auto text = instrumentRecord(kind(), readingText(record.bytes));
      return Transmission{timeOf(*tick), Port::instrument, terminated(instrumentOf(kind()).framing, std::move(text))};
    }
  }
  error_ = reader_.error().text;
  return std::nullopt;
}

}  // namespace kalmira::sim
