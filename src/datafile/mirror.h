#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "datafile/disk.h"

namespace kalmira {

// A second copy of a survey as it is recorded, in a folder on another medium. It is written on a thread of its
// own: whatever its medium does, nothing else waits for it. A folder that is not there is never made, for it
// may be where a card is to be mounted; it is looked for every second, and a copy that was away is filled up.
// Members are called on the session's thread, but for readAt.
class Mirror {
 public:
  Mirror();
  ~Mirror();  // without a commit where finish was not called
  Mirror(const Mirror&) = delete;
  Mirror& operator=(const Mirror&) = delete;

  // `soFar`: the records of the survey's file `original` up to now. The copy takes its name, or the next that
  // is free. `disk` outlives the program's threads.
  void begin(Disk& disk, const std::filesystem::path& folder, const std::filesystem::path& original,
             std::size_t recordLength, std::string_view soFar);
  bool isOn() const { return state_ != nullptr; }
  void append(std::string_view records);
  // Where records can be read that are no longer in memory, by their offset in the survey; nullptr: nowhere.
  void setOriginal(std::unique_ptr<DiskFile> original);
  // Of the copy itself, on any thread; empty where it gives nothing.
  std::string readAt(std::uint64_t offset, std::size_t size);

  struct News {
    bool bad = false;  // there is no whole copy now
    std::string text;
  };
  // What became of the copy since the last call, for the operator.
  std::vector<News> takeNews();
  // Ends the copy, waiting two seconds at the most. Empty, or why it is not whole.
  std::string finish();

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace kalmira
