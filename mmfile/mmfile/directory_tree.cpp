// Recursive creation and removal of directories.
#include "mmfile/directory_tree.h"

#include <sys/stat.h>
#include <unistd.h>

#include <boost/filesystem/operations.hpp>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "mmerr/mmerr.h"
#include "mmfile/dir_stack.h"
#include "mmfile/mmfile.h"
#include "mmfile/mmfile_internal.h"

namespace {

using morvellanth::mmfile_internal::failure;
using morvellanth::mmfile_internal::is_absolute;

// A relative path joined below the working directory must fit this many
// bytes, terminator included; longer joins are refused.
constexpr std::size_t kJoinedPathBytes = 1024;

// Makes `path` with 0777 less the umask; true on success, errno on failure.
bool make_one(const std::string& path, mode_t permissions) {
  return mkdir(path.c_str(), permissions) == 0;
}

// Makes the missing parents of `path` and then `path` itself, after a first
// attempt failed with ENOENT. True when `path` was made.
bool make_with_parents(const std::string& path, mode_t permissions) {
  std::vector<std::size_t> cuts;  // lengths of the shorter paths tried, longest first
  std::size_t length = path.size();
  bool made = false;
  while (!made && errno == ENOENT) {
    const std::size_t slash = path.rfind('/', length - 1);
    if (slash == std::string::npos || slash == 0) return false;
    length = slash;
    cuts.push_back(length);
    made = make_one(path.substr(0, length), permissions);
  }
  if (!made) return false;
  cuts.pop_back();
  while (!cuts.empty()) {
    if (!make_one(path.substr(0, cuts.back()), permissions)) return false;
    cuts.pop_back();
  }
  return make_one(path, permissions);
}

}  // namespace

int mmfile_mkdir(const char* path, mode_t mode) {
  if (!path) {
    failure("mmfile_mkdir: Null path\n");
    return -1;
  }
  std::string full;
  if (!is_absolute(path)) {
    char cwd[kJoinedPathBytes];
    if (!getcwd(cwd, sizeof cwd)) {
      failure("mmfile_mkdir: getcwd failed: %s: %s\n", path, strerror(errno));
      return -1;
    }
    full = std::string(cwd) + "/" + path;
    if (full.size() >= kJoinedPathBytes) {
      errno = ENAMETOOLONG;
      failure("mmfile_mkdir: mmfile_mkdir_recursive failed: %s : %s\n", full.c_str(),
              strerror(errno));
      return -1;
    }
  } else {
    full = path;
  }
  morvellanth::mmfile_internal::backslashes_to_slashes(full);

  const mode_t mask = umask(0);
  umask(mask);
  const mode_t permissions = 0777 & ~mask;
  if (make_one(full, permissions) ||
      (errno == ENOENT && make_with_parents(full, permissions))) {
    chmod(full.c_str(), mode);
    return 0;
  }
  if (errno == EEXIST) return 0;
  failure("mmfile_mkdir: mmfile_mkdir_recursive failed: %s : %s\n", full.c_str(), strerror(errno));
  return -1;
}

int mmfile_rm_recursive(const char* path) {
  if (!path) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_FATAL, "mmfile_rm_recursive: Null path.\n");
    return -1;
  }
  std::string full;
  if (!is_absolute(path)) {
    char* cwd = nullptr;
    if (mmfile_dir_current_get(&cwd) != 0 || !cwd) return -1;
    full = std::string(cwd) + "/" + path;
    free(cwd);
    if (full.size() >= kJoinedPathBytes) {
      mmerr_throw(errHand_mmfile, MMERR_LEVEL_FATAL, "MMFILE: buffer too small for intended use\n");
      return -1;
    }
  } else {
    full = path;
  }
  morvellanth::mmfile_internal::backslashes_to_slashes(full);

  struct stat st;
  if (stat(full.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
    if (stat(full.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return -1;
    if (unlink(full.c_str()) != 0) {
      failure("mmfile_rm_recursive: unlink failed: %s", full.c_str());
      return -1;
    }
    return 0;
  }
  try {
    boost::filesystem::remove_all(full);
  } catch (const boost::filesystem::filesystem_error& error) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_FATAL, "%s\n", error.what());
    return -1;
  }
  return 0;
}
