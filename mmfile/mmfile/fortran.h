// Fortran-callable twins of the file functions. Every argument is passed by
// reference; the declared length of each CHARACTER argument follows the
// visible arguments, in their order. Inputs are trimmed of trailing blanks,
// outputs blank-padded; status receives the plain function's result (-1 too
// when an output does not fit its field) and is also returned.
//
//   character(len=256) :: path
//   call mmfilef_find('atoms.dat', 0, path, status)
#ifndef MMFILESHARED_MMFILE_FORTRAN_H
#define MMFILESHARED_MMFILE_FORTRAN_H

#ifdef __cplusplus
extern "C" {
#endif

int mmfilef_initialize_(int* ignored, int* status);  // status 0
void mmfilef_terminate_(void);
int mmfilef_path_clear_(int* status);
int mmfilef_path_set_(const char* path, int* status, int path_length);
int mmfilef_path_get_(char* path, int* status, int path_length);
int mmfilef_path_add_(const char* path, int* status, int path_length);
int mmfilef_path_add_cwd_(int* status);
int mmfilef_path_add_home_(int* status);
// Converts the path in place; inputs over 1024 characters are refused.
int mmfilef_path_localize_(char* path, int* status, int path_length);
int mmfilef_find_(const char* name, const int* type, char* path, int* status, int name_length,
                  int path_length);
int mmfilef_dir_expand_(const char* input, char* output, int* status, int input_length,
                        int output_length);
int mmfilef_exists_(const char* name, const int* type, int* status, int name_length);
int mmfilef_path_is_absolute_(const char* path, int* status, int path_length);
int mmfilef_dos_to_unix_(const char* path, int* status, int path_length);
int mmfilef_dos_to_unix_register_(const char* path, int* status, int path_length);
int mmfilef_dos_to_unix_convert_(int* status);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // MMFILESHARED_MMFILE_FORTRAN_H
