#include "console/console_view.h"

#include <fmt/format.h>

namespace kalmira {

void ConsoleView::notice(std::string_view lines) {
  while (!lines.empty()) {
    const auto end = lines.find("\r\n");
    const auto line = lines.substr(0, end);
    if (!line.empty()) {
      if (print_before_) {
        print_before_(std::string(line));
      } else {
        print_(fmt::format("notice {}", line));
      }
    }
    lines.remove_prefix(end == std::string_view::npos ? lines.size() : end + 2);
  }
}

void ConsoleView::show(PanelField field, std::string_view text) {
  if (field == PanelField::message) notice(text);
  texts_[static_cast<std::size_t>(field)] = text;
  if (show_texts_) print_(fmt::format("show {} {}", panelFieldName(field), text));
}

bool ConsoleView::ask(Question question, const Message& message) {
  const bool yes = question != Question::linkLost || !exit_on_silence_;
  if (question == Question::exitLogging) return yes;  // whoever said exit has meant it
  notice(message.title);
  notice(message.text);
  notice(yes ? "answered YES" : "answered NO");
  if (question == Question::linkLost && !yes) link_given_up_ = true;
  return yes;
}

void ConsoleView::tell(const Message& message) { notice(message.text); }

}  // namespace kalmira
