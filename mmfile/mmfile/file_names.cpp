// Unique file names and listing by suffix.
#include "mmfile/file_names.h"

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "mmfile/user_dirs.h"

namespace morvellanth::path {

std::string get_unique_file_name(const std::string& suffix) {
  return boost::filesystem::unique_path("%%%%-%%%%-%%%%-%%%%").string() + suffix;
}

std::string get_unique_temporary_file_path(const std::string& suffix) {
  return (boost::filesystem::path(mmfile_get_directory_path(TEMP)) / get_unique_file_name(suffix))
      .string();
}

std::vector<std::string> get_all_files_with_suffix(const std::string& directory,
                                                   const std::string& suffix) {
  std::vector<std::string> files;
  for (const auto& entry : boost::filesystem::directory_iterator(directory)) {
    boost::system::error_code error;
    if (!boost::filesystem::is_regular_file(boost::filesystem::status(entry.path(), error))) continue;
    std::string path = (boost::filesystem::path(directory) / entry.path().filename()).string();
    if (path.size() >= suffix.size() &&
        path.compare(path.size() - suffix.size(), suffix.size(), suffix) == 0)
      files.push_back(std::move(path));
  }
  return files;
}

}  // namespace morvellanth::path
