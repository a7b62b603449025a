// The process-wide data search path: an ordered, duplicate-free list of
// expanded directories in which data files are looked up by name. It starts as
// "." followed by the kitbase default data path. Results are 0 or -1;
// messages go to errHand_mmfile.
//
//   mmfile_path_add("$USERDATA/panoply:/opt/data");
//   char* path = NULL;
//   if (mmfile_find("atoms.dat", 0, &path) == 0) { load(path); free(path); }
#ifndef MMFILESHARED_MMFILE_SEARCH_PATH_H
#define MMFILESHARED_MMFILE_SEARCH_PATH_H

#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

// One directory of the search path. `dir` is malloc-owned; the flags record
// how the item was added and are only printed.
typedef struct search_path_item {
  char* dir;
  int cwd;   // added by mmfile_path_add_cwd
  int home;  // added by mmfile_path_add_home
  struct search_path_item* next;
} search_path_item;

// The list in insertion order, and the item in which the last lookup
// succeeded (null after a miss or an absolute name).
typedef struct search_path_type {
  search_path_item* first;
  search_path_item* found;
} search_path_type;

// Empties the list (the default entries are not restored); 0.
int mmfile_path_clear(void);
// Clears, then adds; the add's result.
int mmfile_path_set(const char* path);
// Adds each ":"-separated component, expanded and with backslashes made
// slashes, unless already present. -1 (level 4) for a null or empty path.
int mmfile_path_add(const char* path);
// Adds the working directory as it is now; -1 when it cannot be read.
int mmfile_path_add_cwd(void);
// Adds the home directory; 0.
int mmfile_path_add_home(void);
// *path receives the directories joined by ":" (malloc'd, the caller frees);
// an empty list gives an empty string. 0.
int mmfile_path_get(char** path);
// Prints the list, one numbered item a line; 0.
int mmfile_path_print(FILE* stream);
// Prints `path` as mmfile_path_print does; the last fprintf's result.
int print_search_path(FILE* stream, search_path_type* path);

// 0 when `name` is found: an absolute name is tested as it stands, a relative
// one in each directory in turn. type 0 wants a regular file, 1 a directory.
int mmfile_exists(const char* name, int type);
// As mmfile_exists; on success *path receives the full path (malloc'd).
int mmfile_find(const char* name, int type, char** path);
// 0 when that one literal path exists with the wanted type, else -1.
int mmfile_file_exists(const char* path, int type);

#ifdef __cplusplus
}  // extern "C"

#include <string>

// Two search-path lists as one: a, ":", b; either alone when the other is
// empty.
std::string join_path(std::string a, std::string b);
#endif

#endif  // MMFILESHARED_MMFILE_SEARCH_PATH_H
