// mmfile: files and paths. Path expansion and the working-directory stack,
// the data search path and the table of files opened through it, the
// installation's product directories, the user's application-data, release
// and temporary directories, and file utilities (line endings, MD5, recursive
// creation and removal, directory scans). Plain functions return 0 or -1 and
// report on the error handle errHand_mmfile; the std::string functions throw.
//
//   char* path = NULL;
//   if (mmfile_find("atoms.dat", 0, &path) == 0) { load(path); free(path); }
#ifndef MMFILESHARED_MMFILE_MMFILE_H
#define MMFILESHARED_MMFILE_MMFILE_H

#ifdef __cplusplus
extern "C" {
#endif

// The error handle the subsystem reports on; -1 (the default handle) unless
// the application stores one of its own handles here.
extern int errHand_mmfile;

#ifdef __cplusplus
}  // extern "C"
#endif

#include "mmfile/dir_stack.h"
#include "mmfile/directory_scan.h"
#include "mmfile/directory_tree.h"
#include "mmfile/fortran.h"
#include "mmfile/line_endings.h"
#include "mmfile/md5.h"
#include "mmfile/open_files.h"
#include "mmfile/path_components.h"
#include "mmfile/path_expand.h"
#include "mmfile/product_dirs.h"
#include "mmfile/releases.h"
#include "mmfile/search_path.h"
#include "mmfile/user_dirs.h"

#ifdef __cplusplus
#include "mmfile/error_capture.h"
#include "mmfile/file_names.h"
#endif

#endif  // MMFILESHARED_MMFILE_MMFILE_H
