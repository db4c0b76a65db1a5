#pragma once

#include <array>
#include <functional>
#include <string>

#include "logging/session_view.h"

namespace kalmira {

// The session's face on a terminal: notices and, when wanted, every panel text, as lines.
class ConsoleView final : public SessionView {
 public:
  using Print = std::function<void(std::string line)>;

  // `showTexts`: print every panel text; `exitOnSilence`: the answer when the instrument stays silent is no.
  // Other questions are answered yes.
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
  void loggingLeft() override { left_ = true; }
  void fileMoved(const std::filesystem::path& path) override { print_("file " + path.string()); }

  // From now on messages are notices on the output; before, they are plain lines for `printBefore`.
  void setPrintBefore(Print printBefore) { print_before_ = std::move(printBefore); }
  void sessionRuns() { print_before_ = nullptr; }

  const std::string& text(PanelField field) const { return texts_[static_cast<std::size_t>(field)]; }
  bool left() const { return left_; }
  bool linkGivenUp() const { return link_given_up_; }

 private:
  void notice(std::string_view lines);

  Print print_;
  Print print_before_;
  bool show_texts_;
  bool exit_on_silence_;
  bool left_ = false;
  bool link_given_up_ = false;
  std::array<std::string, kPanelFields> texts_;
};

}  // namespace kalmira
