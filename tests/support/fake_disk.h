#pragma once

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "datafile/disk.h"

namespace kalmira {

// A disk in memory that can be full, fail to commit, or be taken out. Holds one file.
struct FakeDiskState {
  std::mutex mutex;
  std::string content;
  std::size_t room = 1 << 30;  // bytes the file may grow to
  bool exists = false;
  bool cardOut = false;  // nothing can be opened
  int writes = 0;
  std::atomic<int> failingSyncs{0};  // so many commits to come fail
  std::atomic<int> syncs{0};
};

class FakeDiskFile final : public DiskFile {
 public:
  explicit FakeDiskFile(FakeDiskState& state) : state_(state) {}

  WriteOutcome writeAt(std::uint64_t offset, std::string_view bytes) override {
    const std::lock_guard lock(state_.mutex);
    ++state_.writes;
    const auto at = static_cast<std::size_t>(offset);
    const std::size_t fits = at >= state_.room ? 0 : std::min(bytes.size(), state_.room - at);
    if (fits == 0) return {.written = 0, .error = ENOSPC};
    state_.content.resize(std::max(state_.content.size(), at + fits));
    state_.content.replace(at, fits, bytes.substr(0, fits));
    return {.written = fits, .error = 0};
  }
  int truncate(std::uint64_t size) override {
    const std::lock_guard lock(state_.mutex);
    return state_.content.resize(static_cast<std::size_t>(size)), 0;
  }
  int sync() override {
    ++state_.syncs;
    if (state_.failingSyncs == 0) return 0;
    --state_.failingSyncs;
    // As a system does that could not write back its pages: it drops them.
    const std::lock_guard lock(state_.mutex);
    return state_.content.assign(state_.content.size(), '\0'), EIO;
  }
  int close() override { return 0; }
  std::uint64_t size() override {
    const std::lock_guard lock(state_.mutex);
    return state_.content.size();
  }
  std::unique_ptr<DiskFile> duplicate() override { return std::make_unique<FakeDiskFile>(state_); }

 private:
  FakeDiskState& state_;
};

struct FakeDisk final : Disk {
  FakeDiskState state;

  OpenOutcome createNew(const std::filesystem::path& path) override {
    if (std::exchange(state.exists, true)) return {.file = nullptr, .error = EEXIST};
    return openExisting(path);
  }
  OpenOutcome openExisting(const std::filesystem::path&) override {
    if (state.cardOut) return {.file = nullptr, .error = ENOENT};
    return {.file = std::make_unique<FakeDiskFile>(state), .error = 0};
  }
  std::string content() {
    const std::lock_guard lock(state.mutex);
    return state.content;
  }
  void setRoom(std::size_t room) {
    const std::lock_guard lock(state.mutex);
    state.room = room;
  }
};

}  // namespace kalmira
