#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "datafile/creation.h"
#include "datafile/data_file.h"
#include "platform/text.h"
#include "support/fake_clock.h"
#include "support/fake_disk.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

std::string record(int number) {
  return "T" + fixedField(number, 22, 0) + "\n";
}

// Commits run on a thread of their own: gives it time, looking after the file as a session does.
template <typename Condition>
bool serviceUntil(DataFile& file, Condition condition) {
  for (int i = 0; i < 400 && !condition(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    file.service();
  }
  return condition();
}

struct DataFileTest : testing::Test {
  FakeDisk disk;
  DataFile file;
  void SetUp() override { ASSERT_EQ(file.create(disk, "survey", 24), 0); }
  void TearDown() override { file.finish(); }
};

TEST_F(DataFileTest, OneWriteCallARecord) {
  file.append(record(1) + record(2));
  file.append(record(3));
  EXPECT_EQ(disk.state.writes, 3);
  EXPECT_EQ(disk.content(), record(1) + record(2) + record(3));
}

TEST_F(DataFileTest, FullDiskLeavesWholeRecordsAndLosesNone) {
  for (std::size_t room = 24; room < 72; room += 5) {
    DataFile fresh;
    FakeDisk small;
    ASSERT_EQ(fresh.create(small, "survey", 24), 0);
    small.setRoom(room);
    for (int i = 1; i <= 4; ++i) fresh.append(record(i));
    EXPECT_EQ(small.content().size() % 24, 0U) << "room for " << room;
    EXPECT_EQ(fresh.problem(), "Disk full");
    EXPECT_EQ(fresh.waitingRecords(), 4 - small.content().size() / 24);
    small.setRoom(1000);
    fresh.service();
    EXPECT_EQ(fresh.problem(), "");
    EXPECT_EQ(small.content(), record(1) + record(2) + record(3) + record(4));
    EXPECT_FALSE(fresh.finish());
  }
}

TEST_F(DataFileTest, FailedCommitIsWrittenAgain) {
  disk.state.failingSyncs = 1;
  file.append(record(1));
  ASSERT_TRUE(serviceUntil(file, [&] { return disk.state.failingSyncs == 0; }));
  EXPECT_TRUE(serviceUntil(file, [&] { return disk.content() == record(1) && file.problem().empty(); }));
}

TEST_F(DataFileTest, CommitsFollowWritesWithoutBeingAskedFor) {
  file.append(record(1));
  EXPECT_TRUE(serviceUntil(file, [&] { return disk.state.syncs == 1; }));
  file.append(record(2));
  EXPECT_TRUE(serviceUntil(file, [&] { return disk.state.syncs == 2; }));
}

TEST_F(DataFileTest, CardTakenOutAtAPauseIsPickedUpAgain) {
  file.append(record(1));
  disk.state.cardOut = true;
  file.closeAndReopen();
  EXPECT_NE(file.problem(), "");
  file.append(record(2));
  disk.state.cardOut = false;
  file.service();
  EXPECT_EQ(disk.content(), record(1) + record(2));
}

TEST_F(DataFileTest, WhatCannotBeWrittenInTheEndIsHandedBack) {
  file.append(record(1));
  disk.setRoom(24);
  file.append(record(2));
  const auto rest = file.finish();
  ASSERT_TRUE(rest);
  EXPECT_EQ(rest->records, record(2));
  EXPECT_EQ(rest->cause, "Disk full");
}

struct CreationTest : testing::Test {
  TempFolder root;
  FakeClock clock;
  LocalDisk disk;
  Settings settings;
  DataFile file;
  const DataPlace place{.kind = Kind::tesk2, .storageClass = 1, .root = root.path()};
  int warnings = 0;

  CreateOutcome create(const ChooseDataFile& choose) {
    const WriterContext context{
        .file = file, .settings = settings, .instrument = instrumentOf(Kind::tesk2), .clock = clock};
    return CreateDataFile(place, context, disk, choose, [this] { ++warnings; });
  }
  void TearDown() override { file.finish(); }
};

TEST_F(CreationTest, ProposesFreeLettersAndThenTheLastPath) {
  EXPECT_EQ(ProposeDataFileName(place, clock), "111510A");
  for (char letter = 'A'; letter <= 'Y'; ++letter) {
    writeFile(root.path() / "Storage/DATATESK2" / (std::string("111510") + letter + ".NTS"), "x");
  }
  EXPECT_EQ(ProposeDataFileName(place, clock), "111510Z");
  writeFile(root.path() / "Storage/DATATESK2/111510Z.NTS", "x");
  const auto proposal = ProposeDataFileName(place, clock);
  EXPECT_EQ(proposal, "Storage\\DATATESK2\\111510Z.NTS");
  EXPECT_EQ(dataFilePathFor(place, proposal), root.path() / "Storage/DATATESK2/111510Z.NTS");
}

TEST_F(CreationTest, ExistingFileIsRefusedAndLeftAlone) {
  const auto taken = dataFilePathFor(place, "taken");
  writeFile(taken, "a survey");
  int asked = 0;
  const auto outcome = create([&](const std::string& name) -> std::optional<std::filesystem::path> {
    return asked++ == 0 ? taken : dataFilePathFor(place, name);
  });
  EXPECT_EQ(outcome.how, CreateOutcome::How::created);
  EXPECT_EQ(warnings, 1);
  EXPECT_EQ(readFile(taken), "a survey");
  const auto content = readFile(file.path());
  EXPECT_EQ(content.size(), 13U * 26U) << "two headers, four of the line, six factors, a time mark";
  EXPECT_EQ(content.substr(0, 26), "TESK2   W230GRD00001    3\n");
}

TEST_F(CreationTest, FolderThatCannotBeWrittenIsToldWithItsCause) {
  const auto outcome =
      create([&](const std::string&) { return std::optional(root.path() / "missing" / "x.NTS"); });
  EXPECT_EQ(outcome.how, CreateOutcome::How::failed);
  EXPECT_NE(outcome.cause.find("No such file"), std::string::npos);
}

TEST(BaseName, EndsAtTheFirstFullStopOfTheName) {
  EXPECT_EQ(baseNameOf("/tmp/dir.d/A.B.ROR"), "A");
  EXPECT_EQ(baseNameOf("plain"), "plain");
}

}  // namespace
}  // namespace kalmira
