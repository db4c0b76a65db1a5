#include "platform/manual.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>
#include <sstream>

namespace kalmira {
namespace {

// Pages name the others.
constexpr std::array<std::string_view, 5> kPrograms{"kalmira", "kalmira-check", "kalmira-export", "kalmira-log",
                                                    "kalmira-sim"};
constexpr std::string_view kStatusNote = "Exit status: ";

bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isWordPart(char c) { return isUpper(c) || (c >= 'a' && c <= 'z') || isDigit(c) || c == '-' || c == '_'; }

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  std::istringstream stream{std::string(text)};
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string replaced(std::string_view text, char wanted, std::string_view by) {
  std::string out;
  for (const char c : text) c == wanted ? out += by : out += c;
  return out;
}

// Every "-" as it is typed, for options, paths and commands are copied from the page.
std::string roff(std::string_view text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '\\': out += "\\(rs"; break;
      case '-': out += "\\-"; break;
      case '"': out += "\\(dq"; break;
      case '\'': out += "\\(aq"; break;
      case '`': out += "\\(ga"; break;
      case '^': out += "\\(ha"; break;
      case '~': out += "\\(ti"; break;
      default: out += c;
    }
  }
  return out;
}

// Whole lines of text, none of which is taken for a request.
std::string roffLines(std::string_view text) {
  std::string out;
  for (const auto& line : linesOf(text)) out += (line.starts_with('.') ? "\\&" : "") + roff(line) + '\n';
  return out;
}

// Options in bold, what stands for something else (upper case) in italics, other words in the font `words`.
std::string styled(std::string_view text, char words) {
  std::string out;
  while (!text.empty()) {
    const auto end = std::ranges::find_if_not(text, isWordPart);
    const auto word = text.substr(0, std::max<std::size_t>(1, static_cast<std::size_t>(end - text.begin())));
    text.remove_prefix(word.size());
    if (!isWordPart(word.front())) {
      out += roff(word);
    } else {
      const char font = word.starts_with('-') ? 'B' : isUpper(word.front()) ? 'I' : words;
      out += fmt::format("\\f{}{}\\fR", font, roff(word));
    }
  }
  return out;
}

// "Logs one instrument. Then this." as the page's one line: "logs one instrument"
std::string shortSummary(std::string_view summary) {
  auto text = replaced(summary.substr(0, summary.find_first_of(".\n")), '\n', " ");
  if (!text.empty()) text.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(text.front())));
  return text;
}

std::string synopsis(const CommandLine& line) {
  // Not filled to the margin, and no word cut.
  std::string text = ".SH SYNOPSIS\n.nh\n.ad l\n";
  for (const auto usage : line.usages) {
    if (usage != line.usages.front()) text += ".br\n";
    text += fmt::format("\\fB{}\\fR {}\n", roff(line.program), styled(usage, 'I'));
  }
  return text + ".ad b\n.hy\n";
}

std::string optionSections(const CommandLine& line) {
  std::string text = ".SH OPTIONS\n";
  for (const auto& group : shownGroups(line)) {
    text += fmt::format(".SS {}\n", roff(group.heading));
    for (const auto& option : group.options) {
      const auto between = option.name.empty() || option.placeholder.empty() ? "" : " ";
      text += fmt::format(".TP\n{}{}{}\n{}", styled(option.name, 'B'), between, styled(option.placeholder, 'B'),
                          roffLines(shownText(option)));
    }
  }
  return text;
}

// Where a status with its meaning begins in "0 done, 1 a file gave nothing; 2 wrong usage": from `at` on.
std::size_t nextStatus(std::string_view text, std::size_t at) {
  while (++at + 1 < text.size()) {
    const bool parted = text[at - 1] == ' ' && (text[at - 2] == ',' || text[at - 2] == ';');
    if (parted && isDigit(text[at]) && text[at + 1] == ' ') return at;
  }
  return text.size();
}

std::string statusSection(std::string_view text) {
  std::string section;
  for (std::size_t at = 0; at + 2 < text.size();) {
    const auto end = nextStatus(text, at + 1);
    auto meaning = text.substr(at + 2, end - at - 2);
    meaning = meaning.substr(0, meaning.find_last_not_of(" ,;.") + 1);
    section += fmt::format(".TP\n.B {}\n{}", text[at], roffLines(meaning));
    at = end;
  }
  return section.empty() ? section : ".SH EXIT STATUS\n" + section;
}

