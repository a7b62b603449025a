// The suite's products: their installed directories directly under the
// installation root (MORVELLANTH), named product-vMAJOR.MINOR, their version
// numbers, and paths inside them.
//
//   std::string kitbase = morvellanth::path::product_dir("kitbase");
#ifndef MMFILESHARED_MMFILE_PRODUCT_DIRS_H
#define MMFILESHARED_MMFILE_PRODUCT_DIRS_H

#ifdef __cplusplus
extern "C" {
#endif

// *dir receives the installation root joined with the first entry (in scan
// order) named like "<product>-v7.2"; -1 when the root cannot be scanned or
// nothing matches.
int mmfile_find_product_dir(const char* product, char** dir);
// Stores the product's version from the version table; -1 for an unknown
// product (*version is then untouched).
int mmfile_get_product_version(const char* product, int* version);

#ifdef __cplusplus
}  // extern "C"

#include <string>
#include <unordered_set>
#include <vector>

// Files of the panoply scripts menu.
enum PanoplyScriptsPathType : int {
  USER_MENU_FILE = 1,      // release directory/panoply/scriptsx.mnu
  USER_SCRIPTS_DIR = 2,    // release directory/scriptsx
  SHARED_MENU_FILE = 3,    // kitbase directory/python/common/scriptsx.mnu
  SHARED_SCRIPTS_DIR = 4,  // kitbase directory/python/common
};

// As mmfile_find_product_dir; std::runtime_error "Failure getting the product
// directory" on failure or an empty result.
std::string mmfile_get_product_dir_path(const std::string& product);
// The path of that kind; std::runtime_error "Invalid script path type
// specified." for an unknown kind, or the error of the directory it needs.
std::string mmfile_get_panoply_scripts_path(PanoplyScriptsPathType type);
// The products of the version table, alphabetically.
std::vector<std::string> mmfile_get_product_directory_names();

namespace morvellanth::path {
// The installed directory of a product of the version table; std::out_of_range
// "Invalid product: <name>" for any other name.
std::string product_dir(const std::string& product);
// panoply's directory, "data", "res", then file (an absolute file replaces all).
std::string get_panoply_data_res_directory_file(const std::string& file);
// kitbase's directory, "data", "panoply", then file (likewise).
std::string get_kitbase_data_panoply_directory_file(const std::string& file);
}  // namespace morvellanth::path

namespace morvellanth::test {
// The products of the version table and the internal products.
std::unordered_set<std::string> get_product_names();
}  // namespace morvellanth::test
#endif

#endif  // MMFILESHARED_MMFILE_PRODUCT_DIRS_H
