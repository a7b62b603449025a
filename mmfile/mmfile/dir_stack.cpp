// The working directory and the stack of saved working directories.
#include "mmfile/dir_stack.h"

#include <unistd.h>

#include <boost/filesystem/operations.hpp>
#include <boost/system/error_code.hpp>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "mmerr/mmerr.h"
#include "mmfile/mmfile.h"
#include "mmfile/mmfile_internal.h"
#include "mmfile/path_expand.h"

namespace {

// Saved working directories, oldest first; grows without limit, lives until
// process exit.
std::vector<std::string>& directory_stack() {
  static std::vector<std::string> stack;
  return stack;
}

}  // namespace

int mmfile_dir_current_get(char** dir) {
  *dir = nullptr;
  boost::system::error_code error;
  const boost::filesystem::path current = boost::filesystem::current_path(error);
  if (error) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_FATAL, "mmfile_dir_current_get: current_path %s",
                error.message().c_str());
    return -1;
  }
  *dir = strdup(current.string().c_str());
  return *dir ? 0 : -1;
}

int mmfile_dir_current_set(const char* dir) {
  constexpr int kChars = morvellanth::mmfile_internal::kPathBufferChars;
  if (!dir || strlen(dir) > kChars - 1) return -1;
  char buffer[kChars + 1];
  strcpy(buffer, dir);
  const int status = mmfile_dir_expand_buffer(buffer, kChars);
  if (status != 0) return status;
  if (!buffer[0]) return -1;
  morvellanth::mmfile_internal::backslashes_to_slashes(buffer);
  return chdir(buffer) == 0 ? 0 : -1;
}

int mmfile_dir_current_push(void) {
  char* dir = nullptr;
  if (mmfile_dir_current_get(&dir) != 0 || !dir || !dir[0]) {
    free(dir);
    return -1;
  }
  directory_stack().emplace_back(dir);
  free(dir);
  return 0;
}

int mmfile_dir_current_pop(void) {
  std::vector<std::string>& stack = directory_stack();
  if (stack.empty()) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_INFO,
                "MMFILE: attempt to pop current directory from empty stack\n");
    return -1;
  }
  const int status = mmfile_dir_current_set(stack.back().c_str());
  stack.pop_back();
  return status;
}
