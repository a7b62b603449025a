// The working directory and a process-wide stack of saved working directories,
// for running code inside another directory and coming back. Results are 0 or
// -1; out-strings are malloc'd and freed by the caller.
//
//   mmfile_dir_current_push();
//   mmfile_dir_current_set("$USERDATA/kitbase");
//   ...
//   mmfile_dir_current_pop();
#ifndef MMFILESHARED_MMFILE_DIR_STACK_H
#define MMFILESHARED_MMFILE_DIR_STACK_H

#ifdef __cplusplus
extern "C" {
#endif

// *dir receives the working directory; -1 (level 5 message, *dir null) when it
// cannot be read.
int mmfile_dir_current_get(char** dir);
// Expands dir (at most 1023 characters) and changes into it; -1 when too long,
// the expansion fails or is empty, or chdir fails.
int mmfile_dir_current_set(const char* dir);
// Saves the working directory on the stack; -1 when it cannot be read.
int mmfile_dir_current_push(void);
// Changes back to the last saved directory and drops it whatever the change
// gave; -1 with a level 3 message on an empty stack.
int mmfile_dir_current_pop(void);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // MMFILESHARED_MMFILE_DIR_STACK_H
