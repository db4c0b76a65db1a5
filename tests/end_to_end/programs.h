#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "support/pty.h"
#include "support/temp_folder.h"

// The programs themselves, run and spoken to by tests. Every wait ends as soon as what is waited for has
// happened and gives up after kPatienceMs, long enough for a sanitized build on a loaded machine.
namespace kalmira {

inline constexpr int kPatienceMs = 40000;

// A running program with its three streams. Killed when it is still running at the end.
class Program {
 public:
  explicit Program(std::vector<std::string> command);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  void say(std::string_view line);
  void closeInput();
  void signal(int number) const;
  // The next line of output that begins with `start`, behind the line found before; empty when none came.
  // `onWait` is called about every 50 ms until then.
  std::string nextLine(std::string_view start, const std::function<void()>& onWait = {});
  // Waits until `text` stands anywhere in the output.
  bool printed(std::string_view text);
  // The exit status, 128 and more for a signal; -1 when the program does not end.
  int end();

  const std::string& output() const { return output_; }
  const std::string& errors() const { return errors_; }
  pid_t process() const { return process_; }

 private:
  bool gather(int milliseconds);

  pid_t process_ = -1;
  int status_ = 0;
  bool ended_ = false;
  int input_ = -1, output_fd_ = -1, errors_fd_ = -1;
  std::string output_, errors_;
  std::size_t read_ = 0;  // of output_
};

// kalmira-log, with ticks from its own start: a test machine may have been up for weeks.
class Logger : public Program {
 public:
  Logger(std::string_view kind, const std::string& device, const std::filesystem::path& root,
         const std::vector<std::string>& more = {});

  // Waits for the data file.
  std::filesystem::path file(const std::function<void()>& onWait = {});
  // "ok", or "error ..."
  std::string answer(std::string_view command);
  // Waits until the status says at least so many "readings", "gps", "events" ...
  bool counted(std::string_view what, int number, const std::function<void()>& onWait = {});
};

// A program run to its end.
struct Outcome {
  int status;
  std::string output;
  std::string errors;
};
Outcome run(std::vector<std::string> command);

// An instrument on a pseudo-terminal that takes bytes as they are, before a program has opened it as well.
class Device : public Pty {
 public:
  Device();
  // Sends `record` until the logger's panel shows `text`: from then on it reads, and nothing is left unread.
  void wakeUp(Logger& logger, std::string_view record, std::string_view text) const;
};

// A data file whose times and ticks are wiped: digits of dates and times are 0, ticks the word "tick".
std::string wiped(const std::string& content, std::size_t recordLength);

// A record's text with a wiped tick at its end.
std::string withTick(std::size_t recordLength, std::string_view text);

// How many records of `content` begin with one of `tags`, header 1 left out.
int countRecords(const std::string& content, std::size_t recordLength, std::string_view tags);

}  // namespace kalmira
