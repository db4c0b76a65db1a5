#pragma once

#include <array>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "logging/session_view.h"
#include "platform/worker.h"

namespace kalmira {

// The session's face on a terminal: notices and, when wanted, every panel text, as lines.
class ConsoleView final : public SessionView {
 public:
  using Print = std::function<void(std::string line)>;

  // `showTexts`: print every panel text; `exitOnSilence`: the answer when the instrument stays silent is no. Other
  // questions are answered yes.
  ConsoleView(Print print, bool showTexts, bool exitOnSilence)
      : print_(std::move(print)), show_texts_(showTexts), exit_on_silence_(exitOnSilence) {}

  void show(PanelField field, std::string_view text) override;
  void beep(Beep) override {}
  bool ask(Question question, const Message& message) override;
  void tell(const Message& message) override;
  void addProfilePoint(const ProfilePoint&) override {}
  void redrawProfile() override {}
  void clearProfile() override {}
  void loggingStateChanged() override {}
  void closeDialogs() override {}
  void loggingLeft() override {}
  void fileMoved(const std::filesystem::path& path) override { print_("file " + path.string()); }

  // From now on messages are notices on the output; before, they are plain lines for `printBefore`.
  void setPrintBefore(Print printBefore) { print_before_ = std::move(printBefore); }
  void sessionRuns() { print_before_ = nullptr; }
  // For whoever reads all of it much later: a silent instrument's waits and questions are told once a silence.
  void tellSilencesOnce() { silences_once_ = true; }
  void silenceIsOver() { told_of_silence_.clear(); }

  const std::string& text(PanelField field) const { return texts_[static_cast<std::size_t>(field)]; }
  bool linkGivenUp() const { return link_given_up_; }

 private:
  void notice(std::string_view lines);
  // Whether something about a silence is to be told; it then counts as told.
  bool isNewOfSilence(std::string_view text);

  Print print_;
  Print print_before_;
  bool show_texts_;
  bool exit_on_silence_;
  bool link_given_up_ = false;
  bool silences_once_ = false;
  std::vector<std::string> told_of_silence_;
  std::array<std::string, kPanelFields> texts_;
};

// Prints lines from a thread of its own, so that a reader of our output that stands still (a stopped pager, a full
// pipe) holds up no reading. Members may be called from any thread and return at once, but for finish.
class OutputThread {
 public:
  OutputThread(int outputFd, int statusFd);
  ~OutputThread() { finish(); }

  // One line on the output; a line end is added. When far too many wait, panel texts are left out.
  void line(std::string text);
  // Replaces the line kept at the bottom of the terminal behind statusFd.
  void status(std::string text);
  // Waits until everything is printed, at most two seconds, and ends the thread. False when it cannot end, for the
  // terminal stands still: the program must then be left without destroying this object.
  bool finish();

 private:
  struct Item {
    bool status = false;
    std::string text;
  };
  void run();
  bool print(const Item& item);

  int output_fd_;
  int status_fd_;
  Worker worker_{"output"};
  std::deque<Item> queue_;  // as the rest, but for status_shown_, under the worker's lock
  std::size_t dropped_ = 0;
  bool idle_ = false;
  bool status_shown_ = false;
};

}  // namespace kalmira
