// Release names of the suite: the current release and the earlier ones whose
// user files may still be found, and their ordering.
//
//   if (compare_releases(name, "2020-1") > 0) { /* name is newer than 2020-1 */ }
#ifndef MMFILESHARED_MMFILE_RELEASES_H
#define MMFILESHARED_MMFILE_RELEASES_H

// The current release: year, dash, quarter.
#define MMFILE_CURRENT_RELEASE "2025-4"

#ifdef __cplusplus
extern "C" {
#endif

// *name receives a malloc'd copy of the current release name; always 0.
int mmfile_get_release_name(char** name);

#ifdef __cplusplus
}  // extern "C"

#include <string>
#include <vector>

// Every release from the current one back to the first, newest first (52
// names, the last being the bare year "2013"). Built once; shared, read-only.
const std::vector<std::string>& mmfile_get_past_release_names();

// 1 when a is newer than b, 0 when they rank alike, -1 when a is older. A name
// missing from the past-release list ranks older than every listed one.
int compare_releases(std::string a, std::string b);
#endif

#endif  // MMFILESHARED_MMFILE_RELEASES_H