// The notes: paragraphs and indented lists of a word and what it means. The exit status stands by itself.
std::string notesSections(std::string_view notes) {
  std::string status, text, gap;
  bool inStatus = false, inList = false;
  for (const auto& line : linesOf(notes)) {
    if (line.starts_with(kStatusNote)) inStatus = true;
    if (line.empty()) {
      inStatus = false;
      gap = ".PP\n";
    } else if (inStatus) {
      status += (status.empty() ? line.substr(kStatusNote.size()) : ' ' + line);
    } else if (line.starts_with(' ')) {
      std::istringstream words(line);
      std::string word, rest;
      std::getline(words >> word >> std::ws, rest);
      text += fmt::format(".TP\n.B {}\n{}", roff(word), roffLines(rest));
      inList = true;
      gap.clear();
    } else {
      if (inList) gap = ".PP\n";
      text += (text.empty() ? "" : gap) + roffLines(line);
      inList = false;
      gap.clear();
    }
  }
  return (text.empty() ? text : ".SH NOTES\n" + text) + statusSection(status);
}

std::string otherPrograms(std::string_view program) {
  std::string text;
  for (const auto other : kPrograms) {
    if (other != program) text += fmt::format("{}.BR {} (1)", text.empty() ? "" : ",\n", roff(other));
  }
  return ".SH SEE ALSO\n" + text + '\n';
}

// What a shell offers as a value.
enum class Offer { nothing, files, folders };

Offer offerOf(std::string_view placeholder) {
  const auto names = [&placeholder](std::string_view word) { return placeholder.starts_with(word); };
  if (names("DIR")) return Offer::folders;
  return names("FILE") || names("DEVICE") || names("OUT") || names("PATH") ? Offer::files : Offer::nothing;
}

// The part of "N=DEVICE" behind "=", else empty.
std::string_view behindEquals(std::string_view placeholder) {
  const auto equals = placeholder.find('=');
  return equals == std::string_view::npos ? std::string_view() : placeholder.substr(equals + 1);
}

std::string joined(const std::vector<std::string>& words, std::string_view between) {
  return fmt::format("{}", fmt::join(words, between));
}

// The names of all options, "-h" and "--help" each by itself.
std::vector<std::string> namesOf(const CommandOption& option) {
  std::istringstream stream(replaced(option.name, ',', " "));
  return {std::istream_iterator<std::string>(stream), {}};
}

// The arms of bash's case for options with values, and the options that are offered once and always.
struct BashParts {
  std::string choices;
  std::vector<std::string> files, folders, free, once, always;
};

void putOption(BashParts& parts, const CommandOption& option) {
  auto& offered = option.again == CommandOption::Again::allCount ? parts.always : parts.once;
  for (const auto& name : namesOf(option)) offered.push_back(name);
  if (option.placeholder.empty()) return;
  const std::string name(option.name);
  const auto put = [&parts](Offer offer, const std::string& pattern) {
    (offer == Offer::files ? parts.files : offer == Offer::folders ? parts.folders : parts.free).push_back(pattern);
  };
  if (option.choices.empty()) {
    put(offerOf(option.placeholder), name);
  } else {
    parts.choices += fmt::format("    {}) words='{}' ;;\n", name, joined(option.choices, " "));
  }
  // "--com 1=DEVICE": the script knows what is behind "=" by another "=".
  if (const auto second = behindEquals(option.placeholder); !second.empty()) put(offerOf(second), name + "=");
}

std::string caseArm(const std::vector<std::string>& patterns, std::string_view does) {
  return patterns.empty() ? "" : fmt::format("    {}) {} ;;\n", joined(patterns, "|"), does);
}

// The word that is completed and the option whose value it is. Bash cuts words at "=", unless it is told not to.
constexpr std::string_view kBashBegin = R"(  local word=${COMP_WORDS[COMP_CWORD]} option= prefix= words= name
  local -a before=("${COMP_WORDS[@]:0:COMP_CWORD}")
  COMPREPLY=()
  if [[ $word == = ]]; then
    before+=(=)
    word=
  fi
  local n=${#before[@]}
  if ((n > 2)) && [[ ${before[n-1]} == = ]]; then
    if [[ ${before[n-2]} == -* ]]; then
      option=${before[n-2]}
    elif [[ ${before[n-3]} == = ]]; then
      option=${before[n-4]}=
    else
      option=${before[n-3]}=
    fi
  elif [[ $word == --*=* ]]; then
    option=${word%%=*}
    prefix=$option=
    word=${word#*=}
  elif ((n > 1)); then
    option=${before[n-1]}
  fi
)";
constexpr std::string_view kBashOperandsOnly = R"(  for name in "${before[@]:1}"; do
    if [[ $name == -- ]]; then option=--; fi
  done
)";
constexpr std::string_view kBashEnd = R"(        [[ " ${before[*]} " == *" $name "* ]] || words+=" $name"
      done ;;
  esac
  mapfile -t COMPREPLY < <(compgen -P "$prefix" -W "$words" -- "$word")
  case ${COMPREPLY[0]-} in
    *=|*'[') compopt -o nospace ;;
  esac
}
)";

std::string zshQuoted(std::string_view text) { return '\'' + replaced(text, '\'', "'\\''") + '\''; }

