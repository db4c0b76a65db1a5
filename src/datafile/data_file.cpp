#include "datafile/data_file.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "datafile/record_parse.h"

namespace kalmira {
namespace {

// Of what is committed, so much is kept: more than an hour of the fastest instrument.
constexpr std::size_t kKept = 4 << 20;
// Records for which there is no place wait up to this size, days of a survey; then they are lost, and counted.
constexpr std::size_t kLargestMemory = 64 << 20;
// So much waiting is a medium that will not come round.
constexpr std::size_t kLongWaiting = 16 << 20;
// More than this waiting is written in blocks of this size, not record by record.
constexpr std::size_t kBlock = 64 << 10;
// At the end of the file, so much is compared with what was written.
constexpr std::size_t kReadBack = 4096;
// Commits that fail are tried again after 1, 2, 4... services, at most after so many: about a minute.
constexpr int kLongestRetry = 128;
// After so many failures, some five seconds, the medium is given up.
constexpr int kFailuresToGiveUp = 4;

bool isFull(int error) { return error == ENOSPC || error == EDQUOT || error == EFBIG; }

}  // namespace

void DataFile::begin(Disk& disk, std::size_t recordLength) {
  leaveFile();
  disk_ = &disk;
  path_.clear();
  record_length_ = recordLength;
  open_ = true;
  own_files_.clear();
  opening_ = {};
  memory_.clear();
  memory_start_ = synced_ = written_ = reached_ = lost_records_ = 0;
  shifted_ = false;
  condition_ = Condition::sound;
  problem_.clear();
}

int DataFile::create(Disk& disk, const std::filesystem::path& path, std::size_t recordLength) {
  auto outcome = disk.createNew(path);
  if (!outcome.file) return outcome.error;
  begin(disk, recordLength);
  enter(std::move(outcome.file), path);
  return 0;
}

void DataFile::append(std::string_view records) {
  if (!open_) return;
  if (memory_.size() + records.size() > kLargestMemory) {
    lost_records_ += records.size() / record_length_;
    problem_ = "Memory full";
    return;
  }
  memory_ += records;
  if (follower_) follower_(records);
  writeWaiting();
}

void DataFile::service() {
  if (!open_ || !file_) return;
  takeProgress();
  if (isWritable()) condition_ = look();
  writeWaiting();
  trimMemory();
}

std::size_t DataFile::waitingRecords() const { return static_cast<std::size_t>(end() - written_) / record_length_; }

bool DataFile::isWritable() const {
  return file_ && (condition_ == Condition::sound || condition_ == Condition::lengthened);
}

DataFile::Condition DataFile::look() {
  // One call where all is well: this runs with every reading.
  const auto named = disk_->status(path_);
  if (!named || own_files_.empty() || !named->isSameFile(own_files_.back())) {
    return file_->status() ? Condition::gone : Condition::failing;
  }
  if (named->links == 0) return Condition::gone;
  if (named->size < written_) return Condition::cut;
  const auto error = sync_->progress().error;
  if (error == 0 && !readsBack()) {
    // Once may be a commit that is failing just now.
    if (std::exchange(read_back_failed_, true)) return Condition::overwritten;
  } else {
    read_back_failed_ = false;
  }
  if (failed_commits_ >= kFailuresToGiveUp && !isFull(error)) return Condition::failing;
  if (end() - written_ > kLongWaiting) return Condition::failing;
  return named->size > reached_ ? Condition::lengthened : condition_;
}

// Whether the file ends as it was written.
bool DataFile::readsBack() {
  const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(written_ - memory_start_, kReadBack));
  const auto from = written_ - size;
  return file_->readAt(from, size) ==
         std::string_view(memory_).substr(static_cast<std::size_t>(from - memory_start_), size);
}

void DataFile::writeWaiting() {
  if (!isWritable()) return;
  if (written_ < end()) {
    const auto open = file_->status();
    if (open && open->size < written_) {  // written now, the gap would be filled with zeros
      condition_ = Condition::cut;
      return;
    }
  }
  while (written_ < end()) {
    if (!writeSome()) return;
  }
  // After a failed commit the file is only sound again once a commit went well.
  if (sync_->progress().error == 0) problem_.clear();
}

