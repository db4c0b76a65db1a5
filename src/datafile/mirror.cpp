#include "datafile/mirror.h"

#include <fmt/format.h>

#include <chrono>
#include <system_error>
#include <utility>

#include "datafile/creation.h"
#include "datafile/data_file.h"
#include "platform/worker.h"

namespace kalmira {
namespace {

using Moment = std::chrono::steady_clock::time_point;
constexpr auto kServicePeriod = std::chrono::milliseconds(400);
constexpr auto kRetryPeriod = std::chrono::seconds(1);
constexpr std::size_t kLargestQueue = 64 << 20;
constexpr auto kLongestEnd = std::chrono::seconds(2);

bool sameFolder(const std::filesystem::path& a, const std::filesystem::path& b) {
  std::error_code error;
  return std::filesystem::equivalent(a, b, error) && !error;
}

}  // namespace

struct Mirror::State {
  Worker worker{"mirror"};
  // Under the worker's lock.
  std::string queue;
  std::vector<News> news;
  std::string shortfall;
  std::shared_ptr<DiskFile> original;
  std::shared_ptr<DiskFile> copy;

  std::size_t dropped = 0;  // bytes for which there was no room while the medium stood still

  // The thread's own.
  Disk* disk = nullptr;
  std::filesystem::path folder;
  std::filesystem::path originalPath;
  std::string name;
  DataFile file;
  Moment nextTry{};
  bool awayTold = false;
  bool everThere = false;
  bool useless = false;  // the folder is the survey's own
  std::string problemTold;
  std::uint64_t missing = 0;

