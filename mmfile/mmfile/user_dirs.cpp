// The user's home, application-data, release, temporary, desktop and documents
// directories.
#include "mmfile/user_dirs.h"

#include <sys/stat.h>

#include <QByteArray>
#include <QDir>
#include <QString>
#include <boost/filesystem/path.hpp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

#include "mmerr/mmerr.h"
#include "mmfile/directory_tree.h"
#include "mmfile/mmfile.h"
#include "mmfile/mmfile_internal.h"
#include "mmfile/releases.h"

namespace {

constexpr mode_t kUserDirMode = 0755;
constexpr const char* kSupportPage = "https://www.morvellanth.com/support";

// Home joined with `leaf` by the file-system join.
char* home_child(const char* leaf) {
  const boost::filesystem::path joined = boost::filesystem::path(morvellanth::path::home()) / leaf;
  return strdup(joined.string().c_str());
}

// Makes *dir (mode 0755) when missing; on failure frees and clears it.
int make_or_drop(char** dir) {
  if (*dir && mmfile_mkdir(*dir, kUserDirMode) == 0) return 0;
  free(*dir);
  *dir = nullptr;
  return -1;
}

// Calls a status function and turns its string into a std::string; throws
// `message` on failure or an empty result.
std::string string_from(int (*get)(char**), const char* message) {
  char* dir = nullptr;
  const int status = get(&dir);
  std::string result = dir ? dir : "";
  free(dir);
  if (status != 0 || result.empty()) throw std::runtime_error(message);
  return result;
}

}  // namespace

namespace morvellanth::path {

std::string home() { return QDir::homePath().toStdString(); }

std::string morvellanth_dir() {
  return QString::fromLocal8Bit(qgetenv("MORVELLANTH")).toStdString();
}

}  // namespace morvellanth::path

int mmfile_morvellanth_appdata_dir(char** dir) {
  if (const char* override_dir = getenv("MORVELLANTH_APPDATA_OVERRIDE"))
    *dir = strdup(override_dir);
  else
    *dir = home_child(".morvellanth");
  return make_or_drop(dir);
}

int mmfile_morvellanth_local_appdata_dir(char** dir) { return mmfile_morvellanth_appdata_dir(dir); }

int mmfile_morvellanth_userdata_dir(char** dir) {
  *dir = nullptr;
  return mmfile_morvellanth_appdata_dir(dir);
}

int mmfile_get_appdata_release_dir(char** dir) {
  char* appdata = nullptr;
  const int status = mmfile_morvellanth_appdata_dir(&appdata);
  if (status != 0) {
    *dir = nullptr;
    return status;
  }
  const std::size_t size = strlen(appdata) + 51;
  *dir = static_cast<char*>(malloc(size));
  if (!*dir) {
    free(appdata);
    return -1;
  }
  snprintf(*dir, size, "%s%c%s", appdata, '/', MMFILE_CURRENT_RELEASE);
  free(appdata);
  struct stat st;
  if (stat(*dir, &st) == 0) return 0;
  // A release directory that cannot be made is reported through the null
  // string, not the status: callers of this older interface test the string.
  make_or_drop(dir);
  return 0;
}

int mmfile_appdata_release_dir(char** dir) {
  mmlog_deprecation_warning(__FILE__, __LINE__, "mmfile_appdata_release_dir",
                            "%s function is deprecated for %s\n", "mmfile_appdata_release_dir",
                            "mmfile_get_appdata_release_dir");
  return mmfile_get_appdata_release_dir(dir);
}

int mmfile_get_desktop_dir(char** dir) {
  *dir = home_child("Desktop");
  return 0;
}

int mmfile_get_mydocuments_dir(char** dir) {
  *dir = home_child("Documents");
  return 0;
}

int mmfile_get_mynetworkplaces_dir(char** dir) {
  *dir = nullptr;
  return 0;
}

int mmfile_get_morvellanth_temp(char** dir) {
  *dir = nullptr;
  if (const char* tmpdir = getenv("MORVELLANTH_TMPDIR")) {
    *dir = strdup(tmpdir);
    return make_or_drop(dir);
  }
  char* appdata = nullptr;
  if (mmfile_morvellanth_local_appdata_dir(&appdata) != 0) {
    morvellanth::mmfile_internal::failure(
        "mmfile_get_morvellanth_temp: Unable to get local appdata directory\n");
    return -1;
  }
  char buffer[1024];
  const int length = snprintf(buffer, sizeof buffer, "%s%s%s", appdata, "/", "tmp");
  free(appdata);
  if (length < 0 || static_cast<std::size_t>(length) >= sizeof buffer) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_FATAL, "MMFILE: buffer too small for intended use\n");
    return -1;
  }
  *dir = strdup(buffer);
  return make_or_drop(dir);
}

int mmfile_get_morvellanth_support_error_mesg(char** message) {
  if (!message) return -1;
  const std::string text = std::string("Please report this problem at ") + kSupportPage +
                           ", and upload the following files, to help us diagnose this problem:";
  *message = strdup(text.c_str());
  return *message ? 0 : -1;
}

std::string mmfile_get_directory_path(DirectoryName which) {
  constexpr const char* kFailure = "Failure from method getting path";
  switch (which) {
    case HOME: {
      std::string home = morvellanth::path::home();
      if (home.empty()) throw std::runtime_error(kFailure);
      return home;
    }
    case APPDATA:
    case LOCAL_APPDATA:
    case USERDATA:
      return string_from(mmfile_morvellanth_appdata_dir, kFailure);
    case TEMP:
      return string_from(mmfile_get_morvellanth_temp, kFailure);
    case DESKTOP:
      return string_from(mmfile_get_desktop_dir, kFailure);
    case DOCUMENTS:
      return string_from(mmfile_get_mydocuments_dir, kFailure);
    case NETWORK_PLACES:
    default:
      throw std::runtime_error(kFailure);
  }
}

std::string mmfile_get_appdata_release_dir_path() {
  return string_from(mmfile_get_appdata_release_dir, "Failure getting the appdata/release directory");
}

std::string mmfile_get_config_dir() {
  return (boost::filesystem::path(morvellanth::path::morvellanth_dir()) / "config").string();
}