bool DataFile::writeSome() {
  const auto waiting = std::string_view(memory_).substr(static_cast<std::size_t>(written_ - memory_start_));
  const auto bytes =
      waiting.substr(0, waiting.size() > kBlock ? kBlock / record_length_ * record_length_ : record_length_);
  const auto outcome = file_->writeAt(written_, bytes);
  reached_ = std::max(reached_, written_ + outcome.written);
  written_ += outcome.written / record_length_ * record_length_;
  sync_->written(written_, false);
  if (outcome.written == bytes.size()) return true;
  // Should cutting back fail too, the next try writes over the torn record.
  const bool torn = outcome.written % record_length_ != 0;
  if (torn && condition_ == Condition::sound && file_->truncate(written_) == 0) reached_ = written_;
  fail(outcome.error != 0 ? outcome.error : ENOSPC);
  return false;
}

void DataFile::takeProgress() {
  const auto progress = sync_->progress();
  if (progress.syncedTo > synced_ && progress.syncedTo <= end()) {
    synced_ = progress.syncedTo;
    failed_commits_ = 0;
  }
  if (progress.failed && --services_to_retry_ <= 0) rewriteUncommitted(progress.error);
}

// The system may have dropped what it could not commit.
void DataFile::rewriteUncommitted(int error) {
  written_ = synced_;
  sync_->rewriteFrom(synced_);
  services_to_retry_ = std::min(1 << std::min(failed_commits_++, 10), kLongestRetry);
  fail(error != 0 ? error : EIO);
}

void DataFile::fail(int error) { problem_ = diskErrorText(error); }

// Keeps what a continuation needs of what goes: how it has to begin.
void DataFile::trimMemory() {
  if (memory_.size() < 2 * kKept) return;
  const auto most = std::min<std::uint64_t>(synced_ - memory_start_, memory_.size() - kKept);
  const std::string_view all(memory_);
  auto cut = static_cast<std::size_t>(most) / record_length_ * record_length_;
  const auto mayBegin = [&](std::size_t at) {
    const auto type = recordTypeOf(all.substr(at, record_length_));
    return type == RecordType::reading || type == RecordType::gpsFirst || type == RecordType::textFirst;
  };
  while (cut > 0 && !mayBegin(cut)) cut -= record_length_;
  for (std::size_t at = 0; at < cut; at += record_length_) opening_.take(all.substr(at, record_length_));
  memory_.erase(0, cut);
  memory_start_ += cut;
}

void DataFile::enter(std::unique_ptr<DiskFile> file, const std::filesystem::path& path) {
  leaveFile();
  file_ = std::move(file);
  path_ = path;
  if (const auto status = file_->status()) own_files_.push_back(*status);
  sync_ = std::make_unique<SyncThread>();
  sync_->watch(file_->duplicate());
  condition_ = Condition::sound;
  read_back_failed_ = false;
  failed_commits_ = services_to_retry_ = 0;
  problem_.clear();
}

void DataFile::leaveFile() {
  file_.reset();
  // A commit to a medium that does not answer is left to itself.
  if (sync_ && !sync_->abandon()) (void)sync_.release();
  sync_.reset();
}

// What is no longer in memory, as far as it can be had.
std::string DataFile::readOlder() {
  constexpr std::size_t kReadBlock = 1 << 20;
  std::string older;
  const auto readFrom = [&](const auto& read) {
    while (older.size() < memory_start_) {
      const auto wanted = std::min<std::uint64_t>(memory_start_ - older.size(), kReadBlock);
      const std::string block = read(older.size(), static_cast<std::size_t>(wanted));
      if (block.empty()) return;
      older += block;
    }
  };
  if (file_ && condition_ != Condition::overwritten) {
    readFrom([this](std::uint64_t offset, std::size_t size) { return file_->readAt(offset, size); });
  }
  if (other_copy_ && !shifted_) readFrom(other_copy_);
  older.resize(older.size() / record_length_ * record_length_);
  return older;
}

