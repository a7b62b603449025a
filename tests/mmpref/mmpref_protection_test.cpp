// Locks between real processes on the MD5-named lock files.
#include "mmpref/mmpref_protection.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "support/test_support.h"

namespace {

using mmfs_test::ChildResult;
using mmfs_test::RunInChild;
using mmfs_test::ScopedEnv;
using mmfs_test::TempDir;

class MMprefProtectionTest : public ::testing::Test {
 protected:
  TempDir tmp_;
  ScopedEnv tmpdir_{"TMPDIR", tmp_.path()};
  const QString name_ = QString::fromStdString(tmp_ / "Pavane.xml");
};

// A child that tries the lock and is killed by SIGALRM when it has to wait.
ChildResult TryLockInChild(const QString& name, int mode) {
  return RunInChild([&] {
    alarm(1);
    MMprefProtection guard(name, mode);
    return guard.lock();
  });
}

TEST_F(MMprefProtectionTest, LockFileIsTheMd5OfTheNameInTheTemporaryDirectory) {
  const ChildResult digest =
      mmfs_test::RunProgram({"/bin/sh", "-c", "printf %s \"$0\" | md5sum | cut -c1-32", name_.toStdString()});
  ASSERT_EQ(digest.exit_code, 0);
  const std::string expected = tmp_ / digest.out.substr(0, 32);
  EXPECT_EQ(MMprefProtection::lockFilePath(name_), expected);

  MMprefProtection guard(name_, 0);
  EXPECT_FALSE(mmfs_test::PathExists(expected));
  ASSERT_EQ(guard.lock(), 0);
  EXPECT_TRUE(mmfs_test::PathExists(expected));
}

TEST_F(MMprefProtectionTest, SharedLocksCoexistAcrossProcesses) {
  MMprefProtection reader(name_, 0);
  ASSERT_EQ(reader.lock(), 0);
  const ChildResult other = TryLockInChild(name_, 0);
  EXPECT_TRUE(other.exited);
  EXPECT_EQ(other.exit_code, 0);
}

TEST_F(MMprefProtectionTest, ExclusiveLockWaitsForASharedOne) {
  MMprefProtection reader(name_, 0);
  ASSERT_EQ(reader.lock(), 0);
  const ChildResult writer = TryLockInChild(name_, 1);
  EXPECT_TRUE(writer.signaled);
  EXPECT_EQ(writer.signal, SIGALRM);
}

TEST_F(MMprefProtectionTest, WaiterProceedsOnceTheHolderReleases) {
  auto writer = std::make_unique<MMprefProtection>(name_, 1);
  ASSERT_EQ(writer->lock(), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    alarm(10);
    MMprefProtection waiter(name_, 1);
    _exit(waiter.lock());
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, WNOHANG), 0) << "the child did not wait for the lock";
  writer.reset();
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(MMprefProtectionTest, CorruptNameHasItsOwnLockFile) {
  const QString corrupt = name_ + ".corrupt";
  EXPECT_NE(MMprefProtection::lockFilePath(name_), MMprefProtection::lockFilePath(corrupt));
  MMprefProtection writer(name_, 1);
  ASSERT_EQ(writer.lock(), 0);
  const ChildResult repair = TryLockInChild(corrupt, 1);
  EXPECT_TRUE(repair.exited);
  EXPECT_EQ(repair.exit_code, 0);
}

// Locks in a child with TMPDIR set to `tmpdir`; it must give up at once.
void ExpectFailureWithCode9(const QString& name, const std::string& tmpdir) {
  ScopedEnv env("TMPDIR", tmpdir);
  const ChildResult result = TryLockInChild(name, 1);
  ASSERT_TRUE(result.exited);
  EXPECT_EQ(result.exit_code, 9);
  const std::string start = "Failed to aquire lock in '" + MMprefProtection::lockFilePath(name) + "' : ";
  EXPECT_EQ(result.err.rfind(start, 0), 0u) << result.err;
  EXPECT_GT(result.err.size(), start.size() + 1) << "the reason is missing";
  EXPECT_EQ(result.err.back(), '\n');
}

TEST_F(MMprefProtectionTest, LockFileThatCannotBeMadeFailsAtOnceWithCode9) {
  mmfs_test::WriteFile(tmp_ / "plain", "a regular file");
  ExpectFailureWithCode9(name_, tmp_ / "plain/sub");
  ASSERT_EQ(mkdir(MMprefProtection::lockFilePath(name_).c_str(), 0755), 0);
  ExpectFailureWithCode9(name_, tmp_.path());
}

}  // namespace
