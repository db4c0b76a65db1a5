#include "datafile/data_file.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>
#include <vector>

#include "datafile/creation.h"
#include "platform/text.h"
#include "support/fake_clock.h"
#include "support/fake_disk.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

std::string record(int number) { return "T" + fixedField(number, 22, 0) + "\n"; }

struct DataFileTest : testing::Test {
  FakeDisk disk;
  DataFile file;
  void SetUp() override { ASSERT_EQ(file.create(disk, "survey", 24), 0); }
  void TearDown() override { file.finish(); }
};

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

// Commits run on a thread of their own, unasked: gives it time, looking after the file as a session does.
TEST_F(DataFileTest, CommitsFollowWritesAndWhatFailedIsWrittenAgain) {
  // Looked after often, and so seldom that the thread has long been waiting for something to do.
  for (const auto& [fails, period_ms] : {std::pair(1, 5), std::pair(2, 900)}) {
    FakeDisk medium;
    DataFile fresh;
    ASSERT_EQ(fresh.create(medium, "survey", 24), 0);
    medium.state.failingSyncs = fails;
    fresh.append(record(1));
    bool failed = false;
    const auto good = [&, most = fails] {
      return medium.state.syncs > most && medium.content() == record(1) && fresh.problem().empty();
    };
    for (int i = 0; i < 10000 / period_ms && !good(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(period_ms));
      fresh.service();
      failed = failed || !fresh.problem().empty();
    }
    EXPECT_TRUE(failed && good()) << period_ms;
  }
}

// What was done to the file behind our back, and how it is found; the survey then goes on in "next".
TEST_F(DataFileTest, AFileThatIsNoLongerOursIsLeftAloneAndTheSurveyGoesOnWholeElsewhere) {
  using Condition = DataFile::Condition;
  const auto ours = record(1) + record(2) + record(3);
  struct Case {
    std::string what;
    std::function<void(FakeDisk&)> harm;
    Condition found;
    std::string left;  // under the old name
  };
  const std::vector<Case> cases{
      {"deleted", [](FakeDisk& d) { d.remove("survey"); }, Condition::gone, ""},
      {"another of its name", [](FakeDisk& d) { d.remove("survey"), d.put("survey", "another survey"); },
       Condition::gone, "another survey"},
      {"a copy in its place", [&](FakeDisk& d) { d.remove("survey"), d.put("survey", ours); }, Condition::gone, ours},
      {"cut", [](FakeDisk& d) { d.setContent(record(1)); }, Condition::cut, record(1)},
      {"overwritten", [](FakeDisk& d) { d.setContent(std::string(72, 'x')); }, Condition::overwritten,
       std::string(72, 'x')},
      {"card out", [](FakeDisk& d) { d.state.outside = "survey"; }, Condition::failing, ours}};
  for (const auto& harmed : cases) {
    SCOPED_TRACE(harmed.what);
    FakeDisk at;
    DataFile survey;
    ASSERT_EQ(survey.create(at, "survey", 24), 0);
    survey.append(ours);
    survey.service();
    EXPECT_EQ(survey.condition(), Condition::sound);
    harmed.harm(at);
    if (harmed.found == Condition::cut) survey.append(record(4));  // comes before anybody has looked
    survey.closeAndReopen();
    survey.service();
    EXPECT_EQ(survey.condition(), harmed.found);
    if (harmed.found != Condition::cut) survey.append(record(4));
    EXPECT_EQ(survey.continueIn("survey").error == 0, harmed.what == "deleted");
    if (harmed.what != "deleted") {
      const auto next = survey.continueIn("next");
      EXPECT_EQ(next.error, 0);
      EXPECT_EQ(next.missing, 0U);
    }
    survey.append(record(5));
    EXPECT_EQ(at.content(), ours + record(4) + record(5));
    at.state.outside.clear();
    if (harmed.what != "deleted") {
      EXPECT_EQ(at.content("survey"), harmed.left);
    }
    EXPECT_FALSE(survey.finish());
  }
}

TEST_F(DataFileTest, AFileThatMerelyGrewIsToldAndNeverCut) {
  file.append(record(1));
  file.service();
  disk.setContent(record(1) + "somebody else's words, more than a record of ours");
  file.closeAndReopen();
  EXPECT_EQ(file.condition(), DataFile::Condition::lengthened);
  file.append(record(2));
  file.service();
  EXPECT_EQ(disk.content().substr(0, 48), record(1) + record(2));
  EXPECT_EQ(disk.content().size(), 24U + 49U);
}

TEST_F(DataFileTest, ACardThatComesBackIsUsedAgainOnlyWithTheFileAsWeLeftIt) {
  file.append(record(1) + record(2));
  file.service();
  const auto old = disk.state.latest;
  disk.remove("survey");
  disk.state.files["hidden"] = old;
  old->links = 1;
  file.service();
  ASSERT_EQ(file.continueIn("survey").error, 0);
  file.append(record(3));
  const auto other = disk.state.latest;
  for (const bool asLeft : {false, true}) {
    disk.state.files["survey"] = old;  // the card is mounted over the new file
    old->content = asLeft ? record(1) + record(2) : record(1) + record(7);
    file.service();
    EXPECT_EQ(file.condition(), DataFile::Condition::gone);
    EXPECT_EQ(file.continueIn("survey").error, asLeft ? 0 : EEXIST);
  }
  EXPECT_EQ(old->content, record(1) + record(2) + record(3));
  EXPECT_EQ(other->content, old->content);
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
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    EXPECT_EQ(ProposeDataFileName(place, clock), std::string("111510") + letter);
    writeFile(root.path() / "Storage/DATATESK2" / (std::string("111510") + letter + ".NTS"), "x");
  }
  const auto proposal = ProposeDataFileName(place, clock);
  EXPECT_EQ(proposal, "Storage\\DATATESK2\\111510Z.NTS");
  EXPECT_EQ(dataFilePathFor(place, proposal), root.path() / "Storage/DATATESK2/111510Z.NTS");
  EXPECT_EQ(baseNameOf("/tmp/dir.d/A.B.ROR"), "A");
  EXPECT_EQ(baseNameOf("plain"), "plain");
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

TEST_F(CreationTest, WhatCannotBeWrittenIsToldWithItsCauseAndLeavesNoFile) {
  // Chosen once; asked again, the operator gives up.
  const auto at = [](const std::filesystem::path& path) {
    return [path, asked = 0](const std::string&) mutable { return asked++ == 0 ? std::optional(path) : std::nullopt; };
  };
  auto outcome = create(at(root.path() / "missing" / "x.NTS"));
  EXPECT_EQ(outcome.how, CreateOutcome::How::failed);
  EXPECT_NE(outcome.cause.find("No such file"), std::string::npos);
  const auto path = root.path() / "x.NTS";
  // The header finds room, the rest does not.
  {
    const SmallFiles full(100);
    outcome = create(at(path));
  }
  EXPECT_EQ(outcome.how, CreateOutcome::How::failed);
  EXPECT_EQ(outcome.cause, "Disk full");
  EXPECT_FALSE(file.isOpen());
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_EQ(create(at(path)).how, CreateOutcome::How::created) << "the name is free again";
}

}  // namespace
}  // namespace kalmira