// The file at `path` when it is one of ours and holds what this stream wrote there.
OpenOutcome DataFile::openOwn(const std::filesystem::path& path) {
  auto outcome = disk_->openExisting(path);
  const auto found = outcome.file ? outcome.file->status() : std::nullopt;
  const bool ours = found && std::any_of(own_files_.begin(), own_files_.end(), [&](const FileStatus& own) {
                      return own.inode == found->inode;  // a card that comes back may get another device number
                    });
  if (!ours || found->size < memory_start_ || found->size > end()) return {.file = nullptr, .error = EEXIST};
  const auto size = static_cast<std::size_t>(found->size - memory_start_);
  const auto compared = size / record_length_ * record_length_;
  if (outcome.file->readAt(memory_start_, compared) != std::string_view(memory_).substr(0, compared)) {
    return {.file = nullptr, .error = EEXIST};
  }
  written_ = memory_start_ + compared;
  reached_ = found->size;
  return outcome;
}

DataFile::Continued DataFile::continueIn(const std::filesystem::path& path) {
  // In a file that others write, nothing is safe.
  const auto left = file_ ? file_->status() : std::nullopt;
  if (left && (condition_ == Condition::cut || condition_ == Condition::overwritten)) {
    std::erase_if(own_files_, [&](const FileStatus& own) { return own.isSameFile(*left); });
  }
  auto outcome = disk_->createNew(path);
  if (outcome.error == EEXIST && (outcome = openOwn(path)).file) {
    // Nothing is known of what its medium has.
    synced_ = memory_start_;
    enter(std::move(outcome.file), path);
    writeWaiting();
    return {};
  }
  if (!outcome.file) return {.error = outcome.error, .missing = 0};
  std::string older = readOlder();
  const std::uint64_t missing = memory_start_ - older.size();
  if (missing > 0) {
    older += opening_.records(memory_, older.empty());
    shifted_ = true;
    own_files_.clear();
  }
  opening_ = {};
  memory_.insert(0, older);
  memory_start_ = synced_ = written_ = reached_ = 0;
  enter(std::move(outcome.file), path);
  writeWaiting();
  return {.error = 0, .missing = missing};
}

std::unique_ptr<DiskFile> DataFile::readingHandle() const { return file_ && !shifted_ ? file_->duplicate() : nullptr; }

void DataFile::closeAndReopen() {
  if (!open_ || !file_) return;
  takeProgress();
  sync_->written(written_, true);
  auto again = disk_->openExisting(path_);
  const auto mine = file_->status();
  const auto found = again.file ? again.file->status() : std::nullopt;
  // Closing the only handle on a file that cannot be opened again would be giving it away.
  if (mine && found && found->isSameFile(*mine)) {
    const int error = file_->close();
    file_ = std::move(again.file);
    sync_->watch(file_->duplicate());
    if (error != 0) rewriteUncommitted(error);
  }
  service();
}

std::optional<DataFile::Unwritten> DataFile::finish() {
  if (!open_) return std::nullopt;
  service();
  int error = EIO;
  if (isWritable()) {
    error = sync_->finish();
    takeProgress();
    if (error != 0 || waitingRecords() > 0) {  // one more try, for a medium that failed a commit
      if (error != 0) written_ = synced_;
      writeWaiting();
      error = file_->sync();
    }
    const int closeError = file_->close();
    if (error == 0) error = closeError;
  }
  std::optional<Unwritten> rest;
  if (written_ != end() || error != 0) {
    const auto from = !isWritable() ? memory_start_ : error != 0 ? synced_ : written_;
    if (error != 0) fail(error);
    rest = Unwritten{.records = memory_.substr(static_cast<std::size_t>(from - memory_start_)), .cause = problem_};
  }
  open_ = false;
  leaveFile();
  memory_.clear();
  memory_.shrink_to_fit();
  return rest;
}

}  // namespace kalmira
