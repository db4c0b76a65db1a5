#include "check/check_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

#include "check/sentence_groups.h"
#include "instruments/catalogue.h"

namespace kalmira {
namespace {

const Instrument* instrumentByEnding(const std::filesystem::path& path) {
  const auto ending = path.extension().string();
  const auto alike = [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == std::tolower(b); };
  for (int kind = 0; kind < kKindCount; ++kind) {
    const auto* instrument = findInstrument(kind);
    if (std::ranges::equal(ending, instrument->extension, alike)) return instrument;
  }
  return nullptr;
}

// Opens the file and finds its instrument, by its header or else by its ending.
FileError openAny(RecordReader& reader, const std::filesystem::path& path, FileCheck& check) {
  auto error = reader.open(path);
  if (error.kind == FileErrorKind::none) {
    check.headerState = FileCheck::Header::damaged;  // until it has been looked at
    return error;
  }
  if (error.kind != FileErrorKind::notADataFile) return error;
  check.headerState = FileCheck::Header::missing;
  if (const auto* instrument = instrumentByEnding(path)) return reader.openWithoutHeader(path, instrument->kind);
  if (path.extension().string().starts_with(".REST")) {
    error.text = "has records without a header: check the data file that they belong to";
  } else {
    error.text += ", and its ending names none";
  }
  return error;
}

bool isPrintable(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

// Header 1, the first record that there is: at the file's start, as it should be, or behind damage.
void takeHeader(const Record& record, FileCheck& check) {
  const bool sound = record.offset == 0 && isPrintable(record.bytes.substr(0, record.bytes.size() - 1));
  const auto header = parseHeader1(record.bytes);
  if (header && header->kind == check.header.kind) check.header = *header;
  check.headerState = sound ? FileCheck::Header::sound : FileCheck::Header::damaged;
  check.survey.automatic = check.header.surveyMode == kModeAuto;
  if (!sound && record.offset == 0) addDamage(check.survey, {0, record.bytes.size(), "no record"});
}

// The repaired file in the making: the sound records of the file up to where the rest takes over, and the rest.
class Repair {
 public:
  Repair(const FileCheck& check, const TakeBytes& take, RepairedCount& count)
      : check_(check), take_(take), count_(count) {
    groups_.take = [this](const Record& record) { write(record); };
  }

  void feed(const Record& record) {
    if (record.offset < check_.rest.from.value_or(UINT64_MAX)) groups_.feed(record);
  }
  // `end`: offset behind the last record and the damage behind it.
  void finish(std::uint64_t end) {
    const auto length = static_cast<std::size_t>(instrumentOf(check_.header.kind).fileRecordLength);
    const std::string_view rest(check_.rest.records);
    for (std::size_t at = 0; at < rest.size(); at += length) {
      groups_.feed({rest.substr(at, length), check_.rest.from.value_or(end) + at});
    }
    groups_.finish();
  }

 private:
  void write(const Record& record) {
    if (count_.records++ == 0 && check_.headerState != FileCheck::Header::sound) {
      count_.taken = take_(formatHeader1(check_.header));
      ++count_.records;
    }
    if (count_.taken) count_.taken = take_(record.bytes);
  }

  const FileCheck& check_;
  const TakeBytes& take_;
  RepairedCount& count_;
  SentenceGroups groups_;
};

void readThrough(RecordReader& reader, FileCheck& check, Repair* repair, const RepairedCount& count) {
  SurveyReporter reporter(check.survey);
  const auto length = static_cast<std::size_t>(reader.recordLength());
  SentenceGroups groups;
  groups.take = [&](const Record& record) { reporter.take(record); };
  groups.drop = [&](std::uint64_t offset, std::size_t records, bool altered) {
    const auto* what = altered ? "a GPS sentence that no longer fits its checksum" : "a GPS sentence that is not whole";
    addDamage(check.survey, {offset, records * length, what});
  };
  Record record;
  bool first = true;
  while (count.taken && reader.next(record)) {
    if (first && recordTypeOf(record.bytes) == RecordType::header1) takeHeader(record, check);
    const bool headerLost =
        first && recordTypeOf(record.bytes) == RecordType::header1 && check.headerState != FileCheck::Header::sound;
    first = false;
    if (headerLost) continue;  // it is made anew
    groups.feed(record);
    if (repair != nullptr) repair->feed(record);
  }
  groups.finish();
  reporter.finish();
  check.size = reader.size();
  if (reader.tornBytes() > 0) {
    check.tear = FilePlace{check.size - reader.tornBytes(), reader.tornBytes(), "a record that is not whole"};
  }
  check.error = reader.error();
  if (repair != nullptr && check.error.kind == FileErrorKind::none) repair->finish(check.size - reader.tornBytes());
}

}  // namespace

bool FileCheck::sound() const {
  return opened && error.kind == FileErrorKind::none && headerState == Header::sound && !tear &&
         survey.damage.count == 0 && rest.problem.empty() && !rest.adds();
}

FileCheck checkFile(const std::filesystem::path& path, const GoOn& goOn, const TakeBytes& repaired,
                    RepairedCount& count) {
  FileCheck check;
  RecordReader reader;
  check.error = openAny(reader, path, check);
  if (check.error.kind != FileErrorKind::none) return check;
  check.opened = true;
  check.header = reader.header();
  const auto name = path.filename().string();
  ReadWatch watch{.goOn = [&](std::uint64_t offset) { return goOn(name, offset, reader.size()); }};
  check.rest = findRest(path, check.header.kind, watch);
  watch.damage = [&](std::uint64_t offset, std::uint64_t bytes) {
    addDamage(check.survey, {offset, bytes, "no record"});
  };
  reader.watch(watch);
  reader.seek(0);
  Repair repair(check, repaired, count);
  readThrough(reader, check, repaired ? &repair : nullptr, count);
  return check;
}

}  // namespace kalmira
