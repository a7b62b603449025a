// Numbered directory scans with an optional name filter.
#include "mmfile/directory_scan.h"

#include <dirent.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "mmerr/mmerr.h"
#include "mmfile/mmfile.h"
#include "mmfile/mmfile_internal.h"
#include "mmtoken/regexp.h"

namespace {

// Entry names this long or longer end a scan (they cannot come from a
// conforming system).
constexpr std::size_t kMaxNameBytes = 256;

struct DirectoryScan {
  DIR* stream;
  regexp* filter;  // malloc'd by mm_regcomp, or null
  int in_use;
};

// mm_dirs: records are never removed; a closed one is reused.
std::vector<DirectoryScan>& mm_dirs() {
  static std::vector<DirectoryScan> scans;
  return scans;
}

// The record of an open scan, or null.
DirectoryScan* open_scan(int scan) {
  std::vector<DirectoryScan>& scans = mm_dirs();
  if (scan < 0 || static_cast<std::size_t>(scan) >= scans.size()) return nullptr;
  DirectoryScan& record = scans[static_cast<std::size_t>(scan)];
  return record.in_use && record.stream ? &record : nullptr;
}

}  // namespace

int directory_search_new(int* scan) {
  *scan = -1;
  std::vector<DirectoryScan>& scans = mm_dirs();
  int chosen = -1;
  for (std::size_t i = 0; i < scans.size(); ++i)
    if (!scans[i].in_use) chosen = static_cast<int>(i);
  if (chosen < 0) {
    scans.push_back(DirectoryScan{});
    chosen = static_cast<int>(scans.size() - 1);
  }
  scans[static_cast<std::size_t>(chosen)] = DirectoryScan{nullptr, nullptr, 0};
  *scan = chosen;
  return 0;
}

int mmfile_open_directory(int* scan, const char* path) {
  directory_search_new(scan);
  DIR* stream = path ? opendir(path) : nullptr;
  if (!stream) {
    printf("opendir: Unable to open \"%s\"\n", path ? path : "");
    *scan = -1;
    return -1;
  }
  DirectoryScan& record = mm_dirs()[static_cast<std::size_t>(*scan)];
  record.stream = stream;
  record.in_use = 1;
  return 0;
}

int mmfile_set_dir_filter(int scan, const char* expression) {
  if (!expression || !expression[0]) return 0;
  DirectoryScan* record = open_scan(scan);
  regexp* filter = record ? mm_regcomp(expression) : nullptr;
  if (!filter) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_INFO, "MMFILE: can not compile filter -> %s\n",
                expression);
    return -1;
  }
  free(record->filter);
  record->filter = filter;
  return 0;
}

int mmfile_get_next_file(int scan, char* name, int length) {
  DirectoryScan* record = open_scan(scan);
  if (!record) return -1;
  while (const struct dirent* entry = readdir(record->stream)) {
    const char* entry_name = entry->d_name;
    if (strcmp(entry_name, ".") == 0 || strcmp(entry_name, "..") == 0) continue;
    const std::size_t entry_length = strnlen(entry_name, kMaxNameBytes);
    if (entry_length >= kMaxNameBytes) {
      errno = E2BIG;
      return -2;
    }
    if (record->filter && !mm_regexec(record->filter, entry_name)) continue;
    if (length < 0 || entry_length > static_cast<std::size_t>(length)) return -1;
    strncpy(name, entry_name, static_cast<std::size_t>(length));
    return 0;
  }
  return -2;
}

int mmfile_close_directory(int scan) {
  std::vector<DirectoryScan>& scans = mm_dirs();
  if (scan < 0 || static_cast<std::size_t>(scan) >= scans.size() ||
      !scans[static_cast<std::size_t>(scan)].in_use) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_WARNING, "mmfile_close_directory(): bad dir index = %d \n",
                scan);
    return -1;
  }
  DirectoryScan& record = scans[static_cast<std::size_t>(scan)];
  if (!record.stream) return 0;
  closedir(record.stream);
  free(record.filter);
  record = DirectoryScan{nullptr, nullptr, 0};
  return 0;
}
