#pragma once

#include <filesystem>
#include <string>

#include "platform/worker.h"

namespace kalmira {

// Writes a settings file on a thread of its own: committing a file can take a second on a slow card, and a
// session goes on meanwhile. Only the latest text matters; each is written whole or not at all. Members are
// called on one thread and return at once, but for finish.
class SettingsWriter {
 public:
  explicit SettingsWriter(std::filesystem::path path) : path_(std::move(path)) {}
  ~SettingsWriter() { finish(); }
  SettingsWriter(const SettingsWriter&) = delete;
  SettingsWriter& operator=(const SettingsWriter&) = delete;

  void write(std::string text);
  // Waits until the last text is written, and ends the thread.
  void finish() { worker_.stop(); }
  // Why a text could not be written, once; empty when there is nothing to tell.
  std::string takeProblem();

 private:
  void run();

  std::filesystem::path path_;
  Worker worker_{"settings"};
  std::string text_;  // as the rest, under the worker's lock
  bool waiting_ = false;
  std::string problem_;
};

}  // namespace kalmira
