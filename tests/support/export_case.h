#pragma once

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "export/export_command.h"
#include "support/command_line_case.h"
#include "support/temp_folder.h"

namespace kalmira {

// Runs `kalmira-export` on files in a folder of its own.
struct ExportCommand : testing::Test {
  std::string path(const std::string& name) const { return (folder.path() / name).string(); }
  std::string file(const std::string& name, const std::string& bytes) const {
    writeFile(path(name), bytes);
    return path(name);
  }
  std::string content(const std::string& name) const { return readFile(path(name)); }
  // Messages are kept in said, with the folder taken out.
  int run(const std::vector<std::string>& arguments) {
    said.clear();
    const auto request = optionsOf(exportCommandLine, fmt::format("{}", fmt::join(arguments, " ")));
    const auto say = [&](std::string_view line) {
      if (line.starts_with(path(""))) line.remove_prefix(path("").size());
      said.emplace_back(line);
    };
    const auto ask = [&](std::string_view name, std::uint64_t done, std::uint64_t total) {
      return goOn(name, done, total);
    };
    return runExport(request, say, ask).status;
  }

  TempFolder folder;
  std::vector<std::string> said;
  GoOn goOn = [](std::string_view, std::uint64_t, std::uint64_t) { return true; };
};

}  // namespace kalmira