  void run();
  void say(bool bad, std::string text);
  void keepUp();
  void findPlace();
  void settled(const std::filesystem::path& path, std::uint64_t bytesMissing);
  std::string ending();
};

void Mirror::State::say(bool bad, std::string text) {
  worker.change([&] { news.push_back({.bad = bad, .text = std::move(text)}); });
}

void Mirror::State::run() {
  auto held = worker.lock();
  while (!worker.stopping()) {
    worker.waitFor(held, kServicePeriod, [this] { return !queue.empty(); });
    const auto records = std::exchange(queue, {});
    held.unlock();
    file.append(records);
    keepUp();
    held.lock();
  }
  const auto records = std::exchange(queue, {});
  held.unlock();
  file.append(records);
  keepUp();
  auto why = ending();
  held.lock();
  shortfall = std::move(why);
}

void Mirror::State::keepUp() {
  if (useless) return;
  using Condition = DataFile::Condition;
  if (file.hasFile()) {
    file.service();
    if (file.condition() == Condition::sound || file.condition() == Condition::lengthened) {
      if (file.problem() == problemTold) return;
      problemTold = file.problem();
      say(!problemTold.empty(), problemTold.empty()
                                    ? fmt::format("The second copy in {} is whole again.", folder.string())
                                    : fmt::format("The second copy in {} waits: {}", folder.string(), problemTold));
      return;
    }
  }
  findPlace();
}

void Mirror::State::findPlace() {
  const auto now = std::chrono::steady_clock::now();
  if (now < nextTry) return;
  nextTry = now + kRetryPeriod;
  std::error_code error;
  if (std::filesystem::is_directory(folder, error)) {
    if (sameFolder(folder, originalPath.parent_path())) {
      useless = true;
      return say(true, fmt::format("{} is the data folder itself: no second copy is made.", folder.string()));
    }
    for (int number = 1; number < kNamesToTry; ++number) {
      const auto path = folder / numberedName(name, number);
      const auto outcome = file.continueIn(path);
      if (outcome.error == 0) return settled(path, outcome.missing);
      if (outcome.error != EEXIST) {
        error = std::error_code(outcome.error, std::generic_category());
        break;
      }
    }
  }
  if (std::exchange(awayTold, true)) return;
  const auto why = error ? error.message() : std::string("the folder is not there");
  say(true, everThere ? fmt::format("The second copy in {} is gone ({}).\r\nIt is filled up when it comes back.",
                                    folder.string(), why)
                      : fmt::format("No second copy in {} ({}).\r\nIt is made when there is a place for it.",
                                    folder.string(), why));
}

void Mirror::State::settled(const std::filesystem::path& path, std::uint64_t bytesMissing) {
  missing += bytesMissing;
  std::shared_ptr<DiskFile> handle = file.readingHandle();
  worker.change([&] { copy = std::move(handle); });
  if (awayTold || everThere) {
    say(false, fmt::format("The second copy is back: {}", path.string()));
  } else if (path.filename() != name) {
    say(false, fmt::format("The second copy is called {}, for {} exists there.", path.string(), name));
  } else {
    say(false, fmt::format("second copy {}", path.string()));
  }
  const auto mine = disk->status(path);
  const auto first = disk->status(originalPath);
  if (!everThere && mine && first && mine->device == first->device) {
    say(true, "The second copy is on the same medium as the first: losing it loses both.");
  }
  everThere = true;
  awayTold = false;
}

// Ends the file; empty, or what it lacks.
std::string Mirror::State::ending() {
  if (useless) return fmt::format("{} is the data folder itself: there is no second copy.", folder.string());
  const auto length = file.recordLength();
  const auto lost = (missing + dropped) / length + file.lostRecords();
  const bool placed = file.hasFile();
  const auto rest = file.finish();
  if (!placed) return fmt::format("There is no second copy in {}.", folder.string());
  if (rest) {
    return fmt::format("The second copy in {} lacks the last {} records: {}", folder.string(),
                       rest->records.size() / length, rest->cause.empty() ? "it is gone" : rest->cause);
  }
  return lost == 0 ? std::string{} : fmt::format("The second copy in {} lacks {} records.", folder.string(), lost);
}

Mirror::Mirror() = default;

Mirror::~Mirror() { (void)finish(); }

void Mirror::begin(Disk& disk, const std::filesystem::path& folder, const std::filesystem::path& original,
                   std::size_t recordLength, std::string_view soFar) {
  (void)finish();
  state_ = std::make_shared<State>();
  auto& state = *state_;
  state.disk = &disk;
  state.folder = folder;
  state.originalPath = original;
  state.name = original.filename().string();
  state.file.begin(disk, recordLength);
  state.file.setOtherCopy([&state](std::uint64_t offset, std::size_t size) {
    std::shared_ptr<DiskFile> source;
    state.worker.change([&] { source = state.original; });
    return source ? source->readAt(offset, size) : std::string{};
  });
  state.queue = soFar;
  // The thread keeps what it works on, should it have to be left behind.
  state.worker.start([kept = state_] { kept->run(); });
}

void Mirror::append(std::string_view records) {
  if (!state_) return;
  state_->worker.change([&] {
    if (state_->queue.size() > kLargestQueue) {
      state_->dropped += records.size();
    } else {
      state_->queue += records;
    }
  });
}

void Mirror::setOriginal(std::unique_ptr<DiskFile> original) {
  if (!state_) return;
  std::shared_ptr<DiskFile> shared = std::move(original);
  state_->worker.change([&] { state_->original = std::move(shared); });
}

std::string Mirror::readAt(std::uint64_t offset, std::size_t size) {
  if (!state_) return {};
  std::shared_ptr<DiskFile> source;
  state_->worker.change([&] { source = state_->copy; });
  return source ? source->readAt(offset, size) : std::string{};
}

std::vector<Mirror::News> Mirror::takeNews() {
  std::vector<News> taken;
  if (state_) {
    const auto held = state_->worker.lock();
    taken.swap(state_->news);
  }
  return taken;
}

std::string Mirror::finish() {
  if (!state_) return {};
  const auto state = std::exchange(state_, nullptr);
  if (!state->worker.stopWithin(kLongestEnd)) {
    return fmt::format("The second copy in {} does not answer: it may lack the last records.", state->folder.string());
  }
  return state->shortfall;
}

}  // namespace kalmira
