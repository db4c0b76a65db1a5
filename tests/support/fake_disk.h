#pragma once

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "datafile/disk.h"

namespace kalmira {

// Disks in memory that can be full, fail to commit, lose files, be taken out, or fail at any one call.
struct FakeDiskState {
  struct Node {
    std::string content;
    std::uint64_t inode = 0;
    std::uint64_t links = 1;
  };
  std::recursive_mutex mutex;
  std::map<std::filesystem::path, std::shared_ptr<Node>> files;
  std::shared_ptr<Node> latest;  // created last
  std::uint64_t created = 0;
  std::size_t room = 1 << 30;     // bytes a file may grow to
  std::filesystem::path outside;  // below it nothing can be reached: the card is out
  int writes = 0;
  std::atomic<int> failingSyncs{0};  // so many commits to come fail
  std::atomic<int> syncs{0};
  // Of the calls that are counted, the one to fail, from 1 on, and how.
  int calls = 0;
  int callToFail = 0;
  bool failsForGood = false;
  int error = EIO;

  bool failsNow() {
    ++calls;
    return callToFail > 0 && (failsForGood ? calls >= callToFail : calls == callToFail);
  }
};

class FakeDiskFile final : public DiskFile {
 public:
  FakeDiskFile(FakeDiskState& state, std::filesystem::path path, std::shared_ptr<FakeDiskState::Node> node)
      : state_(state), path_(std::move(path)), node_(std::move(node)) {}

  WriteOutcome writeAt(std::uint64_t offset, std::string_view bytes) override {
    const std::lock_guard lock(state_.mutex);
    ++state_.writes;
    if (state_.failsNow()) return {.written = 0, .error = state_.error};
    const auto at = static_cast<std::size_t>(offset);
    const std::size_t fits = at >= state_.room ? 0 : std::min(bytes.size(), state_.room - at);
    if (fits == 0) return {.written = 0, .error = ENOSPC};
    node_->content.resize(std::max(node_->content.size(), at + fits));
    node_->content.replace(at, fits, bytes.substr(0, fits));
    return {.written = fits, .error = 0};
  }
  std::string readAt(std::uint64_t offset, std::size_t size) override {
    const std::lock_guard lock(state_.mutex);
    if (isOut() || state_.failsNow() || offset > node_->content.size()) return {};
    return node_->content.substr(static_cast<std::size_t>(offset), size);
  }
  int truncate(std::uint64_t size) override {
    const std::lock_guard lock(state_.mutex);
    if (state_.failsNow()) return state_.error;
    return node_->content.resize(static_cast<std::size_t>(size)), 0;
  }
  int sync() override {
    ++state_.syncs;
    const std::lock_guard lock(state_.mutex);
    if (isOut()) return EIO;
    if (state_.failsNow()) return state_.error;
    if (state_.failingSyncs == 0) return 0;
    --state_.failingSyncs;
    // As a system does that could not write back its pages: it drops them.
    return node_->content.assign(node_->content.size(), '\0'), EIO;
  }
  int close() override {
    const std::lock_guard lock(state_.mutex);
    return state_.failsNow() ? state_.error : 0;
  }
  std::optional<FileStatus> status() override {
    const std::lock_guard lock(state_.mutex);
    if (isOut() || state_.failsNow()) return std::nullopt;
    return statusOf(*node_);
  }
  std::unique_ptr<DiskFile> duplicate() override {
    const std::lock_guard lock(state_.mutex);
    return state_.failsNow() ? nullptr : std::make_unique<FakeDiskFile>(state_, path_, node_);
  }

  static FileStatus statusOf(const FakeDiskState::Node& node) {
    return {.device = 1, .inode = node.inode, .links = node.links, .size = node.content.size()};
  }

 private:
  bool isOut() const { return !state_.outside.empty() && path_.string().starts_with(state_.outside.string()); }

  FakeDiskState& state_;
  std::filesystem::path path_;
  std::shared_ptr<FakeDiskState::Node> node_;
};

struct FakeDisk final : Disk {
  FakeDiskState state;
  std::optional<std::uint64_t> freeBytesLeft;  // what it says

  OpenOutcome createNew(const std::filesystem::path& path) override {
    const std::lock_guard lock(state.mutex);
    if (isOut(path)) return {.file = nullptr, .error = ENOENT};
    if (state.failsNow()) return {.file = nullptr, .error = state.error};
    if (state.files.contains(path)) return {.file = nullptr, .error = EEXIST};
    put(path, "");
    return {.file = std::make_unique<FakeDiskFile>(state, path, state.latest), .error = 0};
  }
  OpenOutcome openExisting(const std::filesystem::path& path) override {
    const std::lock_guard lock(state.mutex);
    if (state.failsNow()) return {.file = nullptr, .error = state.error};
    const auto found = state.files.find(path);
    if (isOut(path) || found == state.files.end()) return {.file = nullptr, .error = ENOENT};
    return {.file = std::make_unique<FakeDiskFile>(state, path, found->second), .error = 0};
  }
  std::optional<FileStatus> status(const std::filesystem::path& path) override {
    const std::lock_guard lock(state.mutex);
    if (isOut(path) || state.failsNow()) return std::nullopt;
    const auto found = state.files.find(path);
    return found == state.files.end() ? std::nullopt : std::optional(FakeDiskFile::statusOf(*found->second));
  }

  std::optional<std::uint64_t> freeBytes(const std::filesystem::path&) override { return freeBytesLeft; }

  // Somebody else's doings.
  void put(const std::filesystem::path& path, std::string content) {
    const std::lock_guard lock(state.mutex);
    state.latest = state.files[path] =
        std::make_shared<FakeDiskState::Node>(FakeDiskState::Node{std::move(content), ++state.created, 1});
  }
  void remove(const std::filesystem::path& path) {
    const std::lock_guard lock(state.mutex);
    state.files.at(path)->links = 0;
    state.files.erase(path);
  }
  std::string content(const std::filesystem::path& path) {
    const std::lock_guard lock(state.mutex);
    return state.files.at(path)->content;
  }
  std::string content() {  // of the file created last
    const std::lock_guard lock(state.mutex);
    return state.latest ? state.latest->content : std::string{};
  }
  void setContent(std::string content) {
    const std::lock_guard lock(state.mutex);
    state.latest->content = std::move(content);
  }
  void setRoom(std::size_t room) {
    const std::lock_guard lock(state.mutex);
    state.room = room;
  }

 private:
  bool isOut(const std::filesystem::path& path) const {
    return !state.outside.empty() && path.string().starts_with(state.outside.string());
  }
};

}  // namespace kalmira
