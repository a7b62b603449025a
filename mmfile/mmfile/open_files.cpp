// The table of files opened through the search path.
#include "mmfile/open_files.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "mmerr/mmerr.h"
#include "mmfile/dir_stack.h"
#include "mmfile/mmfile.h"
#include "mmfile/mmfile_internal.h"
#include "mmfile/search_path.h"

namespace {

namespace internal = morvellanth::mmfile_internal;

struct file_info {
  char name[MMFILE_OPEN_NAME_SIZE];  // as opened, or the base name of an absolute path
  char dir[MMFILE_OPEN_DIR_SIZE];    // where it was found; may be empty
  FILE* fp;
  char mode[MMFILE_OPEN_MODE_SIZE];
};

// Records 0 .. count-1 are in use, in opening order; the rest are zero.
struct OpenFileTable {
  file_info files[MMFILE_MAX_OPEN_FILES];
  int count;
};

OpenFileTable& table() {
  static OpenFileTable instance;
  return instance;
}

void report(int level, const char* text) { mmerr_throw(errHand_mmfile, level, "%s", text); }

void report_open_error(const char* name, const char* mode) {
  if (!strchr(mode, 'r')) {
    // The wording is inverted on purpose: callers match these texts.
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_INFO, "MMFILE: unable to open file for reading: \"%s\"\n",
                name);
  } else if (strcmp(mode, "w") == 0) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_INFO, "MMFILE: unable to open file for writing: \"%s\"\n",
                name);
  } else {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_INFO, "MMFILE: unable to open file (%s): \"%s\"\n", mode,
                name);
  }
}

// The parts of a name under which it is recorded.
struct RecordParts {
  std::string name;
  std::string dir;
};

// Splits an absolute name: cut at its first newline, base name after the last
// "/", directory before it without trailing slashes ("/" when only slashes
// precede it).
RecordParts split_for_record(const char* path) {
  std::string text = path;
  text = text.substr(0, text.find('\n'));
  const std::size_t slash = text.rfind('/');
  if (slash == std::string::npos) return {text, ""};
  std::string dir = text.substr(0, slash);
  while (!dir.empty() && dir.back() == '/') dir.pop_back();
  if (dir.empty()) dir = "/";
  return {text.substr(slash + 1), dir};
}

bool fits_record(const std::string& name, const std::string& dir, const char* mode) {
  return name.size() < MMFILE_OPEN_NAME_SIZE && dir.size() < MMFILE_OPEN_DIR_SIZE &&
         strlen(mode) < MMFILE_OPEN_MODE_SIZE;
}

// Records (or re-records) an open stream. The caller has checked that the
// texts fit their fields.
void record(FILE* fp, const std::string& name, const std::string& dir, const char* mode) {
  OpenFileTable& t = table();
  if (!fp) report(MMERR_LEVEL_FATAL, "MMFILE: null file pointer\n");
  int slot = t.count;
  for (int i = 0; fp && i < t.count; ++i)
    if (t.files[i].fp == fp) slot = i;
  if (slot == MMFILE_MAX_OPEN_FILES) return;
  file_info& info = t.files[slot];
  snprintf(info.name, sizeof info.name, "%s", name.c_str());
  snprintf(info.dir, sizeof info.dir, "%s", dir.c_str());
  snprintf(info.mode, sizeof info.mode, "%s", mode);
  info.fp = fp;
  if (slot == t.count) ++t.count;
}

int find_record(FILE* fp) {
  const OpenFileTable& t = table();
  for (int i = 0; i < t.count; ++i)
    if (t.files[i].fp == fp) return i;
  return -1;
}

// A name, directory or mode longer than its field is refused before anything
// is opened.
int refuse_oversized() {
  report(MMERR_LEVEL_FATAL, "MMFILE: buffer too small for intended use\n");
  return -1;
}

