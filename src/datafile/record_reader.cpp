#include "datafile/record_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <system_error>

#include "datafile/record_parse.h"

namespace kalmira {
namespace {

// Large enough that a read costs nothing beside the work on its records.
constexpr std::size_t kWindowBytes = 65536;

constexpr std::size_t kHeaderTagBytes = 15;

std::string systemText(int error) { return std::generic_category().message(error); }

}  // namespace

FileError RecordReader::openSource(const std::filesystem::path& path) {
  std::error_code ignored;
  const auto status = std::filesystem::status(path, ignored);
  if (std::filesystem::is_directory(status)) return {FileErrorKind::notAFile, "is a folder"};
  // A pipe would keep whoever opens it waiting for somebody at its other end.
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    return {FileErrorKind::notAFile, "is no regular file"};
  }
  errno = 0;
  auto file = std::make_unique<std::ifstream>();
  // Blocks are read here; a second buffer in between would only copy them.
  file->rdbuf()->pubsetbuf(nullptr, 0);
  file->open(path, std::ios::binary);
  if (!file->is_open()) return {FileErrorKind::cannotOpen, "cannot be opened: " + systemText(errno)};
  *this = RecordReader();
  source_ = std::move(file);
  noteSize();
  return error_;
}

FileError RecordReader::open(const std::filesystem::path& path) {
  if (auto error = openSource(path); error.kind != FileErrorKind::none) return error;
  if (identify()) place_ = record_length_;
  return error_;
}

FileError RecordReader::open(std::unique_ptr<std::istream> source) {
  *this = RecordReader();
  source_ = std::move(source);
  if (identify()) place_ = record_length_;
  return error_;
}

FileError RecordReader::openWithoutHeader(const std::filesystem::path& path, Kind kind) {
  if (auto error = openSource(path); error.kind != FileErrorKind::none) return error;
  header_.kind = kind;
  record_length_ = static_cast<std::size_t>(instrumentOf(kind).fileRecordLength);
  if (known_size_ == 0) error_ = {FileErrorKind::empty, "is empty"};
  return error_;
}

void RecordReader::noteSize() {
  source_->seekg(0, std::ios::end);
  const auto end = source_->tellg();
  if (end < 0) {
    error_ = {FileErrorKind::readFailed, "cannot be read from its end"};
    return;
  }
  source_place_ = static_cast<std::uint64_t>(end);
  known_size_ = std::max(known_size_, source_place_);
}

bool RecordReader::identify() {
  const auto start = bytesAt(0, kHeaderTagBytes);
  if (error_.kind != FileErrorKind::none) return false;
  if (start.empty()) {
    error_ = {FileErrorKind::empty, "is empty"};
    return false;
  }
  const Instrument* instrument = findInstrumentByHeader(start);
  if (instrument == nullptr) {
    error_ = {FileErrorKind::notADataFile, start.size() < kHeaderTagBytes
                                               ? "is too short to be a data file"
                                               : "is no data file: no instrument's header stands at its start"};
    return false;
  }
  record_length_ = static_cast<std::size_t>(instrument->fileRecordLength);
  const auto record = bytesAt(0, record_length_);
  if (const auto header = parseHeader1(record)) header_ = *header;
  header_whole_ = record.size() == record_length_ && record.back() == '\n';
  return error_.kind == FileErrorKind::none;
}

// Up to `count` bytes from `offset` on; fewer at the file's end or when reading failed.
std::string_view RecordReader::bytesAt(std::uint64_t offset, std::size_t count) {
  const auto inside = [&] { return offset >= window_start_ && offset + count <= window_start_ + window_.size(); };
  if (!inside()) load(offset, kWindowBytes);
  if (offset < window_start_ || offset >= window_start_ + window_.size()) return {};
  return std::string_view(window_).substr(static_cast<std::size_t>(offset - window_start_), count);
}

