#include "ui/shell/single_instance.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QLockFile>
#include <QTest>
#include <atomic>
#include <csignal>
#include <thread>

#include "support/temp_folder.h"

namespace kalmira {
namespace {

TEST(SingleInstance, TheSecondOnARootRaisesTheFirst) {
  const TempFolder root;
  int raised = 0;
  {
    const SingleInstance first(root.path(), [&raised] { ++raised; });
    EXPECT_TRUE(first.isFirst());
    const SingleInstance elsewhere(root.path() / "a" / "Kalmira", [] { FAIL(); });
    EXPECT_TRUE(elsewhere.isFirst());
    EXPECT_TRUE(std::filesystem::exists(root.path() / "a" / "Kalmira")) << "a root that is not there is made";
    // The same folder by another name.
    const SingleInstance second(root.path() / ".." / root.path().filename(), [] { FAIL(); });
    EXPECT_FALSE(second.isFirst());
    EXPECT_TRUE(QTest::qWaitFor([&raised] { return raised == 1; }, 2000));
  }
  const SingleInstance next(root.path(), [] {});
  EXPECT_TRUE(next.isFirst());
}

TEST(SingleInstance, WhatACrashedFirstLeftIsPutAway) {
  const TempFolder root;
  const pid_t child = ::fork();
  if (child == 0) {
    QLockFile lock(QString::fromStdString((root.path() / ".kalmira.lock").string()));
    if (!lock.tryLock(0)) ::_exit(1);
    ::kill(::getpid(), SIGKILL);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  ASSERT_TRUE(std::filesystem::exists(root.path() / ".kalmira.lock"));
  const SingleInstance first(root.path(), [] {});
  EXPECT_TRUE(first.isFirst());
}

TEST(SingleInstance, ARootThatCannotBeWrittenIsUsedAlone) {
  // A folder below a file can be made by nobody, root included.
  const TempFolder folder;
  writeFile(folder.path() / "file", "");
  const auto root = folder.path() / "file" / "Kalmira";
  int raised = 0;
  const SingleInstance first(root, [&raised] { ++raised; });
  EXPECT_TRUE(first.isFirst());
  const SingleInstance second(root, [] { FAIL(); });
  EXPECT_FALSE(second.isFirst());
  EXPECT_TRUE(QTest::qWaitFor([&raised] { return raised == 1; }, 2000));
}

TEST(SingleInstance, OfManyAtOnceOneIsFirst) {
  const TempFolder root;
  constexpr int kStarts = 6;
  std::array<pid_t, kStarts> children{};
  std::array<int, 2> ready{};
  std::array<int, 2> hold{};
  ASSERT_EQ(::pipe(ready.data()), 0);
  ASSERT_EQ(::pipe(hold.data()), 0);
  for (auto& child : children) {
    child = ::fork();
    if (child != 0) continue;
    ::close(hold[1]);
    const SingleInstance instance(root.path(), [] {});
    (void)!::write(ready[1], instance.isFirst() ? "1" : "0", 1);
    char end = 0;
    (void)!::read(hold[0], &end, 1);  // until the parent closes its end
    ::_exit(0);
  }
  std::string answers(kStarts, '?');
  for (auto& answer : answers) ASSERT_EQ(::read(ready[0], &answer, 1), 1);
  ::close(hold[1]);
  for (const auto child : children) ::waitpid(child, nullptr, 0);
  for (const int fd : {ready[0], ready[1], hold[0]}) ::close(fd);
  EXPECT_EQ(std::count(answers.begin(), answers.end(), '1'), 1) << answers;
}

}  // namespace
}  // namespace kalmira
