#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

namespace kalmira {

// Writes a small file on a thread of its own: committing a file can take a second on a slow card, and a session goes on
// meanwhile. Only the latest content matters; each is written whole or not at all, and its folder made where it is
// missing. Members are called on one thread and return at once, but for finish.
class FileWriter {
 public:
  explicit FileWriter(const char* threadName);  // at most 15 characters, which stay
  ~FileWriter() { finish(); }
  FileWriter(const FileWriter&) = delete;
  FileWriter& operator=(const FileWriter&) = delete;

  void write(std::filesystem::path path, std::string content);
  // Waits until the last content is written, and ends the thread. It can be written anew.
  void finish();
  // The same. False when that takes longer: the thread is then left to itself, and nothing can be written any more.
  bool finishWithin(std::chrono::milliseconds time);
  // Why a content could not be written, once; empty when there is nothing to tell.
  std::string takeProblem();

 private:
  struct State;
  std::shared_ptr<State> state_;  // the thread's, too
};

}  // namespace kalmira
