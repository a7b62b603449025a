// Report handlers for terminating and crashing signals; see signals.h.
//
// The handlers only call async-signal-safe functions (plus backtrace, whose
// unwinder is loaded ahead of time) and build their text with safe_format in
// fixed stack buffers.
#include "mmerr/signals.h"

#include <execinfo.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <map>

#include "mmerr/safe_format.h"

namespace morvellanth {

namespace {

// Signals that end a process on request, in installation order.
constexpr int kTerminationSignals[] = {SIGHUP, SIGINT, SIGTERM, SIGUSR1,
                                       SIGUSR2, SIGXCPU, SIGXFSZ};
// Signals of a crash, in installation order.
constexpr int kCrashSignals[] = {SIGABRT, SIGBUS, SIGFPE, SIGILL,
                                 SIGQUIT, SIGSEGV, SIGSYS};

constexpr int kMaxFrames = 100;
// Report buffers: the fixed text, five numbers of at most 20 characters and a
// signal name cut at kMaxNameLength stay well inside them.
constexpr int kReportSize = 1024;
constexpr size_t kMaxNameLength = 256;
// Longest command name the kernel keeps, plus its newline.
constexpr int kCommandNameSize = 32;

struct SignalHandler {
  std::string name;             // strsignal text, taken at installation
  struct sigaction previous;    // what was installed before
};

// Every handled signal with the action it replaced. Filled once by
// add_default_signal_handler and never changed afterwards, so the handlers
// look names up without allocating; a non-empty table means "installed".
std::map<int, SignalHandler> handlers;

const char* signal_name(int signal) {
  auto entry = handlers.find(signal);
  return entry == handlers.end() ? "" : entry->second.name.c_str();
}

char* append_name(char* out, const char* name) {
  for (size_t i = 0; i < kMaxNameLength && name[i] != '\0'; ++i) *out++ = name[i];
  return out;
}

void write_all(const char* text, size_t length) {
  while (length > 0) {
    ssize_t written = write(1, text, length);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    text += written;
    length -= static_cast<size_t>(written);
  }
}

char* append_timestamp(char* out, time_t now) {
  out = safe_format(out, "Timestamp: ");
  out = safe_format(out, static_cast<long long>(now), 0);
  out = safe_format(out, " (convert with date -d @");
  out = safe_format(out, static_cast<long long>(now), 0);
  return safe_format(out, ")\n");
}

// Puts back every action replaced by add_default_signal_handler. The table is
// kept, so a later add_default_signal_handler still installs nothing.
void reset_signal_handler() {
  for (const auto& entry : handlers) sigaction(entry.first, &entry.second.previous, nullptr);
}

// Hands the signal to whatever was installed before. A signal without an
// entry (the table is gone during exit) falls back to the default action so
// that raising it cannot come straight back here.
void pass_on(int signal) {
  if (handlers.find(signal) == handlers.end()) {
    struct sigaction fallback;
    std::memset(&fallback, 0, sizeof fallback);
    fallback.sa_handler = SIG_DFL;
    sigemptyset(&fallback.sa_mask);
    sigaction(signal, &fallback, nullptr);
  }
  reset_signal_handler();
  raise(signal);
}

void write_stack_trace() {
  static const char kHeader[] = "\nStack trace:\n";
  write_all(kHeader, sizeof kHeader - 1);
  void* frames[kMaxFrames];
  int count = backtrace(frames, kMaxFrames);
  backtrace_symbols_fd(frames, count, 1);
  write_all("\n", 1);
}

// Reads the sender's command name from /proc; a vanished sender leaves it empty.
void read_command_name(pid_t pid, char (&name)[kCommandNameSize]) {
  name[0] = '\0';
  char path[64];
  char* end = safe_format(path, "/proc/");
  end = safe_format(end, static_cast<long long>(pid), 0);
  end = safe_format(end, "/comm");
  *end = '\0';
  int fd = open(path, O_RDONLY | O_CLOEXEC);
  if (fd < 0) return;
  ssize_t length = read(fd, name, kCommandNameSize - 1);
  close(fd);
  if (length <= 0) return;
  if (name[length - 1] == '\n') --length;
  name[length] = '\0';
}

void handle_termination(int signal, siginfo_t* info, void* /*context*/) {
  const int saved_errno = errno;
  const pid_t sender = info != nullptr ? info->si_pid : 0;
  const uid_t sender_uid = info != nullptr ? info->si_uid : 0;
  char command[kCommandNameSize];
  read_command_name(sender, command);
  const time_t now = time(nullptr);

  char report[kReportSize];
  char* end = safe_format(report, "Process ");
  end = safe_format(end, static_cast<long long>(getpid()), 0);
  end = safe_format(end, " terminated by signal ");
  end = safe_format(end, static_cast<long long>(signal), 0);
  end = safe_format(end, " (");
  end = append_name(end, signal_name(signal));
  end = safe_format(end, ") sent by process ");
  end = safe_format(end, static_cast<long long>(sender), 0);
  end = safe_format(end, " from user ");
  end = safe_format(end, static_cast<long long>(sender_uid), 0);
  end = safe_format(end, ".\n");
  end = append_timestamp(end, now);
  write_all(report, static_cast<size_t>(end - report));

  pass_on(signal);
  errno = saved_errno;
}

void handle_crash(int signal, siginfo_t* /*info*/, void* /*context*/) {
  const int saved_errno = errno;
  const time_t now = time(nullptr);

  char report[kReportSize];
  char* end = safe_format(report, "\nProcess ");
  end = safe_format(end, static_cast<long long>(getpid()), 0);
  end = safe_format(end, " crashed with signal ");
  end = safe_format(end, static_cast<long long>(signal), 0);
  end = safe_format(end, " (");
  end = append_name(end, signal_name(signal));
  end = safe_format(end, ")\n");
  end = append_timestamp(end, now);
  write_all(report, static_cast<size_t>(end - report));
  write_stack_trace();

  pass_on(signal);
  errno = saved_errno;
}

void record(int signal) {
  SignalHandler& entry = handlers[signal];
  const char* name = strsignal(signal);
  entry.name = name != nullptr ? name : "";
  std::memset(&entry.previous, 0, sizeof entry.previous);
}

void install(int signal, void (*handler)(int, siginfo_t*, void*)) {
  struct sigaction action;
  std::memset(&action, 0, sizeof action);
  action.sa_sigaction = handler;
  action.sa_flags = SA_SIGINFO;
  sigemptyset(&action.sa_mask);
  sigaction(signal, &action, &handlers[signal].previous);
}

}  // namespace

void add_default_signal_handler() {
  if (!handlers.empty()) return;
  // The first backtrace loads the unwinder, which allocates: do it now rather
  // than inside a crash.
  void* frames[kMaxFrames];
  backtrace(frames, kMaxFrames);
  // The table is complete before the first handler can run, so no handler
  // ever sees it change shape.
  for (int signal : kTerminationSignals) record(signal);
  for (int signal : kCrashSignals) record(signal);
  for (int signal : kTerminationSignals) install(signal, handle_termination);
  for (int signal : kCrashSignals) install(signal, handle_crash);
}

void print_backtrace() { write_stack_trace(); }

std::string get_last_error() {
  const int code = errno;
  std::string text;
  if (code != 0) {
    char number[24];
    char* end = safe_format(number, static_cast<long long>(code), 0);
    text = std::string(strerror(code)) + " (Error " + std::string(number, end) + ")";
  }
  errno = 0;
  return text;
}

}  // namespace morvellanth
