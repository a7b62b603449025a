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

namespace {

using mmfs_test::ChildResult;
using mmfs_test::RunInChild;

// The pids and uid a child reports on standard error before it is signalled.
struct Identities {
  long pid = -1;
  long sender = -1;
  long uid = -1;
};

Identities ParseIdentities(const std::string& err) {
  Identities ids;
  std::sscanf(err.c_str(), "pid=%ld sender=%ld uid=%ld", &ids.pid, &ids.sender, &ids.uid);
  return ids;
}

void ReportIdentities(long pid, long sender, long uid) {
  std::fprintf(stderr, "pid=%ld sender=%ld uid=%ld\n", pid, sender, uid);
  std::fflush(stderr);
}

// Checks "Timestamp: T (convert with date -d @T)\n" at the start of text and
// that T lies between the two times; returns what follows the line.
std::string ExpectTimestamp(const std::string& text, time_t before, time_t after) {
  std::smatch match;
  static const std::regex kLine("^Timestamp: ([0-9]+) \\(convert with date -d @([0-9]+)\\)\n");
  EXPECT_TRUE(std::regex_search(text, match, kLine)) << text;
  if (match.empty()) return "";
  EXPECT_EQ(match[1].str(), match[2].str());
  const long long stamp = std::stoll(match[1].str());
  EXPECT_GE(stamp, static_cast<long long>(before));
  EXPECT_LE(stamp, static_cast<long long>(after));
  return match.suffix().str();
}

// Checks a stack trace block and that it holds symbolised frames, one of them
// in the library itself; returns what follows the block.
std::string ExpectStackTrace(const std::string& text) {
  const std::string header = "\nStack trace:\n";
  EXPECT_EQ(text.compare(0, header.size(), header), 0) << text;
  const std::string frames = text.substr(header.size());
  static const std::regex kFrame("^.*\\[0x[0-9a-f]+\\]$", std::regex::multiline);
  auto count = std::distance(std::sregex_iterator(frames.begin(), frames.end(), kFrame),
                             std::sregex_iterator());
  EXPECT_GE(count, 3) << frames;
  EXPECT_NE(frames.find("libmmfileshared"), std::string::npos) << frames;
  EXPECT_EQ(frames.back(), '\n');
  return "";
}

const char kApplicationText[] = "application handler\n";

void ApplicationHandler(int) {
  ssize_t ignored = write(1, kApplicationText, sizeof kApplicationText - 1);
  (void)ignored;
}

void ExitingApplicationHandler(int) {
  ssize_t ignored = write(1, kApplicationText, sizeof kApplicationText - 1);
  (void)ignored;
  _exit(42);
}

void InstallApplicationHandler(int signal, void (*handler)(int)) {
  struct sigaction action;
  std::memset(&action, 0, sizeof action);
  action.sa_handler = handler;
  sigemptyset(&action.sa_mask);
  sigaction(signal, &action, nullptr);
}

// Runs in the child: has a grandchild send SIGTERM, under a real uid other
// than ours where the system lets us take one, and lets it arrive only once
// both identities are on standard error.
int ReceiveTerminationFromAnotherProcess() {
  morvellanth::add_default_signal_handler();
  sigset_t term;
  sigemptyset(&term);
  sigaddset(&term, SIGTERM);
  sigprocmask(SIG_BLOCK, &term, nullptr);
  int uid_pipe[2];
  if (pipe(uid_pipe) != 0) return 2;
  pid_t sender = fork();
  if (sender == 0) {
    // Real uid 4321 names the sender while the effective uid 0 keeps the
    // right to signal; without root, the sender stays under our own uid.
    uid_t real = setresuid(4321, 0, 0) == 0 ? 4321 : getuid();
    ssize_t ignored = write(uid_pipe[1], &real, sizeof real);
    (void)ignored;
    kill(getppid(), SIGTERM);
    _exit(0);
  }
  uid_t sender_uid = 0;
  if (read(uid_pipe[0], &sender_uid, sizeof sender_uid) != sizeof sender_uid) return 3;
  waitpid(sender, nullptr, 0);
  ReportIdentities(getpid(), sender, static_cast<long>(sender_uid));
  sigprocmask(SIG_UNBLOCK, &term, nullptr);
  return 0;  // not reached: SIGTERM ends the process
}

TEST(TerminationReport, NamesTheSenderAndEndsWithTheSignal) {
  const time_t before = time(nullptr);
  ChildResult result = RunInChild(ReceiveTerminationFromAnotherProcess);
  const time_t after = time(nullptr);

  ASSERT_TRUE(result.signaled) << "exit " << result.exit_code << "\n" << result.out;
  EXPECT_EQ(result.signal, SIGTERM);
  Identities ids = ParseIdentities(result.err);
  ASSERT_GT(ids.pid, 0) << result.err;
  ASSERT_GT(ids.sender, 0);
  EXPECT_NE(ids.sender, ids.pid);
  if (geteuid() == 0) {
    EXPECT_EQ(ids.uid, 4321) << "the sender could not take another uid";
  }
  const std::string head = "Process " + std::to_string(ids.pid) + " terminated by signal " +
                           std::to_string(SIGTERM) + " (" + strsignal(SIGTERM) +
                           ") sent by process " + std::to_string(ids.sender) + " from user " +
                           std::to_string(ids.uid) + ".\n";
  ASSERT_EQ(result.out.compare(0, head.size(), head), 0) << result.out;
  EXPECT_EQ(ExpectTimestamp(result.out.substr(head.size()), before, after), "");
}

TEST(TerminationReport, HandsOverToTheApplicationHandlerAfterTheReport) {
  ChildResult result = RunInChild([] {
    InstallApplicationHandler(SIGUSR1, ApplicationHandler);
    morvellanth::add_default_signal_handler();
    ReportIdentities(getpid(), getpid(), getuid());
    raise(SIGUSR1);
    // The earlier handler is back in force: a second signal goes to it alone.
    raise(SIGUSR1);
    return 7;
  });
  ASSERT_TRUE(result.exited) << result.out;
  EXPECT_EQ(result.exit_code, 7);
  Identities ids = ParseIdentities(result.err);
  const std::string report = "Process " + std::to_string(ids.pid) + " terminated by signal " +
                             std::to_string(SIGUSR1) + " (" + strsignal(SIGUSR1) +
                             ") sent by process " + std::to_string(ids.pid) + " from user " +
                             std::to_string(ids.uid) + ".\n";
  ASSERT_EQ(result.out.compare(0, report.size(), report), 0) << result.out;
  std::string rest = ExpectTimestamp(result.out.substr(report.size()), 0, time(nullptr));
  EXPECT_EQ(rest, std::string(kApplicationText) + kApplicationText);
}

// Starts a crash report check: the header line naming the child and signal.
std::string ExpectCrashHeader(const ChildResult& result, int signal) {
  Identities ids = ParseIdentities(result.err);
  EXPECT_GT(ids.pid, 0) << result.err;
  const std::string head = "\nProcess " + std::to_string(ids.pid) + " crashed with signal " +
                           std::to_string(signal) + " (" + strsignal(signal) + ")\n";
  EXPECT_EQ(result.out.compare(0, head.size(), head), 0) << result.out;
  return result.out.size() >= head.size() ? result.out.substr(head.size()) : "";
}

// Crashing children leave no core file behind.
void DisableCoreFiles() {
  struct rlimit none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
}

void FaultOnProtectedPage() {
  void* page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (page == MAP_FAILED) _exit(2);
  *static_cast<volatile int*>(page) = 1;
}

TEST(CrashReport, SegmentationFaultPrintsReportAndStackThenDies) {
  const time_t before = time(nullptr);
  ChildResult result = RunInChild([] {
    DisableCoreFiles();
    morvellanth::add_default_signal_handler();
    ReportIdentities(getpid(), 0, 0);
    FaultOnProtectedPage();
    return 0;
  });
  const time_t after = time(nullptr);
  ASSERT_TRUE(result.signaled) << result.out << result.err;
  EXPECT_EQ(result.signal, SIGSEGV);
  std::string rest = ExpectTimestamp(ExpectCrashHeader(result, SIGSEGV), before, after);
  ExpectStackTrace(rest);
}

TEST(CrashReport, AbortPrintsReportAndStackThenDies) {
  ChildResult result = RunInChild([] {
    DisableCoreFiles();
    morvellanth::add_default_signal_handler();
    ReportIdentities(getpid(), 0, 0);
    abort();
    return 0;
  });
  ASSERT_TRUE(result.signaled) << result.out << result.err;
  EXPECT_EQ(result.signal, SIGABRT);
  ExpectStackTrace(ExpectTimestamp(ExpectCrashHeader(result, SIGABRT), 0, time(nullptr)));
}

TEST(CrashReport, HandsOverToTheApplicationHandlerAfterTheStack) {
  ChildResult result = RunInChild([] {
    InstallApplicationHandler(SIGSEGV, ExitingApplicationHandler);
    DisableCoreFiles();
    morvellanth::add_default_signal_handler();
    ReportIdentities(getpid(), 0, 0);
    FaultOnProtectedPage();
    return 0;
  });
  ASSERT_TRUE(result.exited) << result.out << result.err;
  EXPECT_EQ(result.exit_code, 42);
  std::string rest = ExpectTimestamp(ExpectCrashHeader(result, SIGSEGV), 0, time(nullptr));
  const std::string tail = std::string("\n") + kApplicationText;
  ASSERT_GE(rest.size(), tail.size());
  EXPECT_EQ(rest.substr(rest.size() - tail.size()), tail);
  ExpectStackTrace(rest.substr(0, rest.size() - tail.size() + 1));
}

bool HasReportHandler(int signal) {
  struct sigaction current;
  sigaction(signal, nullptr, &current);
  return (current.sa_flags & SA_SIGINFO) != 0 && current.sa_sigaction != nullptr;
}

TEST(SignalHandlerInstallation, CoversAllFourteenSignals) {
  ChildResult result = RunInChild([] {
    morvellanth::add_default_signal_handler();
    int missing = 0;
    for (int signal : {SIGHUP, SIGINT, SIGTERM, SIGUSR1, SIGUSR2, SIGXCPU, SIGXFSZ, SIGABRT,
                       SIGBUS, SIGFPE, SIGILL, SIGQUIT, SIGSEGV, SIGSYS})
      if (!HasReportHandler(signal)) ++missing;
    return missing;
  });
  ASSERT_TRUE(result.exited);
  EXPECT_EQ(result.exit_code, 0) << "signals without a report handler";
}

TEST(SignalHandlerInstallation, SecondCallInstallsNothing) {
  ChildResult result = RunInChild([] {
    morvellanth::add_default_signal_handler();
    InstallApplicationHandler(SIGTERM, ApplicationHandler);
    morvellanth::add_default_signal_handler();
    struct sigaction current;
    sigaction(SIGTERM, nullptr, &current);
    if (current.sa_handler != ApplicationHandler) return 1;
    raise(SIGTERM);  // the application's handler alone: no report
    return 0;
  });
  ASSERT_TRUE(result.exited);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.out, kApplicationText);
}

TEST(PrintBacktrace, WritesTheCurrentStackOnStandardOutput) {
  ChildResult result = RunInChild([] {
    morvellanth::print_backtrace();
    return 0;
  });
  ASSERT_TRUE(result.exited);
  EXPECT_EQ(result.exit_code, 0);
  ExpectStackTrace(result.out);
  EXPECT_EQ(result.err, "");
}

TEST(GetLastError, DescribesErrnoAndClearsIt) {
  errno = ENOENT;
  EXPECT_EQ(morvellanth::get_last_error(), std::string(strerror(ENOENT)) + " (Error 2)");
  EXPECT_EQ(errno, 0);
  errno = EACCES;
  EXPECT_EQ(morvellanth::get_last_error(),
            std::string(strerror(EACCES)) + " (Error " + std::to_string(EACCES) + ")");
  EXPECT_EQ(errno, 0);
}

TEST(GetLastError, IsEmptyWithoutAnError) {
  errno = 0;
  EXPECT_EQ(morvellanth::get_last_error(), "");
  EXPECT_EQ(errno, 0);
}

}  // namespace
