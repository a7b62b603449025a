// Conversion of text files with carriage-return line endings to plain line
// feeds, in place (through a "<path>.tmp" sibling). A file counts as such when
// its first line holds a carriage return.
//
//   if (mmfile_is_dosfile(path) == 0) mmfile_dos_to_unix(path);
#ifndef MMFILESHARED_MMFILE_LINE_ENDINGS_H
#define MMFILESHARED_MMFILE_LINE_ENDINGS_H

#ifdef __cplusplus
extern "C" {
#endif

// 0 when the file's first line holds a carriage return; -1 otherwise or when
// it cannot be opened.
int mmfile_is_dosfile(const char* path);
// Rewrites the file with every CR LF (in fact: everything from a line's last
// CR) as LF. 0 also when the file is missing or not a DOS file; -1 (level 5)
// when the rewrite fails.
int mmfile_dos_to_unix(const char* path);
// Accepts a path for later conversion but records nothing; 0.
int mmfile_dos_to_unix_register(const char* path);
// Converts every registered path; 0, or -1 when any failed.
int mmfile_dos_to_unix_convert(void);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // MMFILESHARED_MMFILE_LINE_ENDINGS_H
