#include "settings/settings_writer.h"

#include <system_error>
#include <utility>

#include "platform/output_file.h"
#include "platform/paths.h"

namespace kalmira {

void SettingsWriter::write(std::string text) {
  worker_.change([&] {
    text_ = std::move(text);
    waiting_ = true;
  });
  worker_.start([this] { run(); });
}

std::string SettingsWriter::takeProblem() {
  const auto held = worker_.lock();
  return std::exchange(problem_, {});
}

void SettingsWriter::run() {
  auto held = worker_.lock();
  while (worker_.wait(held, [this] { return waiting_; })) {
    waiting_ = false;
    const std::string text = std::move(text_);
    held.unlock();
    (void)makeFolders(path_.parent_path());
    const std::string problem = replaceFile(path_, text);
    held.lock();
    if (!problem.empty()) problem_ = "Cannot write " + path_.string() + ": " + problem;
  }
}

}  // namespace kalmira
