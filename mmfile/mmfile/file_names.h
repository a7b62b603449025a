// Unique file names and listing a directory's files by suffix.
//
//   std::string scratch = morvellanth::path::get_unique_temporary_file_path(".mae");
#ifndef MMFILESHARED_MMFILE_FILE_NAMES_H
#define MMFILESHARED_MMFILE_FILE_NAMES_H

#include <string>
#include <vector>

namespace morvellanth::path {

// A random name of the form hhhh-hhhh-hhhh-hhhh (lower-case hexadecimal)
// followed by `suffix`. No existing file is checked for.
std::string get_unique_file_name(const std::string& suffix);

// The temporary directory joined with a unique file name; throws as
// mmfile_get_directory_path(TEMP) does.
std::string get_unique_temporary_file_path(const std::string& suffix);

// The full paths of the regular files (links followed) directly in
// `directory` whose paths end with `suffix` (case-sensitive), in the order
// the system delivers them. Throws boost::filesystem::filesystem_error when
// the directory cannot be read.
std::vector<std::string> get_all_files_with_suffix(const std::string& directory,
                                                   const std::string& suffix);

}  // namespace morvellanth::path

#endif  // MMFILESHARED_MMFILE_FILE_NAMES_H
