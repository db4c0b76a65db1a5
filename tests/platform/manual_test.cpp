#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "platform/manual.h"
#include "support/command_line_case.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using Again = CommandOption::Again;

std::string taken(const std::string&) { return {}; }

CommandLine table() {
  return {
      .program = "made-up",
      .summary = "Does \"this\" with C:\\x.\n.and 'that'.",
      .usages = {"--kind one|two [FILE]...", "-o OUT"},
      .groups = {{"What [it] is",
                  {{"--kind", "one|two", "the sort: [this] or that", taken, "", Again::refused, {"one", "two"}},
                   {"--set", "FIELD=VALUE", "'a' field", taken, "", Again::allCount, {"width=", "colour[", "wide="}},
                   {"--com", "N=DEVICE", "port", taken, "", Again::allCount}}},
                 {"Where",
                  {{"-o", "OUT", "", taken},
                   {"--root", "DIR", "a folder", taken},
                   {"--rate", "HZ", ".5 and more", taken},
                   {"--dry-run", "", "no-op", taken}}}},
      .operands = {"", "FILE...", "files", taken},
      .notes =
          "Formats:\n  a-b  the first\n  c    'c'\nMore.\n\nExit status: 0 done, 1 of 3 files, or\nnone; 2 wrong.\n"};
}

// What a shell command prints on both streams; its status behind it where that is not 0.
std::string printed(const std::string& command) {
  FILE* const stream = ::popen((command + " 2>&1").c_str(), "r");
  std::string text;
  for (int c = 0; (c = std::fgetc(stream)) != EOF;) text += static_cast<char>(c);
  const int status = ::pclose(stream);
  return status == 0 ? text : text + " status " + std::to_string(status);
}

TEST(ManualPage, HoldsTheTableAndIsSoundRoff) {
  const auto page = manualPage(table());
  for (const std::string part :
       {".TH MADE-UP 1 \"\" ", ".SH NAME\nmade\\-up \\- does \\(dqthis\\(dq with C:\\(rsx\n",
        "\n\\fBmade\\-up\\fR \\fB\\-\\-kind\\fR \\fIone\\fR|\\fItwo\\fR [\\fIFILE\\fR]...\n.br\n\\fBmade\\-up\\fR "
        "\\fB\\-o",
        "C:\\(rsx.\n\\&.and \\(aqthat\\(aq.\n", ".SS Arguments\n.TP\n\\fIFILE\\fR...\nfiles\n.SS What [it] is\n",
        ".TP\n\\fB\\-\\-kind\\fR \\fBone\\fR|\\fBtwo\\fR\nthe sort: [this] or that\n",
        "\\fIFIELD\\fR=\\fIVALUE\\fR\n\\(aqa\\(aq field; repeatable\n", "\n\\&.5 and more\n",
        "\\fB\\-\\-dry\\-run\\fR\nno\\-op\n.SS Help\n.TP\n\\fB\\-h\\fR, \\fB\\-\\-help\\fR\n",
        ".SH NOTES\nFormats:\n.TP\n.B a\\-b\nthe first\n.TP\n.B c\n\\(aqc\\(aq\n.PP\nMore.\n.SH EXIT STATUS\n",
        ".TP\n.B 0\ndone\n.TP\n.B 1\nof 3 files, or none\n.TP\n.B 2\nwrong\n.SH SEE ALSO\n.BR kalmira (1),\n"}) {
    EXPECT_THAT(page, HasSubstr(part));
  }
  auto plain = table();
  plain.program = "kalmira-log";
  plain.notes = {};
  EXPECT_THAT(manualPage(plain), AllOf(HasSubstr("\\-export (1),\n.BR kalmira\\-sim (1)\n"), Not(HasSubstr("log (1)")),
                                       Not(HasSubstr(".SH EXIT")), Not(HasSubstr(".SH NOTES"))));
  if (std::system("groff --version > /dev/null 2>&1") != 0) GTEST_SKIP() << "no groff here";
  const TempFolder folder;
  writeFile(folder.path() / "page", page);
  EXPECT_EQ(printed("groff -man -ww -z " + (folder.path() / "page").string()), "");
}

