// Shared set-up of the file-subsystem tests: a private home and
// application-data directory under a temporary folder, capture of the
// subsystem's messages, and directories of an exact path length.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

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
  FileTestEnv()
      : home_("HOME", dir_ / "home"),
        appdata_("MORVELLANTH_APPDATA_OVERRIDE", dir_ / "appdata"),
        tmpdir_("MORVELLANTH_TMPDIR") {
    mkdir((dir_ / "home").c_str(), 0755);
  }
  const std::string& root() const { return dir_.path(); }
  std::string operator/(const std::string& relative) const { return dir_ / relative; }
  std::string appdata() const { return dir_ / "appdata"; }
  std::string home() const { return dir_ / "home"; }

 private:
  mmfs_test::TempDir dir_;
  mmfs_test::ScopedEnv home_;
  mmfs_test::ScopedEnv appdata_;
  mmfs_test::ScopedEnv tmpdir_;
};

// Captures every message of errHand_mmfile from INFO up (the handle's own
// threshold would drop the INFO notes) and puts the threshold back after.
class FileMessages {
 public:
  FileMessages() : capture_(mmfile_capture_mmerr()) {
    mmerr_get_level(errHand_mmfile, &saved_level_);
    mmerr_level(errHand_mmfile, MMERR_LEVEL_INFO);
  }
  ~FileMessages() { mmerr_level(errHand_mmfile, saved_level_); }
  FileMessages(const FileMessages&) = delete;
  FileMessages& operator=(const FileMessages&) = delete;
  // The messages since the last call.
  std::string getMessages() { return capture_.getMessages(); }

 private:
  morvellanth::mmlibs::CaptureMMErr capture_;
  int saved_level_ = MMERR_LEVEL_WARNING;
};

// Makes nested directories below `base` so that the deepest one's path is
// exactly `length` characters long; returns that path.
inline std::string MakeDirOfLength(const std::string& base, std::size_t length) {
  std::string path = base;
  mkdir(path.c_str(), 0755);
  while (path.size() < length) {
    std::size_t room = length - path.size() - 1;  // after the "/"
    // Leave at least two characters for a last component.
    std::size_t part = room > 200 ? (room - 200 < 2 ? 150 : 200) : room;
    path += "/" + std::string(part, 'd');
    mkdir(path.c_str(), 0755);
  }
  return path;
}

// The working directory, restored when the object dies.
class ScopedCwd {
 public:
  ScopedCwd() {
    char buffer[4096];
    if (getcwd(buffer, sizeof buffer)) saved_ = buffer;
  }
  explicit ScopedCwd(const std::string& dir) : ScopedCwd() {
    if (chdir(dir.c_str()) != 0) saved_.clear();
  }
  ~ScopedCwd() {
    if (!saved_.empty() && chdir(saved_.c_str()) != 0) {
    }
  }
  ScopedCwd(const ScopedCwd&) = delete;
  ScopedCwd& operator=(const ScopedCwd&) = delete;

 private:
  std::string saved_;
};

inline std::string CurrentDir() {
  char buffer[8192];
  return getcwd(buffer, sizeof buffer) ? buffer : "";
}

}  // namespace mmfile_test
