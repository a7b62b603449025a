// Making a directory together with its missing parents, and removing a file or
// a whole directory tree. Relative paths are taken below the working
// directory; backslashes count as slashes. Results are 0 or -1.
//
//   if (mmfile_mkdir("out/run1/frames", 0750) != 0) perror("out/run1/frames");
#ifndef MMFILESHARED_MMFILE_DIRECTORY_TREE_H
#define MMFILESHARED_MMFILE_DIRECTORY_TREE_H

#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

// Makes the directory and any missing parents (parents get 0777 less the
// umask); `mode` is applied to the directory itself when it was made here.
// An existing directory (or anything of that name) gives 0 untouched. On
// failure a warning is raised on errHand_mmfile and errno is kept.
int mmfile_mkdir(const char* path, mode_t mode);

// Removes a regular file, or a directory with everything in it. A missing
// path or a special file gives -1 without a message.
int mmfile_rm_recursive(const char* path);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // MMFILESHARED_MMFILE_DIRECTORY_TREE_H
