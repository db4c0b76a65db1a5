#include "settings/settings_writer.h"

#include <system_error>
#include <utility>

#include "platform/output_file.h"

namespace kalmira {

void SettingsWriter::finish() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_one();
  if (thread_.joinable()) thread_.join();
}

void SettingsWriter::write(std::string text) {
  {
    const std::lock_guard lock(mutex_);
    text_ = std::move(text);
    waiting_ = true;
    ending_ = false;
  }
  if (!thread_.joinable()) thread_ = std::thread(&SettingsWriter::run, this);
  changed_.notify_one();
}

std::string SettingsWriter::takeProblem() {
  const std::lock_guard lock(mutex_);
  return std::exchange(problem_, {});
}

void SettingsWriter::run() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return waiting_ || ending_; });
    if (!waiting_) return;
    waiting_ = false;
    const std::string text = std::move(text_);
    lock.unlock();
    std::error_code ignored;
    std::filesystem::create_directories(path_.parent_path(), ignored);
    const std::string problem = replaceFile(path_, text);
    lock.lock();
    if (!problem.empty()) problem_ = "Cannot write " + path_.string() + ": " + problem;
  }
}

}  // namespace kalmira
