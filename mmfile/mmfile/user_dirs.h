// The user's directories: home, the per-user application-data tree (one
// sub-directory per release), the temporary directory, desktop and documents.
// Plain functions return 0 or -1 and hand out malloc'd strings the caller
// frees; the std::string functions throw std::runtime_error instead.
//
//   std::string prefs = mmfile_get_directory_path(APPDATA);
#ifndef MMFILESHARED_MMFILE_USER_DIRS_H
#define MMFILESHARED_MMFILE_USER_DIRS_H

#ifdef __cplusplus
extern "C" {
#endif

// The per-user application-data directory (home/.morvellanth, or the value of
// MORVELLANTH_APPDATA_OVERRIDE), made with mode 0755 when missing. On failure
// *dir is null and the result -1.
int mmfile_morvellanth_appdata_dir(char** dir);
// The same directory as mmfile_morvellanth_appdata_dir on this platform.
int mmfile_morvellanth_local_appdata_dir(char** dir);
// Clears *dir, then as mmfile_morvellanth_appdata_dir.
int mmfile_morvellanth_userdata_dir(char** dir);

// The application-data directory followed by "/" and the current release,
// made when missing. A failure to get the application-data directory returns
// -1; a failure to make the release directory leaves *dir null but returns 0,
// so callers test the string.
int mmfile_get_appdata_release_dir(char** dir);
// Deprecated name of mmfile_get_appdata_release_dir (logs the deprecation).
int mmfile_appdata_release_dir(char** dir);

// Home joined with "Desktop" / "Documents"; always 0.
int mmfile_get_desktop_dir(char** dir);
int mmfile_get_mydocuments_dir(char** dir);
// No such place on this platform: *dir is null; always 0.
int mmfile_get_mynetworkplaces_dir(char** dir);

// MORVELLANTH_TMPDIR when set, else the application-data directory followed
// by "/tmp"; made with mode 0755 when missing. -1 (and *dir null) on failure.
int mmfile_get_morvellanth_temp(char** dir);

// The sentence asking the user to report a problem to the maker's support
// page. -1 for a null argument or a failed copy.
int mmfile_get_morvellanth_support_error_mesg(char** message);

#ifdef __cplusplus
}  // extern "C"

#include <string>

// Kinds of user directory known to mmfile_get_directory_path.
enum DirectoryName : int {
  HOME = 1,
  APPDATA = 2,
  LOCAL_APPDATA = 3,
  USERDATA = 4,
  TEMP = 5,
  DESKTOP = 6,
  DOCUMENTS = 7,
  NETWORK_PLACES = 8
};

namespace morvellanth::path {
// The platform's home path, UTF-8.
std::string home();
// The installation root: the value of MORVELLANTH, empty when unset.
std::string morvellanth_dir();
}  // namespace morvellanth::path

// The directory of that kind; std::runtime_error "Failure from method getting
// path" when it cannot be had or the kind has no path here (8 and unknown).
std::string mmfile_get_directory_path(DirectoryName which);

// As mmfile_get_appdata_release_dir; std::runtime_error "Failure getting the
// appdata/release directory" on failure or an empty result.
std::string mmfile_get_appdata_release_dir_path();

// The installation root joined with "config".
std::string mmfile_get_config_dir();
#endif

#endif  // MMFILESHARED_MMFILE_USER_DIRS_H
