// Path expansion and the platform's path constants: `~`, `~user` and `$NAME`
// references become literal paths ($USERDATA, $APPDATA and $LOCAL_APPDATA name
// the application-data directory), separators are converted, absolute paths
// recognised. Results are 0 or -1; out-strings are malloc'd, the caller frees.
//
//   char* path = NULL;
//   if (mmfile_dir_expand("$USERDATA/kitbase/~notes", &path) == 0) use(path);
//   free(path);
#ifndef MMFILESHARED_MMFILE_PATH_EXPAND_H
#define MMFILESHARED_MMFILE_PATH_EXPAND_H

#ifdef __cplusplus
extern "C" {
#endif

// Nothing to set up or tear down (the search path sets itself up); 0.
int mmfile_initialize(void);
void mmfile_terminate(void);

// *home receives a copy of the user's home directory; always 0.
int mmfile_dir_home(char** home);
// *home receives that user's home directory from the password database; -1
// (with a warning) for an empty or unknown name.
int mmfile_dir_user_home(const char* user, char** home);

// Expands buf in place. Inputs over 1024 characters are refused; the output
// may hold `size` characters plus the terminator, so buf must have size + 1
// bytes. -1 when the output does not fit (buf then holds the part built so
// far), for a null or empty input, or when a `~user` or application-data
// reference failed (the rest is still expanded).
int mmfile_dir_expand_buffer(char* buf, int size);
// As mmfile_dir_expand_buffer without length limits; *out receives a new
// allocation (also on a -1 from a failed reference), or null.
int mmfile_dir_expand(const char* in, char** out);

// 0 when path starts with "/" or "\", or with a letter and ":"; else -1.
int mmfile_path_is_absolute(const char* path);

// In-place separator conversion of the whole string: -1 for a null path, a
// size below 2 or an empty string. localize converts to this platform's "/".
int mmfile_path_to_unix(char* path, int size);
int mmfile_path_to_windows(char* path, int size);
int mmfile_path_localize(char* path, int size);

// The file separator, '/'.
char mmfile_get_filesep_char(void);
char _mmfile_get_filesep_char(void);

// Entry `index` (0..9) of the constant table: 0 the separator, 1 the empty
// string, 2..9 the products' default data search paths. Null otherwise.
const char* mmfile_get_constant(int index);
const char* _mmfile_get_constant(int index);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // MMFILESHARED_MMFILE_PATH_EXPAND_H
