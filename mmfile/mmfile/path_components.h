// Splitting and joining paths at "/". Every string handed out is malloc'd and
// owned by the caller, who releases it with mmfile_free_component_string.
//
//   char* dir = NULL;
//   char* file = NULL;
//   mmfile_parse_path("data/atoms.dat", &dir, &file);  // "data", "atoms.dat"
#ifndef MMFILESHARED_MMFILE_PATH_COMPONENTS_H
#define MMFILESHARED_MMFILE_PATH_COMPONENTS_H

#ifdef __cplusplus
extern "C" {
#endif

// What follows the last "/" (the whole path without one); null for a null or
// empty path.
char* mmfile_get_last_component(const char* path);
// The path cut at its last "/" (empty without one); null for a null or empty
// path.
char* mmfile_remove_component(const char* path);
// path + "/" + component with exactly one "/" between them; either alone when
// the other is null or empty; null when both are.
char* mmfile_add_component(const char* path, const char* component);
// Splits at the last "/" (after cutting at the first line feed): *directory
// without trailing slashes ("/" for a file at the root) and *file; a part that
// is absent stays null.
void mmfile_parse_path(const char* path, char** directory, char** file);
// Frees a string from the functions above; null is ignored.
void mmfile_free_component_string(char* text);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // MMFILESHARED_MMFILE_PATH_COMPONENTS_H
