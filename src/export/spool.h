#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kalmira {

// Where what waits is to wait for the output `out`: in its folder, for that disk has to have the room in any case. For
// what is no file in the folder that TMPDIR names, else /var/tmp.
std::filesystem::path spoolFolder(const std::optional<std::filesystem::path>& out);

// Pieces of an output that are known before their turn. They wait in a temporary file without a name, which no end of
// the program leaves behind. Holds some dozen kilobytes. Not bound to a thread.
class Spool {
 public:
  explicit Spool(std::filesystem::path folder) : folder_(std::move(folder)) {}
  Spool(const Spool&) = delete;
  Spool& operator=(const Spool&) = delete;
  ~Spool();

  // False when there is no room for it, or the like; problem() says why. The file is made with the first piece.
  bool add(std::string_view piece);
  // All pieces so far, in their order, as often as wanted. False when one cannot be read, as add, or `take` has said
  // no.
  bool each(const std::function<bool(std::string_view)>& take);
  const std::string& problem() const { return problem_; }

 private:
  bool open();
  bool flush();
  bool fail(int error);
  std::size_t readAt(std::uint64_t offset, char* to, std::size_t count);

  std::filesystem::path folder_;
  int fd_ = -1;
  std::uint64_t size_ = 0;  // of the file
  std::string waiting_;     // behind it
  std::string problem_;
};

}  // namespace kalmira
