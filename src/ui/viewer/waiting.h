#pragma once

#include <QGuiApplication>

namespace kalmira {

// A large file takes a moment; the operator sees that it is being read.
class Waiting {
 public:
  Waiting() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
  ~Waiting() { QGuiApplication::restoreOverrideCursor(); }
  Waiting(const Waiting&) = delete;
  Waiting& operator=(const Waiting&) = delete;
};

}  // namespace kalmira
