#pragma once

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>

#include "platform/command_line.h"

namespace kalmira {

// What is said of arguments: empty where the program is to run, the mistake alone for wrong usage, else all.
inline std::string saidOf(const CommandLine& line, const std::string& arguments) {
  std::istringstream words(arguments);
  const std::vector<std::string> list{std::istream_iterator<std::string>(words), {}};
  const auto answer = takeCommandLine(line, list);
  if (!answer || answer->status == 0) return answer ? answer->text : "";
  const auto start = line.program.size() + 2;
  return answer->text.substr(start, answer->text.find('\n') - start);
}

template <class Options>
Options optionsOf(CommandLine (*table)(Options&), const std::string& arguments, const std::string& said = "") {
  Options options;
  EXPECT_EQ(saidOf(table(options), arguments), said) << arguments;
  return options;
}

}  // namespace kalmira
