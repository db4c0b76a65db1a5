#include "check/check_command.h"

#include <fmt/format.h>

#include <system_error>

#include "check/check_file.h"
#include "check/report_text.h"
#include "platform/files.h"

namespace kalmira {
namespace {

// Whatever stands there, a link to nothing, too.
bool isTaken(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

struct Repaired {
  bool written = false;
  std::string text;  // what is said of it
};

// Ends the repaired file.
Repaired finishRepair(const FileCheck& check, const RepairedCount& count, OutputFile& out) {
  const auto nothing = [&out](std::string_view why) {
    out.abandon();
    return Repaired{.text = fmt::format("nothing was written: {}", why)};
  };
  const auto failed = [&out] {
    return Repaired{.text = fmt::format("{} cannot be written: {}", out.name(), out.problem())};
  };
  if (!count.taken) return failed();
  if (check.error.kind != FileErrorKind::none) return nothing("the file cannot be read to its end");
  if (!check.rest.problem.empty()) return nothing("the rest cannot be read");
  if (count.records == 0) return nothing("there is no sound record");
  if (isTaken(out.name())) return nothing(fmt::format("{} has come to exist meanwhile", out.name()));
  if (!out.finish()) return failed();
  auto text = fmt::format("{}, {} records", out.name(), count.records);
  if (check.headerState == FileCheck::Header::missing) text += "; header 1 was made anew, with settings not known";
  return {.written = true, .text = text};
}

}  // namespace

CommandLine checkCommandLine(CheckRequest& request) {
  const auto takeFile = [&request](const std::string& value) {
    request.files.emplace_back(value);
    return std::string{};
  };
  const auto takeOut = [&request](const std::string& value) {
    request.repair = value;
    return std::string{value.empty() ? "empty" : ""};
  };
  const auto check = [&request]() -> std::string {
    if (request.files.empty()) return "no data file was named";
    return request.repair && request.files.size() > 1 ? "--repair works on one file" : "";
  };
  return {.program = "kalmira-check",
          .summary = "Says what each data file holds and whether it is sound, and repairs one.",
          .usages = {"FILE...", "FILE --repair OUT"},
          .groups = {{"Repair",
                      {{"--repair", "OUT", "write what is sound to the new file OUT, records from FILE.REST at its end",
                        takeOut, "a file name", CommandOption::Again::refused}}}},
          .operands = {"", "FILE...", "data files", takeFile},
          .check = check,
          .notes = "Exit status: 0 all sound, 1 a file is damaged, not complete or cannot be read, 2 wrong usage.\n",
          .wording = {.unknown = "unknown option {0}", .then = CommandWording::Then::usage}};
}

int runCheck(const CheckRequest& request, const std::function<bool(std::string_view)>& print,
             const std::function<void(std::string_view)>& say, const GoOn& goOn) {
  if (request.repair && isTaken(*request.repair)) {
    say(fmt::format("{}: is there already, and is not overwritten", request.repair->string()));
    return kCheckUsage;
  }
  int status = kCheckSound;
  for (const auto& path : request.files) {
    std::optional<OutputFile> out;
    TakeBytes take;
    if (request.repair) {
      out.emplace(*request.repair, OutputFile::Special::replaced);
      take = [&out](std::string_view bytes) { return out->write(bytes); };
    }
    RepairedCount count;
    const auto check = checkFile(path, goOn, take, count);
    const bool left = check.error.kind == FileErrorKind::left;
    Repaired repaired;
    if (out) repaired = finishRepair(check, count, *out);
    if (!check.sound() || (out && !repaired.written)) status = kCheckDamaged;
    if (!print(reportText(path.string(), check, repaired.text))) return kCheckDamaged;
    if (left) return kCheckDamaged;
  }
  return status;
}

}  // namespace kalmira
