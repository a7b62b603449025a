// Real processes locking, writing, killing and repairing one preference file,
// on the MD5-named lock files.
#include "mmpref/mmpref.h"
#include "mmpref/mmpref_protection.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "pref_sandbox.h"

namespace {

using mmfs_test::ChildResult;

// A child that tries the lock and is killed by SIGALRM when it has to wait.
ChildResult TryLockInChild(const QString& name, int mode) {
  return mmfs_test::RunInChild([&] {
    alarm(1);
    return MMprefProtection(name, mode).lock();
  });
}

// Runs body(0) ... body(count - 1) in as many child processes at once; true
// when every one of them exits with 0.
bool RunTogether(int count, const std::function<int(int)>& body) {
  std::vector<pid_t> children;
  for (int i = 0; i < count; ++i)
    if (children.emplace_back(fork()) == 0) {
      // A child never returns into the test, whose teardown would remove the sandbox.
      int code = 99;
      try {
        code = body(i);
      } catch (...) {
      }
      _exit(code);
    }
  int failures = 0;
  for (pid_t child : children) {
    int status = 0;
    failures += waitpid(child, &status, 0) != child || status != 0;
  }
  return failures == 0;
}

void ExpectWellFormed(const std::string& path) {
  EXPECT_EQ(mmfs_test::RunProgram({"/usr/bin/xmllint", "--noout", path}).exit_code, 0) << mmfs_test::ReadFile(path);
}

class MMprefProcessesTest : public ::testing::Test {
 protected:
  mmpref_test::PrefSandbox sandbox_;
  const std::string file_ = sandbox_.userFile("Yarl");
  const QString name_ = QString::fromStdString(file_);
};

TEST_F(MMprefProcessesTest, LockFileIsTheMd5OfTheNameInTheTemporaryDirectory) {
  const ChildResult md5 = mmfs_test::RunProgram({"/bin/sh", "-c", "printf %s \"$0\" | md5sum | cut -c1-32", file_});
  const std::string expected = sandbox_.root() + "/tmp/" + md5.out.substr(0, 32);
  EXPECT_EQ(MMprefProtection::lockFilePath(name_), expected);
  MMprefProtection guard(name_, 0);
  ASSERT_EQ(guard.lock(), 0);
  EXPECT_TRUE(mmfs_test::PathExists(expected));
}

TEST_F(MMprefProcessesTest, SharedLocksCoexistWhileAnExclusiveOneWaits) {
  MMprefProtection reader(name_, 0);
  ASSERT_EQ(reader.lock(), 0);
  const ChildResult other = TryLockInChild(name_, 0);
  EXPECT_TRUE(other.exited && other.exit_code == 0) << "a second shared lock";
  const ChildResult writer = TryLockInChild(name_, 1);
  EXPECT_TRUE(writer.signaled && writer.signal == SIGALRM) << "the exclusive lock must wait";
}

TEST_F(MMprefProcessesTest, LockFileThatCannotBeMadeFailsAtOnceWithCode9) {
  mmfs_test::WriteFile(sandbox_.root() + "/plain", "a regular file");
  mmfs_test::ScopedEnv tmpdir("TMPDIR", sandbox_.root() + "/plain/sub");
  const ChildResult result = TryLockInChild(name_, 1);
  EXPECT_TRUE(result.exited && result.exit_code == 9) << result.err;
  const std::string start = "Failed to aquire lock in '" + MMprefProtection::lockFilePath(name_) + "' : ";
  EXPECT_EQ(result.err.rfind(start, 0), 0u) << result.err;
  EXPECT_TRUE(result.err.size() > start.size() + 1 && result.err.back() == '\n') << "a reason and a line end";
}

TEST_F(MMprefProcessesTest, EightWritersKeepEveryKeyInAWellFormedFile) {
  const auto writer = [](int w) {
    MMPREF store(MMPREF_YARL, false);
    for (int k = 0; k < 100; ++k) {
      const std::string key = "writer" + std::to_string(w) + "/key" + std::to_string(k);
      if (store.set(key, w * 1000 + k, "") != 0 || (k % 10 == 9 && store.syncSettings() != 0)) return 1;
    }
    return 0;
  };
  EXPECT_TRUE(RunTogether(8, writer));
  ExpectWellFormed(file_);
  MMPREF store(MMPREF_YARL, false);
  std::map<std::string, int> keys;
  EXPECT_EQ(store.getIntList("", keys), MMPREF_SUCCESS);
  EXPECT_EQ(keys.size(), 800u);
  for (const auto& [key, value] : keys)
    EXPECT_EQ(key, "writer" + std::to_string(value / 1000) + "/key" + std::to_string(value % 1000));
}

// Each writer kills itself with SIGKILL at a different moment of its loop.
TEST_F(MMprefProcessesTest, WriterKilledWhileSyncingNeverLeavesABrokenFile) {
  for (int round = 0; round < 6; ++round) {
    const ChildResult writer = mmfs_test::RunInChild([round]() -> int {
      signal(SIGALRM, [](int) { raise(SIGKILL); });
      MMPREF store(MMPREF_YARL, false);
      for (int i = 0;; ++i) {
        store.set("round" + std::to_string(round) + "/key" + std::to_string(i % 300), i, "");
        store.syncSettings();
        // The kill lands at a different point of the loop each round, however slow the machine.
        if (i == 0) ualarm(15000 + 25000 * round, 0);
      }
    });
    EXPECT_TRUE(writer.signaled && writer.signal == SIGKILL) << round;
    ExpectWellFormed(file_);
  }
  EXPECT_EQ(MMPREF(MMPREF_YARL, false).getType("round5/key0"), MMPREF_TYPE_INT);
}

// The entry before the damage would survive a mere re-read of the file.
TEST_F(MMprefProcessesTest, CorruptFileIsRemovedAndEveryOpenerStartsEmpty) {
  sandbox_.write(file_, "<ApplicationSettings><a dt=\"int\">1</a><unfinished");
  const auto opener = [](int p) {
    mmpref_test::QtWarnings quiet;
    MMPREF store(MMPREF_YARL, false);
    if (store.hasKey("a")) return 1;
    store.set("opener" + std::to_string(p), p, "");
    return static_cast<int>(store.syncSettings());
  };
  EXPECT_TRUE(RunTogether(4, opener));
  ExpectWellFormed(file_);
  MMPREF store(MMPREF_YARL, false);
  for (int p = 0; p < 4; ++p) EXPECT_TRUE(store.hasKey("opener" + std::to_string(p))) << p;
  EXPECT_FALSE(store.hasKey("a"));
}

}  // namespace
