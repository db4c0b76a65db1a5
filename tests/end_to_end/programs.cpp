#include "end_to_end/programs.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <iterator>
#include <sstream>
#include <thread>

#include "datafile/record_text.h"
#include "platform/text.h"

namespace kalmira {
namespace {

using std::chrono::steady_clock;

constexpr int kStepMs = 50;

struct Deadline {
  bool passed() const { return steady_clock::now() >= end; }
  const steady_clock::time_point end = steady_clock::now() + std::chrono::milliseconds(kPatienceMs);
};

void zeroDigits(std::string& record, std::size_t from, std::size_t to) {
  for (std::size_t i = from; i < to && i < record.size(); ++i) {
    if (record[i] >= '0' && record[i] <= '9') record[i] = '0';
  }
}

// A number at the right of the last ten columns, of a program that has just been started.
void wipeTick(std::string& record) {
  const auto at = record.size() - 11;
  const auto text = record.substr(at, 10);
  const auto digits = text.find_first_not_of(' ');
  const bool number = digits != std::string::npos && text.find_first_not_of("0123456789", digits) == std::string::npos;
  if (number && parseInt(text) < 10 * kPatienceMs) record.replace(at, 10, "      tick");
}

void readAll(int from, std::string& into) {
  std::array<char, 4096> block{};
  for (auto count = ::read(from, block.data(), block.size()); count > 0;
       count = ::read(from, block.data(), block.size()))
    into.append(block.data(), static_cast<std::size_t>(count));
}

}  // namespace

Pipe::~Pipe() {
  if (descriptor >= 0) ::close(descriptor);
}

// Not by the toolkit: the emulator that runs the tests for Arm does not know how that one starts a program.
Program::Program(const std::string& program, const std::string& arguments) : input_(std::in_place) {
  std::istringstream words((KALMIRA_EMULATOR + (" " + program) + ' ') + arguments);
  std::vector<std::string> kept{std::istream_iterator<std::string>(words), {}};
  std::vector<char*> argv;
  for (auto& word : kept) argv.push_back(word.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  const std::array ours{&*input_, &outputs_[0], &outputs_[1]};
  std::array<Pipe, 3> theirs;
  for (int stream = 0; stream < 3; ++stream) {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    const auto at = static_cast<std::size_t>(stream);
    const std::size_t our = stream == 0 ? 1 : 0;
    ours[at]->descriptor = ends[our];
    theirs[at].descriptor = ends[1 - our];
    if (stream > 0) ::fcntl(ends[our], F_SETFL, O_NONBLOCK);
    ::posix_spawn_file_actions_adddup2(&actions, theirs[at].descriptor, stream);
  }
  ::signal(SIGPIPE, SIG_IGN);  // one that has ended is found by its status
  posix_spawnattr_t attributes;
  ::posix_spawnattr_init(&attributes);
  sigset_t usual;
  ::sigemptyset(&usual);
  ::sigaddset(&usual, SIGPIPE);
  ::posix_spawnattr_setsigdefault(&attributes, &usual);
  ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  EXPECT_EQ(::posix_spawn(&process_, argv[0], &actions, &attributes, argv.data(), environ), 0) << program;
  ::posix_spawnattr_destroy(&attributes);
  ::posix_spawn_file_actions_destroy(&actions);
}

Program::~Program() {
  if (process_ < 0) return;
  ::kill(process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
}

void Program::say(std::string_view line) {
  const auto text = std::string(line) + '\n';
  EXPECT_EQ(::write(input_->descriptor, text.data(), text.size()), static_cast<ssize_t>(text.size())) << line;
}

void Program::signal(int number) const { ASSERT_TRUE(process() > 0 && ::kill(process(), number) == 0); }

bool Program::gather() {
  std::array<pollfd, 2> waits{{{.fd = outputs_[0].descriptor, .events = POLLIN, .revents = 0},
                               {.fd = outputs_[1].descriptor, .events = POLLIN, .revents = 0}}};
  ::poll(waits.data(), waits.size(), kStepMs);
  int status = 0;
  if (process_ > 0 && ::waitpid(process_, &status, WNOHANG) == process_) {
    process_ = -1;
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  readAll(outputs_[0].descriptor, output_);
  readAll(outputs_[1].descriptor, errors_);
  return process_ > 0;
}

std::string Program::nextLine(std::string_view start, const std::function<void()>& onWait) {
  bool more = true;
  for (const Deadline deadline; !deadline.passed();) {
    for (auto end = output_.find('\n', read_); end != std::string::npos; end = output_.find('\n', read_)) {
      auto line = output_.substr(read_, end - read_);
      read_ = end + 1;
      if (line.starts_with(start)) return line;
    }
    if (!more) break;
    if (onWait) onWait();
    more = gather();
  }
  ADD_FAILURE() << "no line \"" << start << "\" in\n" << output_ << "and the messages\n" << errors_;
  return {};
}

int Program::end() {
  for (const Deadline deadline; gather() && !deadline.passed();) {
  }
  return status_;
}

Logger::Logger(const std::string& kind, const std::string& device, const std::filesystem::path& root,
               const std::string& more)
    : Program(KALMIRA_LOG,
              fmt::format("--kind {} --port {} --root {} --tick-base program {}", kind, device, root.string(), more)) {}

std::filesystem::path Logger::file(const std::function<void()>& onWait) {
  const auto line = nextLine("file ", onWait);
  return line.empty() ? line : line.substr(5);
}

std::string Logger::answer(std::string_view command) {
  say(command);
  for (;;) {
    auto line = nextLine("");
    if (line.empty() || line.starts_with("ok") || line.starts_with("error ")) return line;
  }
}

bool Logger::counted(std::string_view what, int number, const std::function<void()>& onWait) {
  const auto field = fmt::format(" {}=", what);
  for (const Deadline deadline; !deadline.passed();) {
    if (onWait) onWait();
    say("status");
    const auto line = nextLine("status ");
    nextLine("ok");
    const auto at = line.find(field);
    if (at == std::string::npos) break;
    if (parseInt(std::string_view(line).substr(at + field.size())) >= number) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  ADD_FAILURE() << what << " did not become " << number << " in\n" << output();
  return false;
}

void Logger::leave(int status) {
  EXPECT_EQ(answer("exit"), "ok");
  EXPECT_EQ(end(), status) << errors();
}

Outcome run(const std::string& program, const std::string& arguments) {
  Program running(program, arguments);
  running.closeInput();
  const int status = running.end();
  return {.status = status, .output = running.output(), .errors = running.errors()};
}

Device::Device() {
  termios settings{};
  EXPECT_EQ(tcgetattr(master(), &settings), 0);
  cfmakeraw(&settings);
  EXPECT_EQ(tcsetattr(master(), TCSANOW, &settings), 0);
}

// What comes before the reader has begun is thrown away: a second try is due then.
void Device::wakeUp(Logger& logger, std::string_view record, std::string_view text) const {
  auto last = steady_clock::time_point{};
  logger.nextLine(fmt::format("show {}", text), [&] {
    if (steady_clock::now() - last < std::chrono::seconds(5)) return;
    last = steady_clock::now();
    ASSERT_TRUE(send(record));
  });
}

Survey::Survey(const std::string& kind, const std::string& more, std::string_view record, std::string_view shown,
               std::string_view fileWaits)
    : logger(kind, instrument.name, folder.path(),
             "--show --set surveyMode=1 --set readingsInterval=60 " +
                 fmt::format(fmt::runtime(more), fmt::arg("gps", receiver.name))) {
  path = logger.file([&] { EXPECT_TRUE(send(fileWaits)); });
  EXPECT_FALSE(path.empty()) << logger.errors();
  if (!record.empty()) instrument.wakeUp(logger, record, shown);
}

std::string Survey::content() const {
  const auto bytes = readFile(path);
  return wiped(bytes, bytes.find('\n') + 1);
}

std::string wiped(const std::string& content, std::size_t recordLength) {
  std::string out;
  for (std::size_t at = 0; at < content.size(); at += recordLength) {
    auto record = content.substr(at, recordLength);
    if (at > 0 && record.size() == recordLength) {
      if (std::string_view("Tt23456CX!*").find(record[0]) != std::string_view::npos) wipeTick(record);
      if (record[0] == '*') zeroDigits(record, 1, 13);
      if (record[0] == 'Z') zeroDigits(record, 1, 18);
      if (record[0] == 'S') zeroDigits(record, 13, 21);
    }
    out += record;
  }
  return out;
}

std::string withTick(std::size_t recordLength, std::string_view text) {
  return textField(text, recordLength - 11) + "      tick";
}

std::string bytesOf(const WrittenSurvey& survey) {
  std::string bytes;
  const auto add = [&](const std::string& text) { bytes += records(survey.length, {text}); };
  const auto tick = [&](std::string_view text) { add(withTick(survey.length, text)); };
  const auto line = [&](const char* name, const char* start, const char* direction) {
    for (const auto* text : {name, start, direction, "Z00000000 00:00:00"}) add(text);
    bytes += survey.calibration;
    tick("*00:00:00.000");
  };
  add(survey.header);
  add("H E2E        1.000");
  line("L1", "B       0.00", "AN            1.000");
  tick("X$STARTED");
  for (const auto& text : survey.firstPiece) add(text);
  tick("X$PAUSED");
  line("L7/a", "B     100.00", "AE           -2.500");
  tick(survey.comment);
  add("S      42.50 00000000");
  tick("*00:00:00.000");
  for (const auto& text : {std::string("X$STARTED"), survey.lastReading, std::string("X$PAUSED")}) tick(text);
  return bytes;
}

int countRecords(const std::string& content, std::size_t recordLength, std::string_view tags) {
  int count = 0;
  for (auto at = recordLength; at + recordLength <= content.size(); at += recordLength) {
    if (tags.find(content[at]) != std::string_view::npos) ++count;
  }
  return count;
}

}  // namespace kalmira
