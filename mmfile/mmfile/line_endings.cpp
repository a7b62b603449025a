// Line-ending conversion of DOS text files.
#include "mmfile/line_endings.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "mmerr/mmerr.h"
#include "mmfile/mmfile.h"
#include "mmfile/mmfile_internal.h"

namespace {

namespace internal = morvellanth::mmfile_internal;

// fgets reads at most this many bytes a piece (plus the terminator).
constexpr int kLineBytes = 1024;

int fatal(const std::string& text) {
  mmerr_throw(errHand_mmfile, MMERR_LEVEL_FATAL, "%s", text.c_str());
  return -1;
}

bool first_line_has_cr(FILE* stream) {
  char line[kLineBytes];
  return fgets(line, sizeof line, stream) && strchr(line, '\r');
}

// Copies `in` to `out` a piece at a time, replacing everything from a piece's
// last CR with one LF. When a long line puts its CR last in one piece, the LF
// that opens the next piece belongs to it and is dropped as well.
bool copy_converted(FILE* in, FILE* out) {
  char piece[kLineBytes];
  bool previous_ended_in_cr = false;
  while (fgets(piece, sizeof piece, in)) {
    const char* start = piece;
    if (previous_ended_in_cr && *start == '\n') ++start;
    const char* cr = strrchr(start, '\r');
    previous_ended_in_cr = false;
    if (cr) {
      previous_ended_in_cr = cr[1] == '\0';
      if (fwrite(start, 1, static_cast<std::size_t>(cr - start), out) !=
              static_cast<std::size_t>(cr - start) ||
          fputc('\n', out) == EOF)
        return false;
    } else if (fputs(start, out) == EOF) {
      return false;
    }
  }
  return !ferror(in);
}

}  // namespace

int mmfile_is_dosfile(const char* path) {
  FILE* stream = path ? fopen(path, "rb") : nullptr;
  if (!stream) return -1;
  const bool dos = first_line_has_cr(stream);
  fclose(stream);
  return dos ? 0 : -1;
}

int mmfile_dos_to_unix(const char* path) {
  struct stat st;
  if (!path || stat(path, &st) != 0) return 0;
  if (mmfile_is_dosfile(path) != 0) return 0;

  char* temporary = static_cast<char*>(malloc(strlen(path) + 5));
  if (!temporary)
    return fatal(internal::format_string(
        "mmfile_dos_to_unix():Failed to allocate memory for path '%s'.\n", path));
  sprintf(temporary, "%s.tmp", path);
  FILE* in = fopen(path, "rb");
  if (!in) {
    free(temporary);
    return fatal(
        internal::format_string("mmfile_dos_to_unix():Failed to open '%s' for reading.\n", path));
  }
  FILE* out = fopen(temporary, "wb");
  if (!out) {
    fclose(in);
    const int status = fatal(internal::format_string(
        "mmfile_dos_to_unix():Failed to open '%s' for writing.\n", temporary));
    free(temporary);
    return status;
  }
  const bool copied = copy_converted(in, out);
  fclose(in);
  const bool closed = fclose(out) == 0;
  // An incomplete copy must not replace the original.
  if (!copied || !closed) remove(temporary);
  if (!copied || !closed || remove(path) != 0 || rename(temporary, path) != 0) {
    const int status = fatal(internal::format_string(
        "mmfile_dos_to_unix():Failed to rename the converted file '%s' to '%s'.\n", temporary, path));
    free(temporary);
    return status;
  }
  free(temporary);
  return 0;
}

int mmfile_dos_to_unix_register(const char*) { return 0; }

int mmfile_dos_to_unix_convert(void) {
  char** slots = internal::dos_files();
  int result = 0;
  for (int i = 0; i < internal::kDosFileSlots && slots[i]; ++i) {
    char* path = slots[i];
    if (strlen(path) >= 2) {
      internal::backslashes_to_slashes(path);
      if (mmfile_dos_to_unix(path) != 0) {
        mmerr_throw(errHand_mmfile, MMERR_LEVEL_WARNING,
                    "mmfile_dos_to_unix_convert():'%s' is not a dos file.\nWill continue with the "
                    "remaining files in the list, if any.\n",
                    path);
        result = -1;
      }
    }
    free(path);
    slots[i] = nullptr;
  }
  return result;
}
