// Shared set-up of the file-subsystem tests: a private home and
// application-data directory under a temporary folder, capture of the
// subsystem's messages, and directories of an exact path length.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

#include "mmerr/capture.h"
#include "mmerr/mmerr.h"
#include "mmfile/mmfile.h"
#include "support/test_support.h"

namespace mmfile_test {

// HOME and the application-data directory point into a fresh temporary
// folder, so that no test touches the real user's files.
class FileTestEnv {
 public:
  FileTestEnv() { mkdir(home().c_str(), 0755); }
  const std::string& root() const { return dir_.path(); }
  std::string operator/(const std::string& relative) const { return dir_ / relative; }
  std::string appdata() const { return dir_ / "appdata"; }
  std::string home() const { return dir_ / "home"; }

 private:
  mmfs_test::TempDir dir_;
  mmfs_test::ScopedEnv home_{"HOME", dir_ / "home"};
  mmfs_test::ScopedEnv appdata_{"MORVELLANTH_APPDATA_OVERRIDE", dir_ / "appdata"};
  mmfs_test::ScopedEnv tmpdir_{"MORVELLANTH_TMPDIR"};
};

// Captures every message of errHand_mmfile from INFO up (the handle's own
// threshold would drop the INFO notes) and puts the threshold back after.
class FileMessages {
 public:
  FileMessages() {
    mmerr_get_level(errHand_mmfile, &saved_level_);
    mmerr_level(errHand_mmfile, MMERR_LEVEL_INFO);
  }
  ~FileMessages() { mmerr_level(errHand_mmfile, saved_level_); }
  // The messages since the last call.
  std::string getMessages() { return capture_.getMessages(); }

 private:
  morvellanth::mmlibs::CaptureMMErr capture_ = mmfile_capture_mmerr();
  int saved_level_ = MMERR_LEVEL_WARNING;
};

// The text of a malloc'ed result, which is freed; "<null>" for none.
inline std::string Take(char* text) {
  std::string result = text ? text : "<null>";
  free(text);
  return result;
}

inline bool IsDirectory(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// What the call throws, or "<no exception>".
template <typename Call>
std::string Thrown(Call call) {
  try {
    call();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "<no exception>";
}

// Makes nested directories from `path` down to one whose path is exactly
// `length` characters long (no component empty); returns that path.
inline std::string MakeDirOfLength(std::string path, std::size_t length) {
  for (mkdir(path.c_str(), 0755); path.size() < length; mkdir(path.c_str(), 0755)) {
    const std::size_t room = length - path.size() - 1;  // after the "/"
    path += "/" + std::string(room == 201 ? 150 : std::min<std::size_t>(room, 200), 'd');
  }
  return path;
}

// Enters a directory; the previous working directory comes back at the end.
class ScopedCwd {
 public:
  explicit ScopedCwd(const std::string& dir) {
    if (chdir(dir.c_str()) != 0) ADD_FAILURE() << "cannot enter " << dir;
  }
  ~ScopedCwd() {
    if (chdir(saved_.c_str()) != 0) ADD_FAILURE() << "cannot return to " << saved_;
  }

 private:
  std::string saved_ = std::filesystem::current_path().string();
};

}  // namespace mmfile_test
