#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "datafile/reading_context.h"
#include "datafile/record_reader.h"

namespace kalmira {

using Moment = RecordTimes::Moment;

// Bytes of the file of which something is to be said.
struct FilePlace {
  std::uint64_t offset = 0;
  std::uint64_t bytes = 0;
  std::string what;
};

// Any number of things, of which the first are kept: a damaged file may hold millions.
template <class Thing>
struct Listed {
  static constexpr std::size_t kKept = 1000;
  std::vector<Thing> kept;
  std::uint64_t count = 0;

  void add(Thing thing) {
    ++count;
    if (kept.size() < kKept) kept.push_back(std::move(thing));
  }
};

struct LineReport {
  std::string name;
  std::optional<double> first, last;  // stations of its first and last reading
  std::uint64_t readings = 0;
};

// Time without readings.
struct SurveyGap {
  enum class Why { paused, broken, silent } why = Why::paused;
  std::uint64_t offset = 0;  // of the record that begins it
  std::optional<Moment> since;
  std::optional<std::uint32_t> tick;
  std::optional<std::uint32_t> ms;  // until the next reading; nothing: none came, or a tick cannot be read
};

struct SurveyReport {
  bool automatic = false;     // readings come by themselves, so that silence can be told; to be set before them
  std::string baseName;       // header 2
  std::string modeValue;      // header 2: readings a second, station increment or readings averaged
  std::uint64_t records = 0;  // that are sound
  std::uint64_t readings = 0;
  std::uint64_t timelessReadings = 0;  // no time mark before them
  Listed<LineReport> lines;
  std::optional<Moment> first, last;
  Listed<SurveyGap> gaps;
  std::array<std::uint64_t, 3> gapCounts{};  // by SurveyGap::Why
  std::uint64_t gga = 0;                     // sentences with a right checksum
  std::array<std::uint64_t, 10> fixes{};     // of these, by fix quality
  std::uint64_t otherSentences = 0;          // with a right checksum
  std::uint64_t wrongChecksums = 0;
  std::uint64_t otherTexts = 0;  // lines of the receiver that are no sentence
  enum class End { neverRecorded, paused, recording } end = End::neverRecorded;
  Listed<FilePlace> damage;
};

// Tells the damage, joined to the place before it where it goes on there.
void addDamage(SurveyReport& report, FilePlace place);

// Makes the report of the records it is given, in file order, GPS sentences whole.
class SurveyReporter {
 public:
  explicit SurveyReporter(SurveyReport& report) : report_(report) {}
  void take(const Record& record);
  // Nothing comes any more.
  void finish();

 private:
  bool takeContent(const Record& record);
  bool takeReading(const Record& record);
  void takeEvent(const Record& record);
  void takeSentence(const SentenceAssembler::Sentence& sentence);
  void begin(std::optional<SurveyGap>& gap, SurveyGap::Why why, const Record& record);
  void end(std::optional<SurveyGap>& gap, std::optional<std::uint32_t> tick);
  void endLine();
  std::uint32_t silenceMs() const;

  SurveyReport& report_;
  SurveyPosition position_;
  RecordTimes times_;
  SentenceAssembler sentences_;
  std::optional<LineReport> line_;
  std::optional<SurveyGap> pause_, break_;
  std::optional<std::uint32_t> last_reading_;  // its tick, while readings follow each other
};

}  // namespace kalmira
