// Conversions between Fortran CHARACTER arguments and C strings.
#include "mmerr/fortran_string_internal.h"

#include <cstring>

#include "mmerr/mmerr.h"

namespace morvellanth::fortran {

InputString::InputString(const char* field, int declared_length) {
  std::size_t length = 0;
  if (field && declared_length > 0) {
    const void* nul = memchr(field, '\0', static_cast<std::size_t>(declared_length));
    length = nul ? static_cast<std::size_t>(static_cast<const char*>(nul) - field)
                 : static_cast<std::size_t>(declared_length);
  }
  while (length > 0 && field[length - 1] == ' ') --length;
  text_.assign(field ? field : "", length);
}

bool StoreOutput(char* field, int field_length, const char* value) {
  if (field_length <= 0) return value[0] == '\0';
  std::size_t capacity = static_cast<std::size_t>(field_length);
  std::size_t length = strlen(value);
  std::size_t copied = length < capacity ? length : capacity;
  memcpy(field, value, copied);
  memset(field + copied, ' ', capacity - copied);
  return length <= capacity;
}

int ReportTooLong(const char* twin, const char* what, int need, int have) {
  mmerr_throw(-1, MMERR_LEVEL_FATAL, "%s: %s not long enough; need %d chars, have %d", twin, what,
              need, have);
  return -1;
}

int StoreOutputReported(const char* twin, const char* what, char* field, int field_length,
                        const char* value) {
  if (StoreOutput(field, field_length, value)) return 0;
  return ReportTooLong(twin, what, static_cast<int>(strlen(value)), field_length);
}

}  // namespace morvellanth::fortran
