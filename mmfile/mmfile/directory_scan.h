// Numbered directory scans: open a directory, optionally set a regular
// expression that names must match, read names one at a time, close. Scan
// numbers are 0-based and reused after closing.
//
//   int scan;
//   char name[256];
//   if (mmfile_open_directory(&scan, dir) == 0) {
//     mmfile_set_dir_filter(scan, "\\.mae$");
//     while (mmfile_get_next_file(scan, name, sizeof name - 1) == 0) ...
//     mmfile_close_directory(scan);
//   }
#ifndef MMFILESHARED_MMFILE_DIRECTORY_SCAN_H
#define MMFILESHARED_MMFILE_DIRECTORY_SCAN_H

#ifdef __cplusplus
extern "C" {
#endif

// Reserves a free scan record (the highest-numbered free one, else a new one)
// and stores its number; 0.
int directory_search_new(int* scan);
// Opens a scan of `path`. When the directory cannot be opened, "opendir:
// Unable to open" is printed on standard output, *scan is -1 and the result -1.
int mmfile_open_directory(int* scan, const char* path);
// Names must match `expression` (unanchored) from now on; an empty expression
// changes nothing. -1 (level 3) when it does not compile or for a bad scan.
int mmfile_set_dir_filter(int scan, const char* expression);
// Copies the next name (not "." or "..", matching the filter) into `name`
// with strncpy, unterminated when it fills all `length` bytes. -2 at the end
// of the directory; -1 when the name is longer than `length` (it is then
// skipped for good) or for a bad scan.
int mmfile_get_next_file(int scan, char* name, int length);
// Closes the scan and frees its record; -1 (warning) for a bad number.
int mmfile_close_directory(int scan);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // MMFILESHARED_MMFILE_DIRECTORY_SCAN_H
