// Fatal-signal reports: handlers that print who ended the process, or where it
// crashed, on standard output before the signal takes its course.
//
// An application calls add_default_signal_handler() once at start-up, after
// installing any handlers of its own; those run after the report is printed.
#ifndef MMFILESHARED_MMERR_SIGNALS_H
#define MMFILESHARED_MMERR_SIGNALS_H

#include <string>

namespace morvellanth {

// Installs the report handlers for SIGHUP, SIGINT, SIGTERM, SIGUSR1, SIGUSR2,
// SIGXCPU, SIGXFSZ (who sent the signal, and when) and for SIGABRT, SIGBUS,
// SIGFPE, SIGILL, SIGQUIT, SIGSEGV, SIGSYS (when, plus a stack trace). After
// a report every previous handler is put back and the signal raised again.
// Only the first call in a process installs anything.
void add_default_signal_handler();

// Writes "\nStack trace:\n", up to 100 symbolised frames and "\n" to
// descriptor 1. Safe inside a signal handler once the handlers are installed.
void print_backtrace();

// strerror(errno) followed by " (Error N)", or "" when errno is 0; errno is
// reset to 0 in both cases.
std::string get_last_error();

}  // namespace morvellanth

#endif  // MMFILESHARED_MMERR_SIGNALS_H