// With a backslash before each of `special`, and before backslashes.
std::string guarded(std::string_view text, std::string_view special) {
  std::string out;
  for (const char c : text) {
    if (c == '\\' || special.find(c) != std::string_view::npos) out += '\\';
    out += c;
  }
  return out;
}

std::string zshOffer(std::string_view placeholder) {
  const auto offer = offerOf(placeholder);
  return offer == Offer::files ? "_files" : offer == Offer::folders ? "_files -/" : " ";
}

// ":NAME:what is offered", behind an option or for an operand.
std::string zshValue(const CommandOption& option) {
  const auto second = behindEquals(option.placeholder);
  std::string action = zshOffer(option.placeholder);
  if (!option.choices.empty()) {
    action = fmt::format("({})", joined(option.choices, " "));
    // One that is gone on with gets no blank.
    if (!second.empty()) action = fmt::format("{{compadd -S \"\" -- {}}}", guarded(joined(option.choices, " "), "[]"));
  } else if (offerOf(second) != Offer::nothing) {
    action = fmt::format("{{compset -P \"*=\" && {}}}", zshOffer(second));
  }
  return fmt::format(":{}:{}", guarded(option.placeholder, ":"), replaced(action, ':', "\\:"));
}

std::string zshOption(const CommandOption& option) {
  std::string specs;
  const bool flag = option.placeholder.empty();
  for (const auto& name : namesOf(option)) {
    // Who asks for help or the version asks for nothing else.
    const auto before = option.take == nullptr ? "(- *)" : option.again == CommandOption::Again::allCount ? "*" : "";
    const auto equals = !flag && name.starts_with("--") ? "=" : "";
    const auto text = guarded(option.text, "[]");
    specs += " \\\n  " + zshQuoted(fmt::format("{}{}{}[{}]{}", before, name, equals, text,
                                               flag ? std::string() : zshValue(option)));
  }
  return specs;
}

}  // namespace

std::string manualPage(const CommandLine& line) {
  std::string title(line.program);
  std::ranges::transform(title, title.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  // Without a date: that of a build would make every build another.
  return fmt::format(".TH {} 1 \"\" \"Kalmira {}\" \"User Commands\"\n.SH NAME\n{} \\- {}\n", title, programVersion(),
                     roff(line.program), roff(shortSummary(line.summary))) +
         synopsis(line) + ".SH DESCRIPTION\n" + roffLines(line.summary) + optionSections(line) +
         notesSections(line.notes) + otherPrograms(line.program);
}

std::string bashCompletion(const CommandLine& line) {
  BashParts parts;
  for (const auto& group : line.groups) {
    for (const auto& option : group.options) putOption(parts, option);
  }
  for (const auto name : {"-h", "--help", "--version"}) parts.once.emplace_back(name);
  const bool operands = line.operands.take != nullptr;
  const auto function = "_" + replaced(line.program, '-', "_");
  const auto files = [](Offer offer) {
    return offer == Offer::nothing ? "return"
           : offer == Offer::files ? "compopt -o default; return"
                                   : "compopt -o dirnames; return";
  };
  auto text = fmt::format("# Completes {} in bash.\n{}() {{\n{}", line.program, function, kBashBegin);
  if (operands) text += kBashOperandsOnly;
  text += "  case $option in\n" + parts.choices + caseArm(parts.files, files(Offer::files)) +
          caseArm(parts.folders, files(Offer::folders)) + caseArm(parts.free, files(Offer::nothing));
  if (operands) text += caseArm({"--"}, files(offerOf(line.operands.placeholder)));
  text += "    *)\n";
  if (operands) {
    text += fmt::format("      if [[ $word != -* ]]; then {}; fi\n", files(offerOf(line.operands.placeholder)));
  }
  text += fmt::format("      words='{}'\n      for name in {}; do\n{}", joined(parts.always, " "),
                      joined(parts.once, " "), kBashEnd);
  return text + fmt::format("complete -F {} {}\n", function, line.program);
}

std::string zshCompletion(const CommandLine& line) {
  const bool operands = line.operands.take != nullptr;
  auto text = fmt::format("#compdef {}\n_arguments{}", line.program, operands ? " -S" : "");
  auto groups = shownGroups(line);
  if (operands) {
    const bool many = line.operands.placeholder.ends_with("...");
    text += " \\\n  " + zshQuoted((many ? "*" : "") + zshValue(line.operands));
    groups.erase(groups.begin());
  }
  for (const auto& group : groups) {
    for (const auto& option : group.options) text += zshOption(option);
  }
  return text + '\n';
}

std::optional<std::string> manualFile(const CommandLine& line, std::string_view form) {
  if (form == "man") return manualPage(line);
  if (form == "bash") return bashCompletion(line);
  if (form == "zsh") return zshCompletion(line);
  return std::nullopt;
}

}  // namespace kalmira