TEST(BashCompletion, OffersWhatFitsAsBashAsksForIt) {
  const TempFolder folder;
  const auto file = (folder.path() / "made-up").string();
  auto noOperands = table();
  noOperands.operands = {};
  writeFile(file, bashCompletion(table()));
  writeFile(file + "2", bashCompletion(noOperands));
  const std::string all = "--set --com --kind -o --root --rate --dry-run -h --help --version";
  struct Case {
    std::string words, offered;  // as bash cuts them, the last is completed; "compopt ..." is left to bash
    std::string table = {};
  };
  for (const auto& [words, offered, table] : std::vector<Case>{
           {"--kind ''", "one two"},
           {"--kind t", "two"},
           {"--kind =", "one two"},
           {"--kind = o", "one"},
           {"--kind=t", "--kind=two"},
           {"--set w", "compopt -o nospace width= wide="},
           {"--set = c", "compopt -o nospace colour["},
           {"--set width =", ""},
           {"--set width = o", ""},
           {"--com ''", ""},
           {"--com 1 = /d", "compopt -o default"},
           {"--com = 1 =", "compopt -o default"},
           {"-o x", "compopt -o default"},
           {"--root =", "compopt -o dirnames"},
           {"--rate 1", ""},
           {"a --kind one --r", "--root --rate"},
           {"--root x --rate 2 --com 1 = y --r", ""},
           {"--com 1 = y --c", "--com"},
           {"--dry-run --d", ""},
           {"--dry-run f", "compopt -o default"},
           {"-- --k", "compopt -o default"},
           {"-", all},
           {"''", "compopt -o default"},
           {"''", all, "2"},
           {"--dry-run x", "", "2"},
       }) {
    const auto script = "set -u; compopt() { echo compopt $*; }; . " + file + table + "; COMP_WORDS=(made-up " + words +
                        "); COMP_CWORD=$((${#COMP_WORDS[@]}-1)); _made_up; echo ${COMPREPLY[@]+\"${COMPREPLY[@]}\"}";
    writeFile(folder.path() / "ask", script);
    auto said = printed("bash -n " + file + table + " && bash " + (folder.path() / "ask").string());
    std::ranges::replace(said, '\n', ' ');
    EXPECT_EQ(said.substr(0, said.find_last_not_of(' ') + 1), offered) << words;
  }
  EXPECT_THAT(printed("bash -c '. " + file + "; complete -p made-up'"), HasSubstr("-F _made_up made-up"));
}

TEST(ZshCompletion, GuardsWhatZshReads) {
  const auto file = zshCompletion(table());
  EXPECT_TRUE(file.starts_with("#compdef made-up\n_arguments -S \\\n  '*:FILE...:_files' \\\n")) << file;
  for (const std::string part :
       {"  '--kind=[the sort: \\[this\\] or that]:one|two:(one two)' \\\n",
        "  '*--set=['\\''a'\\'' field]:FIELD=VALUE:{compadd -S \"\" -- width= colour\\[ wide=}' \\\n",
        "  '*--com=[port]:N=DEVICE:{compset -P \"*=\" && _files}' \\\n", "  '-o[]:OUT:_files' \\\n",
        "  '--root=[a folder]:DIR:_files -/' \\\n", "  '--rate=[.5 and more]:HZ: ' \\\n", "  '--dry-run[no-op]' \\\n",
        "  '(- *)-h[show this]' \\\n  '(- *)--help[show this]' \\\n  '(- *)--version[print the version]'\n"}) {
    EXPECT_THAT(file, HasSubstr(part));
  }
}

TEST(Manual, IsAskedForByNobodyButTheBuild) {
  EXPECT_EQ(saidOf(table(), "--manual zsh"), zshCompletion(table()));
  EXPECT_EQ(saidOf(table(), "--manual html"), "\"--manual\" is no option");
  EXPECT_EQ(saidOf(table(), "--manual"), "\"--manual\" is no option");
  EXPECT_THAT(helpText(table()), Not(HasSubstr("--manual")));
}

}  // namespace
}  // namespace kalmira
