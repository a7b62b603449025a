// Fortran-callable twins of the file functions. Their messages go to the
// default handle -1, named after the twin.
#include "mmfile/fortran.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "mmerr/fortran_string_internal.h"
#include "mmerr/mmerr.h"
#include "mmfile/line_endings.h"
#include "mmfile/path_expand.h"
#include "mmfile/search_path.h"

namespace {

using morvellanth::fortran::InputString;
using morvellanth::fortran::ReportTooLong;
using morvellanth::fortran::StoreOutput;
using morvellanth::fortran::StoreOutputReported;

constexpr int kLocalizeChars = 1024;

int finish(int* status, int value) {
  *status = value;
  return value;
}

// Stores a malloc'd result (freed here) into the field: the function's status,
// or -1 when the result does not fit.
int store_result(const char* twin, int status, char* result, char* field, int field_length) {
  if (status == 0 && StoreOutputReported(twin, "fpath", field, field_length, result) != 0)
    status = -1;
  free(result);
  return status;
}

}  // namespace

int mmfilef_initialize_(int*, int* status) { return finish(status, 0); }

void mmfilef_terminate_(void) { mmfile_terminate(); }

int mmfilef_path_clear_(int* status) {
  const int result = mmfile_path_clear();
  if (result != 0)
    mmerr_throw(-1, MMERR_LEVEL_FATAL, "%s: mmfile_path_clear() fails\n", "mmfilef_path_clear_");
  return finish(status, result);
}

int mmfilef_path_set_(const char* path, int* status, int path_length) {
  const InputString cpath(path, path_length);
  const int result = mmfile_path_set(cpath.c_str());
  if (result != 0)
    mmerr_throw(-1, MMERR_LEVEL_FATAL, "mmfilef_path_set: mmfile_path_set() fails, cpath = '%s'\n",
                cpath.c_str());
  return finish(status, result);
}

int mmfilef_path_get_(char* path, int* status, int path_length) {
  constexpr const char* kTwin = "mmfilef_path_get_";
  char* value = nullptr;
  const int result = mmfile_path_get(&value);
  if (result != 0) {
    mmerr_throw(-1, MMERR_LEVEL_FATAL, "%s: mmfile_path_get() fails\n", kTwin);
    free(value);
    return finish(status, result);
  }
  return finish(status, store_result(kTwin, result, value, path, path_length));
}

int mmfilef_path_add_(const char* path, int* status, int path_length) {
  const InputString cpath(path, path_length);
  const int result = mmfile_path_add(cpath.c_str());
  if (result != 0)
    mmerr_throw(-1, MMERR_LEVEL_FATAL, "%s: mmfile_path_add(), cpath= '%s'\n", "mmfilef_path_add_",
                cpath.c_str());
  return finish(status, result);
}

int mmfilef_path_add_cwd_(int* status) {
  const int result = mmfile_path_add_cwd();
  if (result != 0)
    mmerr_throw(-1, MMERR_LEVEL_FATAL, "%s: mmfile_path_add_cwd) fails\n", "mmfilef_path_add_cwd_");
  return finish(status, result);
}

int mmfilef_path_add_home_(int* status) {
  const int result = mmfile_path_add_home();
  if (result != 0)
    mmerr_throw(-1, MMERR_LEVEL_FATAL, "%s: mmfile_path_add_home) fails\n", "mmfilef_path_add_home_");
  return finish(status, result);
}

int mmfilef_path_localize_(char* path, int* status, int path_length) {
  constexpr const char* kTwin = "mmfilef_path_localize_";
  const InputString cpath(path, path_length);
  if (cpath.size() > static_cast<std::size_t>(kLocalizeChars))
    return finish(status, ReportTooLong(kTwin, "cpath", static_cast<int>(cpath.size()), kLocalizeChars));
  char buffer[kLocalizeChars + 1];
  memcpy(buffer, cpath.c_str(), cpath.size() + 1);
  const int result = mmfile_path_localize(buffer, kLocalizeChars);
  if (result != 0) {
    mmerr_throw(-1, MMERR_LEVEL_INFO, "%s: fails, cpath=%s\n", kTwin, buffer);
    return finish(status, result);
  }
  return finish(status, StoreOutputReported(kTwin, "fpath", path, path_length, buffer));
}

int mmfilef_find_(const char* name, const int* type, char* path, int* status, int name_length,
                  int path_length) {
  constexpr const char* kTwin = "mmfilef_find_";
  const InputString cname(name, name_length);
  char* found = nullptr;
  const int result = mmfile_find(cname.c_str(), *type, &found);
  if (result != 0) {
    mmerr_throw(-1, MMERR_LEVEL_INFO, "%s: mmfile_find() fails, cname='%s', cpath=%s\n", kTwin,
                cname.c_str(), found ? found : "NULL");
    StoreOutput(path, path_length, "");
    free(found);
    return finish(status, result);
  }
  return finish(status, store_result(kTwin, result, found, path, path_length));
}

int mmfilef_dir_expand_(const char* input, char* output, int* status, int input_length,
                        int output_length) {
  constexpr const char* kTwin = "mmfilef_dir_expand_";
  const InputString cname(input, input_length);
  char* expanded = nullptr;
  const int result = mmfile_dir_expand(cname.c_str(), &expanded);
  if (result != 0) {
    mmerr_throw(-1, MMERR_LEVEL_INFO, "%s: mmfile_dir_expand() fails, cname='%s', cpath=%s\n", kTwin,
                cname.c_str(), expanded ? expanded : "NULL");
    StoreOutput(output, output_length, "");
    free(expanded);
    return finish(status, result);
  }
  return finish(status, store_result(kTwin, result, expanded, output, output_length));
}

int mmfilef_exists_(const char* name, const int* type, int* status, int name_length) {
  const InputString cname(name, name_length);
  const int result = mmfile_exists(cname.c_str(), *type);
  if (result != 0)
    mmerr_throw(-1, MMERR_LEVEL_INFO, "%s: mmfile_exists() fails, cname='%s'\n", "mmfilef_exists_",
                cname.c_str());
  return finish(status, result);
}

int mmfilef_path_is_absolute_(const char* path, int* status, int path_length) {
  const InputString cname(path, path_length);
  const int result = mmfile_path_is_absolute(cname.c_str());
  if (result != 0)
    mmerr_throw(-1, MMERR_LEVEL_INFO, "%s: mmfile_path_is_absolute() fails, cname='%s'\n",
                "mmfilef_path_is_absolute_", cname.c_str());
  return finish(status, result);
}

int mmfilef_dos_to_unix_(const char* path, int* status, int path_length) {
  const InputString cpath(path, path_length);
  return finish(status, mmfile_dos_to_unix(cpath.c_str()));
}

int mmfilef_dos_to_unix_register_(const char* path, int* status, int path_length) {
  const InputString cpath(path, path_length);
  return finish(status, mmfile_dos_to_unix_register(cpath.c_str()));
}

int mmfilef_dos_to_unix_convert_(int* status) { return finish(status, mmfile_dos_to_unix_convert()); }
