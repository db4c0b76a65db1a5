#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "datafile/data_file.h"
#include "datafile/record_writers.h"

namespace kalmira {

// Where a kind's data files lie.
struct DataPlace {
  Kind kind = Kind::orla;
  int storageClass = kDefaultStorageClass;
  std::filesystem::path root;
  std::filesystem::path mirror{};  // the second copy's folder; empty: none
};

// The data folder on this machine.
std::filesystem::path dataFolderOf(const DataPlace& place);

// A bare name under which nothing stands in the data folder, nor in the second copy's: month, day, hour and a letter,
// "111510A". Creates the data folder. When all 26 letters of the hour are taken, the catalogue path of the last one,
// folder and extension included: the operator then sees that name and is asked for another.
std::string ProposeDataFileName(const DataPlace& place, const Clock& clock);
// The same where nobody can be asked: after Z, "111510Z2" and so on; never a path.
std::string unattendedName(const DataPlace& place, const Clock& clock);

inline constexpr int kNamesToTry = 100;
// "A.ROR" is 1, "A2.ROR" 2, and so on.
std::string numberedName(const std::filesystem::path& file, int number);

// The path of a proposed or typed name: in the data folder and with the extension, unless the name is a path.
std::filesystem::path dataFilePathFor(const DataPlace& place, std::string_view name);

// A name without the ending that its file gets anyway, in capitals or small letters.
std::string bareName(const std::string& name, std::string_view extension);

// The file's name up to its first full stop.
std::string baseNameOf(const std::filesystem::path& path);

// Asks the operator; what it returns is the path chosen, nothing when cancelled.
using ChooseDataFile = std::function<std::optional<std::filesystem::path>(const std::string& proposal)>;

struct CreateOutcome {
  enum class How {
    created,    // the file is open and holds its opening records
    cancelled,  // nothing was created
    failed,     // it could not be created or opened; `cause` says why
  };
  How how = How::cancelled;
  std::string cause;
};

// Proposes a name, lets `choose` confirm or change it, creates that file, writes header, line block and time mark,
// closes it and opens it again at its end. When a file of the chosen name exists, `warnExists` is called and the
// proposal starts anew; an existing file is never touched.
CreateOutcome CreateDataFile(const DataPlace& place, const WriterContext& context, Disk& disk,
                             const ChooseDataFile& choose, const std::function<void()>& warnExists);

inline constexpr std::string_view kFileExistsText = "The file already exisits. Please enter another name";
inline constexpr std::string_view kFileNotCreatedText =
    "File not created. Potential disk problem. Try different folder and check files often. Press OK,wait for "
    "program end and restart.";

}  // namespace kalmira
