#pragma once

#include <QString>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace kalmira {

// One program a storage root. The first to come holds it until it ends, and is told when another is started on the same
// root; the other learns that it is not the first, and ends. A first one that crashed holds nothing. Where the root
// cannot be written to, or is held from another machine, the program goes on alone.
class SingleInstance {
 public:
  // `raise` is called on this thread's event loop when another program was started, with what that one had to say.
  // `word` is what this one says where it is not the first: at most a few thousand bytes. Waits up to two seconds for
  // an answer of the program that holds the root.
  SingleInstance(const std::filesystem::path& root, const std::string& word,
                 std::function<void(const std::string& word)> raise);
  ~SingleInstance();

  // False: another program holds the root and has been asked to come to the front.
  bool isFirst() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kalmira
