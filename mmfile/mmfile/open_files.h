// Opening data files through the search path, with a table of at most 100
// open files that remembers the directory each came from. Results are 0 or
// -1; messages go to errHand_mmfile.
//
//   FILE* fp = NULL;
//   if (mmfile_open("atoms.dat", &fp, "r") == 0) { ...; mmfile_close(fp); }
#ifndef MMFILESHARED_MMFILE_OPEN_FILES_H
#define MMFILESHARED_MMFILE_OPEN_FILES_H

#include <stddef.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

// Most files recorded at once, and the sizes of a record's text fields
// (terminator included). A file whose name, directory or mode does not fit is
// not opened.
#define MMFILE_MAX_OPEN_FILES 100
#define MMFILE_OPEN_NAME_SIZE 256
#define MMFILE_OPEN_DIR_SIZE 1024
#define MMFILE_OPEN_MODE_SIZE 16

// Opens `name` with fopen `mode`. A relative name opened for reading is looked
// up in the search path and opened inside the directory it was found in;
// other relative names are opened in the working directory. *fp is null on
// failure.
int mmfile_open(const char* name, FILE** fp, const char* mode);
// Closes a stream opened by mmfile_open; -1 without closing for any other.
int mmfile_close(FILE* fp);
// buf receives the recorded directory, "/" and name; -1 (buf empty) for an
// unknown stream or when that needs more than buflen bytes.
int mmfile_file_get_path(FILE* fp, char* buf, size_t buflen);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // MMFILESHARED_MMFILE_OPEN_FILES_H
