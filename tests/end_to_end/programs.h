#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <array>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/pty.h"
#include "support/temp_folder.h"

// The programs themselves, run and spoken to by tests. Every wait gives up after kPatienceMs.
namespace kalmira {

inline constexpr int kPatienceMs = 40000;

// This end of a pipe to a program.
struct Pipe {
  Pipe() = default;
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe();
  int descriptor = -1;
};

// A running program with its three streams. Killed when it is still running at the end.
class Program {
 public:
  // `arguments` have blanks between them.
  explicit Program(const std::string& program, const std::string& arguments = "");
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  void say(std::string_view line);
  void closeInput() { input_.reset(); }
  void signal(int number) const;
  // The next line of output that begins so; empty when none came. `onWait` is called again and again until then.
  std::string nextLine(std::string_view start, const std::function<void()>& onWait = {});
  // The exit status, 128 and more for a signal; -1 when the program does not end.
  int end();

  const std::string& output() const { return output_; }
  const std::string& errors() const { return errors_; }
  pid_t process() const { return process_; }

 private:
  // What comes within a moment. False: it has ended, and all it said has been read.
  bool gather();

  pid_t process_ = -1;         // -1 once it has ended
  int status_ = -1;            // as end gives it
  std::optional<Pipe> input_;  // of the program
  std::array<Pipe, 2> outputs_;
  std::string output_, errors_;
  std::size_t read_ = 0;  // of output_
};

// kalmira-log, with ticks from its own start: a test machine may have been up for weeks.
class Logger : public Program {
 public:
  Logger(const std::string& kind, const std::string& device, const std::filesystem::path& root,
         const std::string& more = "");

  // Waits for the data file.
  std::filesystem::path file(const std::function<void()>& onWait = {});
  // "ok", or "error ..."
  std::string answer(std::string_view command);
  // Waits until the status says at least so many "readings", "gps", "events" ...
  bool counted(std::string_view what, int number, const std::function<void()>& onWait = {});
  // Leaves by the command, and expects a good end.
  void leave(int status = 0);
};

// A program run to its end.
struct Outcome {
  int status;
  std::string output, errors;
};
Outcome run(const std::string& program, const std::string& arguments = "");

// An instrument on a pseudo-terminal that takes bytes as they are, before a program has opened it as well.
struct Device : Pty {
  Device();
  // Sends `record` until the logger's panel shows `text`: from then on it reads, and nothing is left unread.
  void wakeUp(Logger& logger, std::string_view record, std::string_view text) const;
};

inline constexpr std::string_view kOrlaRecord = "T$+0400-0800\r";

// A survey by kalmira-log in Wheel mode up to where its file is open and the instrument is heard.
struct Survey {
  TempFolder folder;
  Device instrument, receiver;
  Logger logger;
  std::filesystem::path path;

  // {gps} in `more` is the receiver. `fileWaits` is sent until there is a file, then `record` until it is shown.
  explicit Survey(const std::string& kind = "ORLA", const std::string& more = "", std::string_view record = kOrlaRecord,
                  std::string_view shown = "value1 C:-10.00", std::string_view fileWaits = "");
  bool send(std::string_view record) const { return instrument.send(record); }
  // The file, wiped.
  std::string content() const;
};

// A data file whose times and ticks are wiped: digits of dates and times are 0, ticks the word "tick".
std::string wiped(const std::string& content, std::size_t recordLength);
// A record's text with a wiped tick at its end.
std::string withTick(std::size_t recordLength, std::string_view text);
// How many records of `content` begin with one of `tags`, header 1 left out.
int countRecords(const std::string& content, std::size_t recordLength, std::string_view tags);

// The file, wiped, of two pieces; between them the line 7/a from 100 by -2.5 east, a comment and station 42.5.
struct WrittenSurvey {
  std::string header;
  std::vector<std::string> firstPiece;  // records without line ends
  std::string lastReading;
  std::string comment = "CFence by th";
  std::size_t length = 24;
  std::string calibration{};  // of each line's block
};
std::string bytesOf(const WrittenSurvey& survey);

}  // namespace kalmira
