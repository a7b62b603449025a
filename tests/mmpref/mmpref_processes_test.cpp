// Several real processes writing, killing and repairing one preference file.
#include "mmpref/mmpref.h"

#include <gtest/gtest.h>

#include <QFile>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "pref_sandbox.h"
#include "qt_messages.h"
#include "support/test_support.h"

namespace {

using mmpref_test::PrefSandbox;

// Starts body() in a child process that leaves with body's result.
pid_t Spawn(const std::function<int()>& body) {
  const pid_t pid = fork();
  if (pid == 0) {
    int code = 1;
    try {
      code = body();
    } catch (...) {
    }
    _exit(code);
  }
  return pid;
}

// Waits for a child; its exit code, or -signal when a signal ended it.
int Wait(pid_t pid) {
  int status = 0;
  if (waitpid(pid, &status, 0) != pid) return -1000;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

bool WellFormed(const std::string& path) {
  const mmfs_test::ChildResult lint = mmfs_test::RunProgram({"/usr/bin/xmllint", "--noout", path});
  return lint.exited && lint.exit_code == 0;
}

bool ReadsCleanly(const std::string& path) {
  QFile file(QString::fromStdString(path));
  if (!file.open(QIODevice::ReadOnly)) return false;
  QSettings::SettingsMap map;
  return readXmlFile(file, map);
}

class MMprefProcessesTest : public ::testing::Test {
 protected:
  PrefSandbox sandbox_;
  const std::string file_ = sandbox_.userFile("Yarl");
};

TEST_F(MMprefProcessesTest, EightWritersKeepEveryKeyInAWellFormedFile) {
  constexpr int kWriters = 8;
  constexpr int kKeys = 100;
  std::vector<pid_t> writers;
  for (int w = 0; w < kWriters; ++w) {
    writers.push_back(Spawn([w] {
      MMPREF store(MMPREF_YARL, false);
      for (int k = 0; k < kKeys; ++k) {
        if (store.set("writer" + std::to_string(w) + "/key" + std::to_string(k), w * 1000 + k, "") != 0) return 2;
        if (k % 10 == 9 && store.syncSettings() != MMPREF_SUCCESS) return 3;
      }
      return 0;
    }));
  }
  for (pid_t writer : writers) EXPECT_EQ(Wait(writer), 0);

  EXPECT_TRUE(WellFormed(file_)) << mmfs_test::ReadFile(file_);
  MMPREF store(MMPREF_YARL, false);
  std::map<std::string, MMPREF_TYPE> keys;
  store.listKeys(keys);
  EXPECT_EQ(keys.size(), static_cast<size_t>(kWriters * kKeys));
  MMpref_Err err;
  for (int w = 0; w < kWriters; ++w) {
    for (int k = 0; k < kKeys; k += 33) {
      const std::string key = "writer" + std::to_string(w) + "/key" + std::to_string(k);
      EXPECT_EQ(store.get<int>(key.c_str(), &err), w * 1000 + k) << key;
    }
  }
}

TEST_F(MMprefProcessesTest, WriterKilledWhileSyncingNeverLeavesABrokenFile) {
  for (int round = 0; round < 6; ++round) {
    const pid_t writer = Spawn([round] {
      MMPREF store(MMPREF_YARL, false);
      for (int i = 0;; ++i) {
        store.set("round" + std::to_string(round) + "/key" + std::to_string(i % 300), i, "");
        store.syncSettings();
      }
      return 0;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(40 + 25 * round));
    kill(writer, SIGKILL);
    EXPECT_EQ(Wait(writer), -SIGKILL);
    ASSERT_TRUE(mmfs_test::PathExists(file_));
    EXPECT_TRUE(WellFormed(file_)) << "round " << round;
    EXPECT_TRUE(ReadsCleanly(file_)) << "round " << round;
  }
  MMPREF store(MMPREF_YARL, false);
  EXPECT_EQ(store.getType("round5/key0"), MMPREF_TYPE_INT);
}

TEST_F(MMprefProcessesTest, CorruptFileOpenedByManyProcessesIsRepairedForAll) {
  sandbox_.write(file_, "<ApplicationSettings><unfinished");
  std::vector<pid_t> openers;
  for (int p = 0; p < 4; ++p) {
    openers.push_back(Spawn([p] {
      mmpref_test::QtMessages quiet;
      MMPREF store(MMPREF_YARL, false);
      store.set("opener" + std::to_string(p), p, "");
      return store.syncSettings();
    }));
  }
  for (pid_t opener : openers) EXPECT_EQ(Wait(opener), 0);
  EXPECT_TRUE(WellFormed(file_));
  MMPREF store(MMPREF_YARL, false);
  for (int p = 0; p < 4; ++p) EXPECT_TRUE(store.hasKey("opener" + std::to_string(p))) << p;
}

}  // namespace
