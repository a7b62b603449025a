// fgets_safe: lines as fgets gives them, and reads that go on after a signal
// interrupts them.
#include "mmcommon/line_reader.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "support/test_support.h"

namespace {

TEST(FgetsSafe, ReadsLinesLikeFgets) {
  mmfs_test::TempDir dir;
  mmfs_test::WriteFile(dir / "lines.txt", "first line\nsecond\nlast without newline");
  FILE* file = fopen((dir / "lines.txt").c_str(), "r");
  ASSERT_NE(file, nullptr);
  char line[64];
  ASSERT_EQ(fgets_safe(line, sizeof line, file), line);
  EXPECT_STREQ(line, "first line\n");
  ASSERT_NE(fgets_safe(line, 5, file), nullptr);
  EXPECT_STREQ(line, "seco");  // cut at the buffer size as fgets does
  ASSERT_NE(fgets_safe(line, sizeof line, file), nullptr);
  EXPECT_STREQ(line, "nd\n");
  ASSERT_NE(fgets_safe(line, sizeof line, file), nullptr);
  EXPECT_STREQ(line, "last without newline");
  errno = EBADF;
  EXPECT_EQ(fgets_safe(line, sizeof line, file), nullptr);
  EXPECT_EQ(errno, 0) << "errno is cleared before each attempt";
  fclose(file);
}

volatile sig_atomic_t interruptions = 0;
void CountInterruption(int) { interruptions = interruptions + 1; }

// In a child: a timer signal without SA_RESTART interrupts the read of a pipe
// whose writer waits before writing. Exit codes: 0 the line arrived, 1 it did
// not, 2 nothing interrupted the read, 3 setup failed.
int ReadPipeUnderSignals(char* (*reader)(char*, int, FILE*)) {
  int fds[2];
  if (pipe(fds) != 0) return 3;
  pid_t writer = fork();
  if (writer == 0) {
    close(fds[0]);
    usleep(300 * 1000);
    const char text[] = "line after a pause\n";
    ssize_t ignored = write(fds[1], text, sizeof text - 1);
    (void)ignored;
    _exit(0);
  }
  close(fds[1]);
  struct sigaction action;
  std::memset(&action, 0, sizeof action);
  action.sa_handler = CountInterruption;
  sigemptyset(&action.sa_mask);
  action.sa_flags = 0;
  sigaction(SIGALRM, &action, nullptr);
  struct itimerval timer = {{0, 40 * 1000}, {0, 40 * 1000}};
  setitimer(ITIMER_REAL, &timer, nullptr);

  FILE* stream = fdopen(fds[0], "r");
  char line[64];
  char* got = reader(line, sizeof line, stream);

  struct itimerval off = {{0, 0}, {0, 0}};
  setitimer(ITIMER_REAL, &off, nullptr);
  waitpid(writer, nullptr, 0);
  if (interruptions == 0) return 2;
  return got != nullptr && std::strcmp(line, "line after a pause\n") == 0 ? 0 : 1;
}

TEST(FgetsSafe, GoesOnAfterInterruptedReads) {
  mmfs_test::ChildResult result = mmfs_test::RunInChild([] { return ReadPipeUnderSignals(fgets_safe); });
  ASSERT_TRUE(result.exited);
  EXPECT_EQ(result.exit_code, 0);
}

TEST(FgetsSafe, PlainFgetsGivesUpInTheSameSituation) {
  // Shows that the situation above does interrupt the read.
  mmfs_test::ChildResult result = mmfs_test::RunInChild([] { return ReadPipeUnderSignals(fgets); });
  ASSERT_TRUE(result.exited);
  EXPECT_EQ(result.exit_code, 1);
}

}  // namespace