// Makes the window the bytes from `offset` on, keeping those it has: a pipe cannot give them again.
void RecordReader::load(std::uint64_t offset, std::size_t count) {
  if (offset >= window_start_ && offset <= window_start_ + window_.size()) {
    window_.erase(0, static_cast<std::size_t>(offset - window_start_));
  } else {
    window_.clear();
  }
  window_start_ = offset;
  const std::uint64_t from = window_start_ + window_.size();
  const std::size_t kept = window_.size();
  if (kept >= count) return;
  if (watch_.goOn && !watch_.goOn(from)) {
    error_ = {FileErrorKind::left, fmt::format("was read up to byte {} only", from)};
    return;
  }
  errno = 0;
  source_->clear();  // the end reached before may have moved on
  if (from != source_place_) source_->seekg(static_cast<std::streamoff>(from));
  window_.resize(count);
  source_->read(window_.data() + kept, static_cast<std::streamsize>(count - kept));
  const auto got = static_cast<std::size_t>(source_->gcount());
  window_.resize(kept + got);
  source_place_ = from + got;
  if (source_->bad()) {
    error_ = {FileErrorKind::readFailed,
              fmt::format("cannot be read at byte {}: {}", source_place_, systemText(errno != 0 ? errno : EIO))};
    return;
  }
  // A torn record may be cut off again by whoever writes the file.
  if (kept + got < count && record_length_ > 0 && source_place_ / record_length_ < known_size_ / record_length_) {
    error_ = {FileErrorKind::readFailed, fmt::format("has become shorter while it was read: it had {} bytes, and byte "
                                                     "{} is no longer there",
                                                     known_size_, source_place_)};
  }
  known_size_ = std::max(known_size_, source_place_);
}

bool RecordReader::nextChecked(Record& record) {
  for (;;) {
    const auto bytes = bytesAt(place_, 2 * record_length_);
    if (error_.kind != FileErrorKind::none) return false;
    if (bytes.size() < record_length_) {
      torn_ = bytes.size();
      return false;
    }
    const auto first = bytes.substr(0, record_length_);
    if (isRecord(first)) {
      record = {first, place_};
      place_ += record_length_;
      sound_until_ = soundFrom(place_);
      return true;
    }
    const std::size_t damage = damageAhead(bytes);
    skipped_ += damage;
    if (watch_.damage) watch_.damage(place_, damage);
    place_ += damage;
  }
}

// Where the records end that follow each other in the window from `offset` on: not many at once, for whoever seeks may
// want a single one. The window's last is not among them: what stands behind it has to be read first.
std::uint64_t RecordReader::soundFrom(std::uint64_t offset) const {
  constexpr std::size_t kAtOnce = 32;
  const std::string_view window(window_);
  auto at = static_cast<std::size_t>(offset - window_start_);
  const auto end = std::min(window.size(), at + (kAtOnce + 1) * record_length_);
  while (at + 2 * record_length_ <= end && isRecord(window.substr(at, record_length_))) at += record_length_;
  return window_start_ + at;
}

// How far to go from a place where no record stands.
std::size_t RecordReader::damageAhead(std::string_view bytes) const {
  for (auto feed = bytes.find('\n'); feed < record_length_ - 1; feed = bytes.find('\n', feed + 1)) {
    const std::size_t start = feed + 1;
    if (start + record_length_ > bytes.size()) break;
    if (isRecord(bytes.substr(start, record_length_))) return start;
  }
  return record_length_;
}

bool RecordReader::previous(Record& record) {
  sound_until_ = 0;
  while (place_ >= record_length_) {
    const std::size_t wanted = static_cast<std::size_t>(std::min<std::uint64_t>(place_, 2 * record_length_));
    const std::uint64_t from = place_ - wanted;
    // A window that ends here, rather than one that begins here, serves the records before this one too.
    if (from < window_start_ || place_ > window_start_ + window_.size()) {
      const std::uint64_t start = place_ > kWindowBytes ? place_ - kWindowBytes : 0;
      load(start, static_cast<std::size_t>(place_ - start));
    }
    const auto bytes = bytesAt(from, wanted);
    if (error_.kind != FileErrorKind::none || bytes.size() < wanted) return false;
    const auto last = bytes.substr(wanted - record_length_);
    if (isRecord(last)) {
      place_ -= record_length_;
      record = {last, place_};
      return true;
    }
    const std::size_t damage = damageBehind(bytes);
    skipped_ += damage;
    place_ -= damage;
    if (watch_.damage) watch_.damage(place_, damage);
  }
  return false;
}

std::size_t RecordReader::damageBehind(std::string_view bytes) const {
  for (std::size_t step = 1; step < record_length_ && step + record_length_ <= bytes.size(); ++step) {
    const auto candidate = bytes.substr(bytes.size() - step - record_length_, record_length_);
    if (isRecord(candidate)) return step;
  }
  return record_length_;
}

void RecordReader::seekToEnd() {
  source_->clear();
  noteSize();
  if (error_.kind != FileErrorKind::none) return;
  torn_ = source_place_ % record_length_;
  seek(source_place_ - torn_);
}

}  // namespace kalmira
