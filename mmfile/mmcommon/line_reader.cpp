// Interrupt-proof fgets; see line_reader.h.
#include "mmcommon/line_reader.h"

#include <cerrno>

extern "C" char* fgets_safe(char* buf, int n, FILE* stream) {
  char* result;
  do {
    errno = 0;
    result = fgets(buf, n, stream);
  } while (result == nullptr && errno == EINTR);
  return result;
}
