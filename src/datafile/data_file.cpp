#include "datafile/data_file.h"

#include <cerrno>
#include <chrono>
#include <utility>

namespace kalmira {
namespace {

// Of the second that may be lost to a power cut; the rest is for the medium.
constexpr auto kCommitEvery = std::chrono::milliseconds(700);

}  // namespace

void SyncThread::watch(std::unique_ptr<DiskFile> handle) {
  worker_.change([&] { handle_ = std::move(handle); });
  worker_.start([this] { run(); });
}

void SyncThread::written(std::uint64_t offset, bool now) {
  bool wake = false;
  {
    const auto held = worker_.lock();
    writtenTo_ = offset;
    wake = !dirty_ || (now && !hurry_);
    dirty_ = true;
    hurry_ = hurry_ || now;
  }
  if (wake) worker_.wake();
}

SyncThread::Progress SyncThread::progress() const {
  const auto held = worker_.lock();
  return progress_;
}

void SyncThread::rewriteFrom(std::uint64_t offset) {
  const auto held = worker_.lock();
  writtenTo_ = offset;
  progress_.failed = false;
  ++rewrites_;
}

int SyncThread::finish() {
  worker_.stop();
  const auto held = worker_.lock();
  handle_.reset();
  return progress_.error;
}

void SyncThread::run() {
  auto held = worker_.lock();
  while (worker_.wait(held, [this] { return dirty_; })) {
    dirty_ = false;
    hurry_ = false;
    const auto handle = handle_;
    const auto upTo = writtenTo_;
    const auto rewrites = rewrites_;
    held.unlock();
    const int error = handle ? handle->sync() : EMFILE;  // no second handle was to be had
    held.lock();
    progress_.error = error;
    if (error != 0) {
      progress_.failed = true;
    } else if (!progress_.failed && rewrites == rewrites_) {
      progress_.syncedTo = upTo;
    }
    worker_.waitFor(held, kCommitEvery, [this] { return hurry_; });
  }
}

int DataFile::create(Disk& disk, const std::filesystem::path& path, std::size_t recordLength) {
  auto outcome = disk.createNew(path);
  if (!outcome.file) return outcome.error;
  disk_ = &disk;
  path_ = path;
  record_length_ = recordLength;
  open_ = true;
  file_ = std::move(outcome.file);
  sync_ = std::make_unique<SyncThread>();
  sync_->watch(file_->duplicate());
  synced_ = written_ = 0;
  tail_.clear();
  problem_.clear();
  return 0;
}

void DataFile::append(std::string_view records) {
  if (!open_) return;
  tail_ += records;
  writeWaiting();
}

void DataFile::service() {
  if (!open_) return;
  takeProgress();
  writeWaiting();
}

std::size_t DataFile::waitingRecords() const {
  return static_cast<std::size_t>(synced_ + tail_.size() - written_) / record_length_;
}

void DataFile::writeWaiting() {
  if (!file_) {
    if (const int error = openAtEnd(); error != 0) return fail(error);
  }
  const auto end = synced_ + tail_.size();
  while (written_ < end) {
    const std::string_view record(tail_.data() + (written_ - synced_), record_length_);
    const auto outcome = file_->writeAt(written_, record);
    if (outcome.written < record.size()) {
      // Should cutting back fail too, the next try writes over the torn record.
      if (outcome.written > 0) file_->truncate(written_);
      return fail(outcome.error != 0 ? outcome.error : ENOSPC);
    }
    written_ += record.size();
    sync_->written(written_, false);
  }
  // After a failed commit the file is only sound again once a commit went well.
  if (sync_->progress().error == 0) problem_.clear();
}

void DataFile::takeProgress() {
  const auto progress = sync_->progress();
  if (progress.syncedTo > synced_ && progress.syncedTo <= synced_ + tail_.size()) {
    tail_.erase(0, static_cast<std::size_t>(progress.syncedTo - synced_));
    synced_ = progress.syncedTo;
  }
  if (progress.failed) rewriteUncommitted(progress.error);
}

// The system may have dropped what it could not commit.
void DataFile::rewriteUncommitted(int error) {
  written_ = synced_;
  sync_->rewriteFrom(synced_);
  fail(error != 0 ? error : EIO);
}

void DataFile::fail(int error) { problem_ = diskErrorText(error); }

int DataFile::openAtEnd() {
  auto outcome = disk_->openExisting(path_);
  if (!outcome.file) return outcome.error;
  // Another card in the slot, or a file cut meanwhile: a gap of zeros would be worse than an error.
  if (outcome.file->size() < written_) return ENODEV;
  file_ = std::move(outcome.file);
  if (file_->size() > written_) file_->truncate(written_);
  sync_->watch(file_->duplicate());
  return 0;
}

void DataFile::closeAndReopen() {
  if (!open_) return;
  takeProgress();
  sync_->written(written_, true);
  if (file_) {
    const int error = file_->close();
    file_.reset();
    if (error != 0) rewriteUncommitted(error);
  }
  writeWaiting();
}

std::optional<DataFile::Unwritten> DataFile::finish() {
  if (!open_) return std::nullopt;
  service();
  int error = sync_->finish();
  takeProgress();
  if (error != 0 || waitingRecords() > 0) {  // one more try, for a medium that failed a commit
    writeWaiting();
    error = file_ ? file_->sync() : EIO;
  }
  if (file_) {
    const int closeError = file_->close();
    if (error == 0) error = closeError;
  }
  const bool complete = written_ == synced_ + tail_.size() && error == 0;
  std::optional<Unwritten> rest;
  if (!complete) {
    const auto from = error != 0 ? 0 : written_ - synced_;
    if (error != 0) fail(error);
    rest = Unwritten{.records = tail_.substr(static_cast<std::size_t>(from)), .cause = problem_};
  }
  open_ = false;
  file_.reset();
  sync_.reset();
  tail_.clear();
  return rest;
}

}  // namespace kalmira
