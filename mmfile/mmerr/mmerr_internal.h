// The error-handle record and the process-wide dispatch state shared by the
// files of the error-reporting subsystem (handles, capture, Fortran twins).
#ifndef MMFILESHARED_MMERR_INTERNAL_H
#define MMFILESHARED_MMERR_INTERNAL_H

#include <cstdint>
#include <cstdio>

// Output modes of a handle.
enum : uint32_t {
  MMERR_OUTPUT_NONE = 0,
  MMERR_OUTPUT_STREAM = 1,   // `file` holds a FILE*
  MMERR_OUTPUT_FORTRAN = 2,  // `file` holds a Fortran unit number
};

// One error handle. `file` is a stream or a Fortran unit depending on
// `output_mode`; `buffer` and `prefix` are malloc-owned or null.
struct MmerrHandler {
  bool in_use;
  uint32_t level;
  union {
    FILE* stream;
    int32_t unit;
  } file;
  int (*window)(const char* message);
  uint32_t maxlevel;
  bool accumulate;
  char* buffer;
  char* prefix;
  uint32_t output_mode;
  bool suppress_print;
};

// The record of a handle, or null for an invalid one. Handles -1 and 0 are
// built on first use and always succeed.
extern "C" MmerrHandler* get_handler_mmerr(int handle);

namespace morvellanth::mmerr_internal {

// Set while a Fortran throw is dispatched: stream output then ends with a
// newline of its own.
extern bool thrown_from_fortran;

// Whether at least one RedirectMmerrToPythonStderr object is alive.
bool python_redirect_active();

// Writes text to the embedded interpreter's sys.stderr when an interpreter is
// initialised in this process; returns false (nothing written) otherwise.
bool write_to_python_stderr(const char* text, bool add_newline);

}  // namespace morvellanth::mmerr_internal

// Fortran line writers (compiled from Fortran): one record of `length`
// characters to `unit`, and one empty record.
extern "C" int fprint_line_(const int* unit, const char* text, const int* length);
extern "C" int fskip_line_(const int* unit);

#endif  // MMFILESHARED_MMERR_INTERNAL_H
