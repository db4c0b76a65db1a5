#pragma once

#include <QString>
#include <filesystem>
#include <functional>
#include <memory>

namespace kalmira {

// One program a storage root. The first to come holds it until it ends, and is told when another is started on the same
// root; the other learns that it is not the first, and ends. A first one that crashed holds nothing. Where the root
// cannot be written to, or is held from another machine, the program goes on alone.
class SingleInstance {
 public:
  // `raise` is called on this thread's event loop when another program was started. Waits up to two seconds for an
  // answer of the program that holds the root.
  SingleInstance(const std::filesystem::path& root, std::function<void()> raise);
  ~SingleInstance();

  // False: another program holds the root and has been asked to come to the front.
  bool isFirst() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kalmira
