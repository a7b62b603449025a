// Installed product directories under the installation root, the version
// table and paths inside products.
#include "mmfile/product_dirs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <stdexcept>
#include <string>

#include "file_test_env.h"
#include "mmfile/mmfile.h"

namespace {

using ::testing::HasSubstr;
using mmfile_test::FileTestEnv;
using mmfs_test::ScopedEnv;

// A fake installation root with the given entries as directories.
class ProductRoot : public ::testing::Test {
 protected:
  void MakeProducts(std::initializer_list<const char*> names) {
    mkdir(root_.c_str(), 0755);
    for (const char* name : names) mkdir((root_ + "/" + name).c_str(), 0755);
  }
  std::string Find(const char* product, int* status) {
    char* dir = nullptr;
    *status = mmfile_find_product_dir(product, &dir);
    std::string result = dir ? dir : "<null>";
    free(dir);
    return result;
  }

  FileTestEnv env_;
  std::string root_ = env_ / "install";
  ScopedEnv morvellanth_{"MORVELLANTH", root_};
};

TEST_F(ProductRoot, FindsTheVersionedDirectoryOfTheProduct) {
  MakeProducts({"kitbase-notes", "kitbasex-v1", "panoply-v146", "kitbase-v7.2", "old-kitbase-v1"});
  int status = 0;
  EXPECT_EQ(Find("kitbase", &status), root_ + "/kitbase-v7.2");
  EXPECT_EQ(status, 0);
  EXPECT_EQ(Find("panoply", &status), root_ + "/panoply-v146");
  EXPECT_EQ(status, 0);
}

TEST_F(ProductRoot, MinorVersionSeparatorMatchesAnyCharacter) {
  MakeProducts({"kitbase-v7x2"});
  int status = -1;
  EXPECT_EQ(Find("kitbase", &status), root_ + "/kitbase-v7x2");
  EXPECT_EQ(status, 0);
}

TEST_F(ProductRoot, NoMatchingEntryGivesMinusOne) {
  MakeProducts({"kitbase-v", "kitbase-v7.", "kitbase-v7.2.1", "kitbase-7.2"});
  mmfile_test::FileMessages capture;
  int status = 0;
  EXPECT_EQ(Find("kitbase", &status), "<null>");
  EXPECT_EQ(status, -1);
  EXPECT_EQ(capture.getMessages(), "");
}

TEST_F(ProductRoot, MissingRootIsPrintedAndRaised) {
  auto child = mmfs_test::RunInChild([&] {
    char* dir = nullptr;
    return mmfile_find_product_dir("kitbase", &dir) == -1 && !dir ? 0 : 1;
  });
  ASSERT_TRUE(child.exited);
  EXPECT_EQ(child.exit_code, 0);
  EXPECT_EQ(child.out, "opendir: Unable to open \"" + root_ + "\"\n");
  EXPECT_EQ(child.err, "FATAL Cannot open " + root_ + "\n");
}

TEST_F(ProductRoot, RootThatIsARegularFileCannotBeScanned) {
  mmfs_test::WriteFile(root_, "x");
  auto child = mmfs_test::RunInChild([&] {
    char* dir = nullptr;
    return mmfile_find_product_dir("kitbase", &dir) == -1 ? 0 : 1;
  });
  EXPECT_EQ(child.exit_code, 0);
  EXPECT_EQ(child.out, "opendir: Unable to open \"" + root_ + "\"\n");
}

TEST_F(ProductRoot, ProductNameThatBreaksThePatternIsReported) {
  MakeProducts({"kitbase-v7.2"});
  mmfile_test::FileMessages capture;
  int status = 0;
  EXPECT_EQ(Find("kit(base", &status), "<null>");
  EXPECT_EQ(status, -1);
  EXPECT_THAT(capture.getMessages(),
              HasSubstr("INFO MMFILE: can not compile filter -> ^kit(base-v[0-9]+(.[0-9]+)?$\n"));
}

TEST_F(ProductRoot, FilterFillsItsBufferToTheLastByteButNoFurther) {
  MakeProducts({"kitbase-v7.2"});
  const std::size_t pattern = strlen("^") + strlen("-v[0-9]+(.[0-9]+)?$");
  mmfile_test::FileMessages capture;
  int status = 0;
  const std::string fits(1023 - pattern, 'p');
  EXPECT_EQ(Find(fits.c_str(), &status), "<null>");
  EXPECT_EQ(status, -1);
  EXPECT_EQ(capture.getMessages(), "");
  const std::string too_long(1024 - pattern, 'p');
  EXPECT_EQ(Find(too_long.c_str(), &status), "<null>");
  EXPECT_EQ(status, -1);
  EXPECT_EQ(capture.getMessages(), "FATAL MMFILE: buffer too small for intended use\n");
}

TEST_F(ProductRoot, StringWrappersReturnOrThrow) {
  MakeProducts({"kitbase-v7.2", "panoply-v146.1"});
  EXPECT_EQ(mmfile_get_product_dir_path("kitbase"), root_ + "/kitbase-v7.2");
  EXPECT_EQ(morvellanth::path::product_dir("panoply"), root_ + "/panoply-v146.1");
  try {
    mmfile_get_product_dir_path("qvx");
    FAIL() << "no exception";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Failure getting the product directory");
  }
  // fjord is an internal product but has no version entry.
  try {
    morvellanth::path::product_dir("fjord");
    FAIL() << "no exception";
  } catch (const std::out_of_range& error) {
    EXPECT_STREQ(error.what(), "Invalid product: fjord");
  }
}

TEST_F(ProductRoot, ScriptsMenuPathsLieInTheReleaseAndKitbaseDirectories) {
  MakeProducts({"kitbase-v7.2"});
  const std::string release = env_.appdata() + "/2025-4";
  EXPECT_EQ(mmfile_get_panoply_scripts_path(USER_MENU_FILE), release + "/panoply/scriptsx.mnu");
  EXPECT_EQ(mmfile_get_panoply_scripts_path(USER_SCRIPTS_DIR), release + "/scriptsx");
  EXPECT_EQ(mmfile_get_panoply_scripts_path(SHARED_MENU_FILE),
            root_ + "/kitbase-v7.2/python/common/scriptsx.mnu");
  EXPECT_EQ(mmfile_get_panoply_scripts_path(SHARED_SCRIPTS_DIR), root_ + "/kitbase-v7.2/python/common");
  try {
    mmfile_get_panoply_scripts_path(static_cast<PanoplyScriptsPathType>(5));
    FAIL() << "no exception";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Invalid script path type specified.");
  }
}

TEST_F(ProductRoot, DataFilesJoinDataAndResOrPanoplyUnlessTheFileIsAbsolute) {
  MakeProducts({"kitbase-v7.2", "panoply-v146"});
  EXPECT_EQ(morvellanth::path::get_panoply_data_res_directory_file("icons/a.png"),
            root_ + "/panoply-v146/data/res/icons/a.png");
  EXPECT_EQ(morvellanth::path::get_kitbase_data_panoply_directory_file("b.txt"),
            root_ + "/kitbase-v7.2/data/panoply/b.txt");
  EXPECT_EQ(morvellanth::path::get_kitbase_data_panoply_directory_file("/abs/b.txt"), "/abs/b.txt");
}

TEST(ProductVersions, TableHoldsEveryProductWithItsVersion) {
  const std::map<std::string, int> expected = {
      {"kitbase", 72125},     {"rubato", 109125},  {"ovlo", 54125},    {"ravine", 130125},
      {"crescentlux", 61125}, {"wicke", 72125},    {"pavane", 66125},  {"tessellant", 150125},
      {"harrowmere", 79125},  {"panoply", 146125}, {"orbelle", 84125}, {"qvx", 82125},
      {"yarl", 74125},        {"qa", 54125},       {"grast", 60125},   {"lumenta", 86125},
      {"swale", 109125},      {"vantor", 60125},   {"tidemark", 65125}, {"docs_data", 72125},
  };
  for (const auto& [product, version] : expected) {
    int found = 0;
    EXPECT_EQ(mmfile_get_product_version(product.c_str(), &found), 0) << product;
    EXPECT_EQ(found, version) << product;
  }
  const auto names = mmfile_get_product_directory_names();
  EXPECT_EQ(names.size(), expected.size());
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
  EXPECT_EQ(names.front(), "crescentlux");
  EXPECT_EQ(names.back(), "yarl");
}

TEST(ProductVersions, UnknownProductLeavesTheOutputUntouched) {
  int version = 1234;
  EXPECT_EQ(mmfile_get_product_version("fjord", &version), -1);
  EXPECT_EQ(mmfile_get_product_version("Kitbase", &version), -1);
  EXPECT_EQ(version, 1234);
}

TEST(ProductVersions, ProductNamesAddTheInternalProducts) {
  const auto names = morvellanth::test::get_product_names();
  EXPECT_EQ(names.size(), 22u);
  EXPECT_EQ(names.count("brightfallow"), 1u);
  EXPECT_EQ(names.count("fjord"), 1u);
  EXPECT_EQ(names.count("docs_data"), 1u);
}

}  // namespace
