// Fatal-signal reports, exercised in real child processes: who sent a
// termination signal, crash reports with stack traces, hand-over to handlers
// installed earlier, and errno text.
#include "mmerr/signals.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <regex>
#include <string>

#include "support/test_support.h"

// The sanitizer runtime would otherwise take these signals itself and end the
// children with its own report instead of letting the library's handler and
// the default action run.
extern "C" __attribute__((used)) const char* __asan_default_options() {
  return "handle_segv=0:handle_sigbus=0:handle_abort=0:handle_sigfpe=0:handle_sigill=0";
}

// Each child writes on standard error the report it expects, with "T" for the
// time stamp: the test compares that with the report, its real time stamp
// checked against the clock and replaced by "T".
static std::string Stamped(const std::string& out) {
  static const std::regex kStamp("Timestamp: ([0-9]+) \\(convert with date -d @\\1\\)\n");
  std::smatch stamp;
  if (!std::regex_search(out, stamp, kStamp)) return out;
  EXPECT_LE(std::abs(std::stoll(stamp[1]) - time(nullptr)), 60) << out;
  return stamp.prefix().str() + "Timestamp: T\n" + stamp.suffix().str();
}

// Checks that out is head followed by a stack trace of symbolised frames.
static void ExpectStackTrace(const std::string& out, const std::string& head) {
  static const std::regex kFrame("\\[0x[0-9a-f]+\\]\n");
  EXPECT_EQ(out.rfind(head + "\nStack trace:\n", 0), 0u) << out;
  EXPECT_GE(std::distance(std::sregex_iterator(out.begin(), out.end(), kFrame),
                          std::sregex_iterator()), 3) << out;
  EXPECT_NE(out.find("libmmfileshared"), std::string::npos) << out;
}

static void ApplicationHandler(int) {
  if (write(1, "application\n", 12) != 12) abort();
}

TEST(TerminationReport, NamesTheSenderAndEndsWithTheSignal) {
  auto child = mmfs_test::RunInChild([] {
    morvellanth::add_default_signal_handler();
    if (fork() == 0) {
      // The sender names itself, then signals with real uid 4321 while the
      // effective uid 0 keeps the right to do so.
      fprintf(stderr, "Process %d terminated by signal %d (%s) sent by process %d from user %d.\n"
              "Timestamp: T\n", getppid(), SIGTERM, strsignal(SIGTERM), getpid(), 4321);
      if (setresuid(4321, 0, 0) == 0) kill(getppid(), SIGTERM);
      _exit(0);
    }
    sleep(10);  // ended by SIGTERM long before
    return 0;
  });
  ASSERT_TRUE(child.signaled) << child.out << child.err;
  EXPECT_EQ(child.signal, SIGTERM);
  EXPECT_EQ(Stamped(child.out), child.err);
}

TEST(TerminationReport, InstallsOnceAndHandsOverToTheEarlierHandler) {
  auto child = mmfs_test::RunInChild([] {
    struct sigaction action = {};
    action.sa_handler = ApplicationHandler;
    sigaction(SIGUSR1, &action, nullptr);
    morvellanth::add_default_signal_handler();
    sigaction(SIGTERM, &action, nullptr);
    morvellanth::add_default_signal_handler();  // installs nothing the second time
    raise(SIGTERM);
    fprintf(stderr, "application\nProcess %d terminated by signal %d (%s) sent by process %d from "
            "user %d.\nTimestamp: T\napplication\napplication\n", getpid(), SIGUSR1,
            strsignal(SIGUSR1), getpid(), getuid());
    raise(SIGUSR1);  // the report, then the earlier handler
    raise(SIGUSR1);  // the earlier handler alone
    return 7;
  });
  ASSERT_TRUE(child.exited) << child.out;
  EXPECT_EQ(child.exit_code, 7);
  EXPECT_EQ(Stamped(child.out), child.err);
}

TEST(CrashReport, PrintsTheStackThenDiesOfTheSignal) {
  for (int signal : {SIGSEGV, SIGABRT}) {
    auto child = mmfs_test::RunInChild([signal] {
      struct rlimit no_core = {0, 0};
      setrlimit(RLIMIT_CORE, &no_core);
      morvellanth::add_default_signal_handler();
      fprintf(stderr, "\nProcess %d crashed with signal %d (%s)\nTimestamp: T\n", getpid(), signal,
              strsignal(signal));
      if (signal == SIGABRT) abort();
      void* page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
      *static_cast<volatile int*>(page) = 1;
      return 0;
    });
    ASSERT_TRUE(child.signaled) << child.out << child.err;
    EXPECT_EQ(child.signal, signal);
    ExpectStackTrace(Stamped(child.out), child.err);
  }
}

TEST(GetLastError, DescribesErrnoAndClearsIt) {
  errno = ENOENT;
  EXPECT_EQ(morvellanth::get_last_error(), std::string(strerror(2)) + " (Error 2)");
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(morvellanth::get_last_error(), "");
}