int open_absolute(const char* name, FILE** fp, const char* mode) {
  const RecordParts parts = split_for_record(name);
  if (!fits_record(parts.name, parts.dir, mode)) return refuse_oversized();
  *fp = fopen(name, mode);
  if (!*fp) {
    report_open_error(name, mode);
    return -1;
  }
  if (!parts.name.empty() || !parts.dir.empty()) record(*fp, parts.name, parts.dir, mode);
  return 0;
}

int open_from_search_path(const char* name, FILE** fp, const char* mode) {
  if (mmfile_exists(name, 0) != 0) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_INFO, "MMFILE: file not found in search path: \"%s\"\n",
                name);
    return -1;
  }
  const std::string dir = internal::search_path_instance()->found->dir;
  if (!fits_record(name, dir, mode)) return refuse_oversized();
  if (mmfile_dir_current_push() != 0) return -1;
  if (chdir(dir.c_str()) == 0) *fp = fopen(name, mode);
  mmfile_dir_current_pop();
  if (!*fp) {
    report_open_error(name, mode);
    return -1;
  }
  record(*fp, name, dir, mode);
  return 0;
}

int open_in_working_directory(const char* name, FILE** fp, const char* mode) {
  char* cwd = nullptr;
  mmfile_dir_current_get(&cwd);
  if (cwd && !fits_record(name, cwd, mode)) {
    free(cwd);
    return refuse_oversized();
  }
  *fp = fopen(name, mode);
  if (!*fp) {
    free(cwd);
    report_open_error(name, mode);
    return -1;
  }
  // Without a readable working directory the stream stays open but is not
  // recorded, and the open still succeeds.
  if (cwd) record(*fp, name, cwd, mode);
  free(cwd);
  return 0;
}

}  // namespace

namespace morvellanth::mmfile_internal {
void clear_open_file_table() { memset(&table(), 0, sizeof(OpenFileTable)); }
}  // namespace morvellanth::mmfile_internal

int mmfile_open(const char* name, FILE** fp, const char* mode) {
  internal::search_path_instance();
  *fp = nullptr;
  if (table().count >= MMFILE_MAX_OPEN_FILES) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_FATAL,
                "MMFILE: attempt to have more than %d files open at once\n", MMFILE_MAX_OPEN_FILES);
    return -1;
  }
  if (!name || !mode) return -1;
  if (internal::is_absolute(name)) return open_absolute(name, fp, mode);
  if (strchr(mode, 'r')) return open_from_search_path(name, fp, mode);
  return open_in_working_directory(name, fp, mode);
}

int mmfile_close(FILE* fp) {
  internal::search_path_instance();
  if (!fp) {
    report(MMERR_LEVEL_FATAL, "MMFILE: null file pointer\n");
    return -1;
  }
  const int slot = find_record(fp);
  if (slot < 0) return -1;
  fclose(fp);
  OpenFileTable& t = table();
  memmove(&t.files[slot], &t.files[slot + 1],
          sizeof(file_info) * static_cast<std::size_t>(t.count - slot - 1));
  --t.count;
  memset(&t.files[t.count], 0, sizeof(file_info));
  return 0;
}

int mmfile_file_get_path(FILE* fp, char* buf, size_t buflen) {
  internal::search_path_instance();
  if (buf && buflen > 0) buf[0] = '\0';
  if (!fp) report(MMERR_LEVEL_FATAL, "MMFILE: null file pointer\n");
  const int slot = fp ? find_record(fp) : -1;
  if (slot < 0) {
    report(MMERR_LEVEL_FATAL, "MMFILE: file pointer does not match any open files\n");
    return -1;
  }
  const file_info& info = table().files[slot];
  if (!buf || strlen(info.dir) + strlen(info.name) + 2 > buflen) {
    report(MMERR_LEVEL_FATAL, "MMFILE: buffer too small for intended use\n");
    return -1;
  }
  snprintf(buf, buflen, "%s/%s", info.dir, info.name);
  return 0;
}
