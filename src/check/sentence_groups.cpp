#include "check/sentence_groups.h"

#include <optional>
#include <utility>

#include "datafile/record_parse.h"
#include "gps/nmea.h"

namespace kalmira {
namespace {

// A receiver's line has 200 bytes at most.
constexpr std::size_t kMostRecords = 100;

}  // namespace

void SentenceGroups::feed(const Record& record) {
  if (count_ > 0 && (record.offset != end_ || count_ == kMostRecords)) dropOpen();
  const char tag = record.bytes[0];
  switch (recordTypeOf(record.bytes)) {
    case RecordType::gpsFirst:
    case RecordType::textFirst:
      dropOpen();
      start_ = record.offset;
      more_ = tag == tag::kGpsFirst ? tag::kGpsMore : tag::kTextMore;
      return add(record);
    case RecordType::gpsMore:
    case RecordType::textMore:
      if (count_ > 0 && tag == more_) return add(record);
      dropOpen();
      return drop(record.offset, 1, false);
    case RecordType::gpsTick:
      if (count_ == 0) return drop(record.offset, 1, false);
      add(record);
      return complete(record.bytes.size());
    default: dropOpen(); return take(record);
  }
}

void SentenceGroups::add(const Record& record) {
  open_ += record.bytes;
  ++count_;
  end_ = record.offset + record.bytes.size();
}

void SentenceGroups::complete(std::size_t length) {
  SentenceAssembler assembler;
  std::optional<SentenceAssembler::Sentence> sentence;
  const std::string_view records(open_);
  for (std::size_t i = 0; i < count_; ++i) sentence = assembler.feed(records.substr(i * length, length));
  if (!sentence) return dropOpen();
  // Bytes that were not printable are question marks in the file, and not in the sum.
  const bool exact = sentence->text.find('?') == std::string_view::npos;
  if (sentence->checksumRight && exact && !nmeaChecksumOk(sentence->text)) return dropOpen(true);
  const auto count = std::exchange(count_, 0);
  for (std::size_t i = 0; i < count; ++i) take({records.substr(i * length, length), start_ + i * length});
  open_.clear();
}

void SentenceGroups::dropOpen(bool altered) {
  if (count_ > 0) drop(start_, count_, altered);
  count_ = 0;
  open_.clear();
}

}  // namespace kalmira
