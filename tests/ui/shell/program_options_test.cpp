#include "ui/shell/program_options.h"

#include "support/command_line_case.h"

namespace kalmira {
namespace {

TEST(ProgramOptions, AllOfThem) {
  const auto table = programCommandLine;
  const auto all = optionsOf(table,
                             "--kind vardo --root=/data/x --com 1=/dev/pts/3 --com=12=/dev/a=b --screen landscape "
                             "--scale 1.5 --theme night --tick-base program --storage-class 3");
  EXPECT_EQ(all.com[0], "/dev/pts/3");
  EXPECT_EQ(all.com[11], "/dev/a=b");
  EXPECT_TRUE(all.kind == Kind::vardo && all.root == "/data/x" && all.portrait == false && all.scale == 1.5);
  EXPECT_TRUE(all.night == true && all.tickBase == TickBase::program && all.storageClass == 3);
  EXPECT_FALSE(all.ice || all.teskTimes10);
  EXPECT_EQ(optionsOf(table, "--kind 7").kind, Kind::tesk2);
  EXPECT_TRUE(optionsOf(table, "--kind 3 --tesk-x10").teskTimes10);
  EXPECT_FALSE(optionsOf(table, "--tesk-x10").kind);
  EXPECT_EQ(optionsOf(table, "--ice").kind, Kind::orla) << "ice work is the ORLA's";
  EXPECT_EQ(optionsOf(table, "-- -survey.ROR").file, "-survey.ROR");
}

TEST(ProgramOptions, WhatIsWrongIsSaid) {
  for (const auto& [arguments, said] : std::initializer_list<std::pair<std::string, std::string>>{
           {"--kind 8", "there is no instrument \"8\""},
           {"--ice --kind GLACO", "--ice is for the ORLA"},
           {"--tesk-x10 --kind TESK2", "--tesk-x10 is for the TESK"},
           {"--com 13=/dev/x", "--com takes a number from 1 to 12"},
           {"--com 1x=/dev/x", "--com takes a number from 1 to 12"},
           {"--com 3", "--com takes NUMBER=DEVICE"},
           {"--com 3=", "--com 3= lacks the device"},
           {"--scale 8.1", "--scale is a number from 0.5 to 8"},
           {"--storage-class 4", "--storage-class is 0 to 3"},
           {"--root=", "--root takes a folder"},
           {"survey.ROR b.ROR", "\"b.ROR\" is one file too many"},
           {"--colour=red", "Unknown option 'colour'."},
           {"-k", "Unknown option 'k'."},
           {"--kind", "Missing value after '--kind'."},
           {"--ice=yes", "Unexpected value after '--ice'."}}) {
    optionsOf(programCommandLine, arguments, said);
  }
}

}  // namespace
}  // namespace kalmira
