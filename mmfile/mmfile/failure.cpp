// The subsystem's error handle and the helpers every file of it shares.
#include <cctype>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "mmerr/mmerr.h"
#include "mmfile/mmfile.h"
#include "mmfile/mmfile_internal.h"

// The default handle until an application hands the subsystem one of its own.
int errHand_mmfile = -1;

namespace morvellanth::mmfile_internal {

void failure(const char* format, ...) {
  const int saved_errno = errno;
  if (!format) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_WARNING, "mmfile_failure():");
    errno = saved_errno;
    return;
  }
  char text[1024];
  va_list args;
  va_start(args, format);
  vsnprintf(text, sizeof text, format, args);
  va_end(args);
  mmerr_throw(errHand_mmfile, MMERR_LEVEL_WARNING, "%s", text);
  errno = saved_errno;
}

std::string format_string(const char* format, ...) {
  va_list args;
  va_start(args, format);
  va_list again;
  va_copy(again, args);
  const int length = vsnprintf(nullptr, 0, format, args);
  va_end(args);
  std::string text;
  if (length > 0) {
    text.resize(static_cast<std::size_t>(length));
    vsnprintf(text.data(), text.size() + 1, format, again);
  }
  va_end(again);
  return text;
}

bool is_absolute(const char* path) {
  if (!path || !path[0]) return false;
  if (path[0] == '/' || path[0] == '\\') return true;
  return std::isalpha(static_cast<unsigned char>(path[0])) && path[1] == ':';
}

void backslashes_to_slashes(char* path) {
  for (; *path; ++path)
    if (*path == '\\') *path = '/';
}

void backslashes_to_slashes(std::string& path) {
  for (char& c : path)
    if (c == '\\') c = '/';
}

char** dos_files() {
  static char* slots[kDosFileSlots];
  return slots;
}

void clear_dos_files() {
  char** slots = dos_files();
  for (int i = 0; i < kDosFileSlots; ++i) {
    free(slots[i]);
    slots[i] = nullptr;
  }
}

}  // namespace morvellanth::mmfile_internal
