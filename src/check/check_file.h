#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "check/joined_rest.h"
#include "check/survey_report.h"
#include "platform/attended_run.h"

namespace kalmira {

// All that is to be said of one data file.
struct FileCheck {
  enum class Header {
    sound,
    damaged,  // names the instrument still; its settings are taken as far as they can be read
    missing,  // the instrument is known from the file's ending
  };

  FileError error;  // it could not be opened, or read to its end: what was read before is there
  bool opened = false;
  Header1 header;
  Header headerState = Header::sound;
  std::uint64_t size = 0;
  std::optional<FilePlace> tear;  // bytes behind the last whole record
  SurveyReport survey;
  Rest rest;

  bool sound() const;
};

// Takes the bytes of the repaired file, one piece after the other. False when it cannot.
using TakeBytes = std::function<bool(std::string_view bytes)>;

struct RepairedCount {
  std::uint64_t records = 0;
  bool taken = true;  // false: the taker could not
};

// Reads the file from one end to the other. With `repaired` the sound records go there, and those of the rest: a sound
// file with no rest gives the same bytes. A header 1 that is damaged is made anew.
FileCheck checkFile(const std::filesystem::path& path, const GoOn& goOn, const TakeBytes& repaired,
                    RepairedCount& count);

}  // namespace kalmira
