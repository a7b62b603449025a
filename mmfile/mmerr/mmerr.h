// mmerr: numbered error handles and the message dispatcher.
//
// Every subsystem reports through an error handle: -1 is the process-wide
// default (standard error), 0 the deprecation handle, 1 and up come from
// mmerr_new. A message thrown at a level at or above the handle's threshold is
// decorated with the handle's prefix and the level word and sent to the
// handle's stream, Fortran unit or callback. "Throw" means report: nothing
// unwinds. Unless said otherwise, functions return 1 on success and 0 on
// failure (an invalid handle or a failed write or allocation).
//
//   int h;
//   mmerr_new(&h);
//   mmerr_file(h, stderr);
//   mmerr_throw(h, MMERR_LEVEL_WARNING, "cannot open %s\n", name);
#ifndef MMFILESHARED_MMERR_H
#define MMFILESHARED_MMERR_H

#include <stdarg.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

// Severity levels; any level above 6 prints as "LEVEL UNDEFINED".
enum {
  MMERR_LEVEL_BUMMER = 0,
  MMERR_LEVEL_OK = 1,
  MMERR_LEVEL_DEBUG = 2,
  MMERR_LEVEL_INFO = 3,
  MMERR_LEVEL_WARNING = 4,
  MMERR_LEVEL_FATAL = 5,
  MMERR_LEVEL_OFF = 6
};

// Size of the dispatcher's message buffer; longer messages are cut.
#define MMERR_MESSAGE_BUFFER_SIZE 10240
// Longest prefix mmerr_prefix accepts.
#define MMERR_MAX_PREFIX_LENGTH 511

// Makes a handle that prints nowhere until mmerr_file gives it a stream; the
// lowest free number is reused. *handle is -1 until it succeeds.
int mmerr_new(int* handle);
// Frees a user handle. Handles 0 and -1 are refused with a warning on -1;
// invalid handles are ignored.
void mmerr_delete(int handle);

// Formats a message (printf rules) and dispatches it; see mmerr_vthrow.
int mmerr_throw(int handle, int level, const char* format, ...)
#ifdef __GNUC__
    __attribute__((format(printf, 3, 4)))
#endif
    ;
// Records the level in the handle's maxlevel (levels 0..6 only); when the
// level reaches the threshold, prints prefix, level word, a blank and the
// message (cut at MMERR_MESSAGE_BUFFER_SIZE bytes), calls the window callback
// and appends to the capture buffer.
int mmerr_vthrow(int handle, int level, const char* format, va_list args);

int mmerr_level(int handle, int level);          // sets the threshold
int mmerr_get_level(int handle, int* level);     // reads the threshold
int mmerr_maxlevel(int handle, int* maxlevel);   // worst level since the last clear
int mmerr_errclear(int handle);                  // maxlevel back to 1, capture buffer freed

// Sends the handle's messages to a stream; a null stream turns printing off.
int mmerr_file(int handle, FILE* file);
// Sets (or, with null, clears) a callback called with every printed message;
// a callback result of -1 makes the throw fail.
int mmerr_window(int handle, int (*callback)(const char* message));
// Copies the text put before the level word. A prefix longer than
// MMERR_MAX_PREFIX_LENGTH is refused and leaves the handle without prefix.
int mmerr_prefix(int handle, const char* prefix);

int mmerr_suppress_print(int handle);            // stop printing (capture goes on)
int mmerr_restore_print(int handle);             // print again
int mmerr_print_state(int handle, int* printing);  // 1 printing, 0 suppressed

// "MMERR_" and the level word for levels 0..7, "(bogus MMERR level)" for any
// other. The text lives in one of ten static buffers used in rotation, so the
// last ten results stay valid.
char* mmerr_return_code(int level);

// Writes "Assert failed.  File: %s  Line: %d\n" to standard error when
// condition is 0. Never aborts.
void mmerr_assert(int condition, const char* file, int line);

// Reports a deprecated call once per (file pointer, line) on handle 0 at level
// 4, only when MORVELLANTH_DEPRECATION_WARNING was set when first asked and no
// MmerrSuppressDeprecation is alive. `what` and `file` become part of the
// format. Always returns 1.
int mmlog_deprecation_warning(const char* file, int line, const char* what,
                              const char* format, ...);

// Fortran-callable twins: every argument by reference.
void mmerrf_new_(int* handle, int* status);
void mmerrf_delete_(int* handle);
void mmerrf_level_(int* handle, int* level, int* status);
void mmerrf_get_level_(int* handle, int* level, int* status);
void mmerrf_maxlevel_(int* handle, int* maxlevel, int* status);
// A unit of 0 or more makes the handle write records to that Fortran unit; a
// negative unit turns printing off.
void mmerrf_file_(int* handle, int* unit, int* status);
// prefix is a 20-character field, trimmed to its text and one trailing blank.
void mmerrf_prefix_(int* handle, char* prefix, int* status);
// message is an 80-character field; its first 79 characters are thrown
// unchanged and used as the format.
void mmerrf_throw_(int* handle, int* level, char* message, int* status);
// text is a 20-character field, blank-padded.
void mmerrf_return_code_(int* level, char* text);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // MMFILESHARED_MMERR_H
