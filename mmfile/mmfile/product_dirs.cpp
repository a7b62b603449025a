// Installed product directories and the product version table.
#include "mmfile/product_dirs.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>

#include "mmerr/mmerr.h"
#include "mmfile/directory_scan.h"
#include "mmfile/mmfile.h"
#include "mmfile/path_components.h"
#include "mmfile/user_dirs.h"

namespace {

// Product directory name: version (the integer is only stored and returned).
std::map<std::string, int> get_version_numbers() {
  return {
      {"crescentlux", 61125},
      {"docs_data",   72125},
      {"grast",       60125},
      {"harrowmere",  79125},
      {"kitbase",     72125},
      {"lumenta",     86125},
      {"orbelle",     84125},
      {"ovlo",        54125},
      {"panoply",     146125},
      {"pavane",      66125},
      {"qa",          54125},
      {"qvx",         82125},
      {"ravine",      130125},
      {"rubato",      109125},
      {"swale",       109125},
      {"tessellant",  150125},
      {"tidemark",    65125},
      {"vantor",      60125},
      {"wicke",       72125},
      {"yarl",        74125},
  };
}

const std::map<std::string, int>& version_table() {
  static const std::map<std::string, int> table = get_version_numbers();
  return table;
}

// Products installed for internal use only; they have no version entry.
constexpr const char* MORVELLANTH_INTERNAL_PRODUCTS[] = {"brightfallow", "fjord"};

// The product directory name pattern; "." deliberately matches any character.
constexpr const char* kVersionPattern = "-v[0-9]+(.[0-9]+)?$";

// Appends "/" unless the path already ends in one, then `part`.
void append_part(std::string& path, const char* part) {
  if (path.empty() || path.back() != '/') path += '/';
  path += part;
}

std::string product_data_file(const char* product, const char* first, const char* second,
                              const std::string& file) {
  std::string path = morvellanth::path::product_dir(product);
  append_part(path, first);
  append_part(path, second);
  return (std::filesystem::path(path) / file).string();
}

}  // namespace

int mmfile_find_product_dir(const char* product, char** dir) {
  *dir = nullptr;
  const std::string root = morvellanth::path::morvellanth_dir();
  int scan = -1;
  if (mmfile_open_directory(&scan, root.c_str()) != 0) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_FATAL, "Cannot open %s\n", root.c_str());
    return -1;
  }
  char filter[1024];
  const int length = snprintf(filter, sizeof filter, "^%s%s", product ? product : "", kVersionPattern);
  if (length < 0 || static_cast<std::size_t>(length) >= sizeof filter) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_FATAL, "MMFILE: buffer too small for intended use\n");
    mmfile_close_directory(scan);
    return -1;
  }
  if (mmfile_set_dir_filter(scan, filter) != 0) {
    mmfile_close_directory(scan);
    return -1;
  }
  // Entry names are shorter than 256 bytes, so every one fits this buffer.
  char name[256 + 1] = {};
  if (mmfile_get_next_file(scan, name, 256) == 0) *dir = mmfile_add_component(root.c_str(), name);
  mmfile_close_directory(scan);
  return *dir ? 0 : -1;
}

int mmfile_get_product_version(const char* product, int* version) {
  if (!product) return -1;
  const auto& table = version_table();
  const auto found = table.find(product);
  if (found == table.end()) return -1;
  *version = found->second;
  return 0;
}

std::string mmfile_get_product_dir_path(const std::string& product) {
  char* dir = nullptr;
  const int status = mmfile_find_product_dir(product.c_str(), &dir);
  std::string result = dir ? dir : "";
  free(dir);
  if (status != 0 || result.empty()) throw std::runtime_error("Failure getting the product directory");
  return result;
}

std::string mmfile_get_panoply_scripts_path(PanoplyScriptsPathType type) {
  switch (type) {
    case USER_MENU_FILE:
      return mmfile_get_appdata_release_dir_path() + "/panoply/scriptsx.mnu";
    case USER_SCRIPTS_DIR:
      return mmfile_get_appdata_release_dir_path() + "/scriptsx";
    case SHARED_MENU_FILE:
      return morvellanth::path::product_dir("kitbase") + "/python/common/scriptsx.mnu";
    case SHARED_SCRIPTS_DIR:
      return morvellanth::path::product_dir("kitbase") + "/python/common";
  }
  throw std::runtime_error("Invalid script path type specified.");
}

std::vector<std::string> mmfile_get_product_directory_names() {
  std::vector<std::string> names;
  for (const auto& entry : version_table()) names.push_back(entry.first);
  return names;
}

namespace morvellanth::path {

std::string product_dir(const std::string& product) {
  if (version_table().count(product) == 0) throw std::out_of_range("Invalid product: " + product);
  return mmfile_get_product_dir_path(product);
}

std::string get_panoply_data_res_directory_file(const std::string& file) {
  return product_data_file("panoply", "data", "res", file);
}

std::string get_kitbase_data_panoply_directory_file(const std::string& file) {
  return product_data_file("kitbase", "data", "panoply", file);
}

}  // namespace morvellanth::path

namespace morvellanth::test {

std::unordered_set<std::string> get_product_names() {
  std::unordered_set<std::string> names(std::begin(MORVELLANTH_INTERNAL_PRODUCTS),
                                        std::end(MORVELLANTH_INTERNAL_PRODUCTS));
  for (const auto& entry : version_table()) names.insert(entry.first);
  return names;
}

}  // namespace morvellanth::test
