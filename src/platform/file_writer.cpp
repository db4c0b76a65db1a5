#include "platform/file_writer.h"

#include <utility>

#include "platform/files.h"
#include "platform/worker.h"

namespace kalmira {

struct FileWriter::State {
  explicit State(const char* threadName) : worker(threadName) {}
  void run();

  Worker worker;
  std::filesystem::path path;  // as the rest, under the worker's lock
  std::string content;
  bool waiting = false;
  std::string problem;
};

void FileWriter::State::run() {
  auto held = worker.lock();
  while (worker.wait(held, [this] { return waiting; })) {
    waiting = false;
    const auto to = path;
    const auto what = std::move(content);
    held.unlock();
    (void)makeFolders(to.parent_path());  // a folder that cannot be made shows when the file cannot be written
    const auto why = replaceFile(to, what);
    held.lock();
    if (!why.empty()) problem = "Cannot write " + to.string() + ": " + why;
  }
}

FileWriter::FileWriter(const char* threadName) : state_(std::make_shared<State>(threadName)) {}

void FileWriter::write(std::filesystem::path path, std::string content) {
  state_->worker.change([&] {
    state_->path = std::move(path);
    state_->content = std::move(content);
    state_->waiting = true;
  });
  state_->worker.start([state = state_] { state->run(); });
}

void FileWriter::finish() { state_->worker.stop(); }

bool FileWriter::finishWithin(std::chrono::milliseconds time) { return state_->worker.stopWithin(time); }

std::string FileWriter::takeProblem() {
  const auto held = state_->worker.lock();
  return std::exchange(state_->problem, {});
}

}  // namespace kalmira
