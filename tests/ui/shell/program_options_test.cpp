#include "ui/shell/program_options.h"

#include <gmock/gmock.h>

namespace kalmira {
namespace {

using Arguments = std::vector<std::string>;

TEST(ProgramOptions, NothingGivenLeavesTheChoices) {
  const auto options = std::get<ProgramOptions>(parseProgramOptions({}));
  EXPECT_FALSE(options.kind || options.portrait || options.scale || options.night);
  EXPECT_FALSE(options.ice || options.teskTimes10);
  EXPECT_TRUE(options.root.empty());
  EXPECT_EQ(options.tickBase, TickBase::boot);
  EXPECT_EQ(options.storageClass, 1);
}

TEST(ProgramOptions, AllOfThem) {
  const auto options = std::get<ProgramOptions>(parseProgramOptions(
      {"--kind", "vardo", "--root=/data/x", "--com", "1=/dev/pts/3", "--com=12=/dev/a=b", "--screen",
       "landscape", "--scale", "1.5", "--theme", "night", "--tick-base", "program", "--storage-class", "3"}));
  EXPECT_EQ(options.kind, Kind::vardo);
  EXPECT_EQ(options.root, "/data/x");
  EXPECT_EQ(options.com[0], "/dev/pts/3");
  EXPECT_EQ(options.com[11], "/dev/a=b");
  EXPECT_EQ(options.portrait, false);
  EXPECT_EQ(options.scale, 1.5);
  EXPECT_EQ(options.night, true);
  EXPECT_EQ(options.tickBase, TickBase::program);
  EXPECT_EQ(options.storageClass, 3);

  EXPECT_EQ(std::get<ProgramOptions>(parseProgramOptions({"--kind", "7"})).kind, Kind::tesk2);
  EXPECT_TRUE(std::get<ProgramOptions>(parseProgramOptions({"--kind", "3", "--tesk-x10"})).teskTimes10);
  // Ice work is the ORLA's.
  const auto ice = std::get<ProgramOptions>(parseProgramOptions({"--ice"}));
  EXPECT_TRUE(ice.ice);
  EXPECT_EQ(ice.kind, Kind::orla);
}

TEST(ProgramOptions, WhatIsWrongIsSaid) {
  const std::vector<std::pair<Arguments, std::string>> cases{
      {{"--kind", "8"}, "there is no instrument \"8\""},
      {{"--ice", "--kind", "GLACO"}, "--ice is for the ORLA"},
      {{"--tesk-x10", "--kind", "TESK2"}, "--tesk-x10 is for the TESK"},
      {{"--com", "13=/dev/x"}, "--com takes a number from 1 to 12"},
      {{"--com", "0=/dev/x"}, "--com takes a number from 1 to 12"},
      {{"--com", "1x=/dev/x"}, "--com takes a number from 1 to 12"},
      {{"--com", "3"}, "--com takes NUMBER=DEVICE"},
      {{"--com", "3="}, "--com 3= lacks the device"},
      {{"--screen", "Portrait"}, "--screen is portrait or landscape"},
      {{"--scale", "1,5"}, "--scale is a number from 0.5 to 8"},
      {{"--scale", "0.49"}, "--scale is a number from 0.5 to 8"},
      {{"--scale", "nan"}, "--scale is a number from 0.5 to 8"},
      {{"--theme", "dark"}, "--theme is day or night"},
      {{"--tick-base", ""}, "--tick-base is boot or program"},
      {{"--storage-class", "4"}, "--storage-class is 0 to 3"},
      {{"--root", ""}, "--root takes a folder"},
      {{"survey.ROR", "b.ROR"}, "\"b.ROR\" is one file too many"},
  };
  for (const auto& [arguments, text] : cases) {
    const auto parsed = parseProgramOptions(arguments);
    ASSERT_TRUE(std::holds_alternative<ProgramUsageError>(parsed)) << text;
    EXPECT_EQ(std::get<ProgramUsageError>(parsed).what, text);
  }
  for (const Arguments& arguments : {Arguments{"--colour"}, Arguments{"--kind"}, Arguments{"-k"}}) {
    const auto parsed = parseProgramOptions(arguments);
    ASSERT_TRUE(std::holds_alternative<ProgramUsageError>(parsed)) << arguments[0];
    EXPECT_THAT(std::get<ProgramUsageError>(parsed).what,
                testing::HasSubstr(arguments[0].substr(arguments[0].find_first_not_of('-'))));
  }
}

TEST(ProgramOptions, HelpAndVersion) {
  const auto help = std::get<ProgramHelp>(parseProgramOptions({"--help", "--kind", "nonsense"})).text;
  for (const auto* option : {"--kind", "--ice", "--root", "--com", "--screen", "--scale", "--theme",
                             "--tick-base", "--storage-class", "--tesk-x10", "--version"}) {
    EXPECT_THAT(help, testing::HasSubstr(option));
  }
  EXPECT_THAT(std::get<ProgramHelp>(parseProgramOptions({"--version"})).text,
              testing::MatchesRegex("kalmira [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

}  // namespace
}  // namespace kalmira
