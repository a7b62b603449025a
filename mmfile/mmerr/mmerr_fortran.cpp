// Fortran-callable twins of the error-handle functions. These older twins
// take fixed-width fields instead of hidden lengths.
#include <cstdarg>
#include <cstring>

#include "mmerr/fortran_string_internal.h"
#include "mmerr/mmerr.h"
#include "mmerr/mmerr_internal.h"

namespace {

constexpr int kPrefixField = 20;
constexpr int kMessageField = 80;
constexpr int kReturnCodeField = 20;

// A Fortran message is its own format: a per-cent sign in it is a directive.
int throw_fortran_text(int handle, int level, const char* format, ...) {
  va_list args;
  va_start(args, format);
  int result = mmerr_vthrow(handle, level, format, args);
  va_end(args);
  return result;
}

bool is_blank_or_nul(char c) { return (static_cast<unsigned char>(c) & ~0x20u) == 0; }

}  // namespace

extern "C" {

void mmerrf_new_(int* handle, int* status) { *status = mmerr_new(handle); }

void mmerrf_delete_(int* handle) { mmerr_delete(*handle); }

void mmerrf_level_(int* handle, int* level, int* status) {
  *status = mmerr_level(*handle, *level);
}

void mmerrf_get_level_(int* handle, int* level, int* status) {
  *status = mmerr_get_level(*handle, level);
}

void mmerrf_maxlevel_(int* handle, int* maxlevel, int* status) {
  *status = mmerr_maxlevel(*handle, maxlevel);
}

void mmerrf_file_(int* handle, int* unit, int* status) {
  MmerrHandler* handler = get_handler_mmerr(*handle);
  if (!handler) {
    *status = 0;
    return;
  }
  handler->file.unit = *unit;
  handler->output_mode = *unit >= 0 ? MMERR_OUTPUT_FORTRAN : MMERR_OUTPUT_NONE;
  *status = 1;
}

void mmerrf_prefix_(int* handle, char* prefix, int* status) {
  prefix[kPrefixField - 1] = '\0';
  char text[kPrefixField];
  memcpy(text, prefix, kPrefixField);
  int last = -1;
  for (int i = 0; i < kPrefixField - 1; ++i)
    if (!is_blank_or_nul(text[i])) last = i;
  // Keep one character (normally a blank) after the text so the level word
  // stands apart from it.
  if (last >= 0 && last < kPrefixField - 2) text[last + 2] = '\0';
  *status = mmerr_prefix(*handle, text);
}

void mmerrf_throw_(int* handle, int* level, char* message, int* status) {
  using morvellanth::mmerr_internal::thrown_from_fortran;
  thrown_from_fortran = true;
  message[kMessageField - 1] = '\0';
  *status = throw_fortran_text(*handle, *level, message);
  thrown_from_fortran = false;
}

void mmerrf_return_code_(int* level, char* text) {
  morvellanth::fortran::StoreOutput(text, kReturnCodeField, mmerr_return_code(*level));
}

}  // extern "C"
