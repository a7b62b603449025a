// Quoting of a file name for a shell command line: the shell takes the result
// as one word in which the wildcards * and ? keep their meaning.
//
//   char name[1024] = "my file*.txt";
//   if (mmcommon_prepare_str_for_shell(name, sizeof name) == 0) ...
//   // name is now "my file"*".txt" (quotes included)
#ifndef MMFILESHARED_MMCOMMON_SHELL_WORD_H
#define MMFILESHARED_MMCOMMON_SHELL_WORD_H

// Longest result (NUL included) mmcommon_prepare_str_for_shell builds.
#define MMCOMMON_SHELL_WORD_BUFFER_SIZE 1024

#ifdef __cplusplus
extern "C" {
#endif

// Rewrites text in place: each double quote gets a backslash, and every run
// of characters other than * and ? is put between double quotes. size is the
// capacity of text; the result's characters must fit it, and a NUL follows
// them when room is left (a result exactly size long has none). Returns 0, or
// -1 with text unchanged for a null or empty text, a text ending in / or \,
// a text of length + 2 above size, an escaped text of length + 1 above size,
// or a result above size or above MMCOMMON_SHELL_WORD_BUFFER_SIZE - 1.
int mmcommon_prepare_str_for_shell(char* text, int size);

#ifdef __cplusplus
}
#endif

#endif  // MMFILESHARED_MMCOMMON_SHELL_WORD_H
