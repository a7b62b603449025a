// The user's application-data, release and temporary directories, the
// installation root, and the directories of installed products.
#include "mmfile/user_dirs.h"

#include <gtest/gtest.h>

#include <string>

#include "file_test_env.h"
#include "mmfile/product_dirs.h"

using namespace mmfile_test;
using mmfs_test::ScopedEnv;

TEST(UserDirs, EnvironmentOverridesAreMadeAndReturned) {
  FileTestEnv env;
  ScopedEnv appdata("MORVELLANTH_APPDATA_OVERRIDE", env / "deep/er/appdata"), tmp("MORVELLANTH_TMPDIR", env / "t/u");
  ScopedEnv root("MORVELLANTH", "/opt/morvellanth");
  EXPECT_EQ(mmfile_get_directory_path(APPDATA), env / "deep/er/appdata");
  EXPECT_EQ(mmfile_get_directory_path(TEMP), env / "t/u");
  EXPECT_TRUE(IsDirectory(env / "deep/er/appdata") && IsDirectory(env / "t/u"));
  EXPECT_EQ(mmfile_get_config_dir(), "/opt/morvellanth/config");
}

TEST(UserDirs, DefaultsLieInHomeAndTheApplicationDataDirectory) {
  FileTestEnv env;
  EXPECT_EQ(mmfile_get_directory_path(TEMP), env.appdata() + "/tmp");
  EXPECT_EQ(mmfile_get_appdata_release_dir_path(), env.appdata() + "/2025-4");
  EXPECT_TRUE(IsDirectory(env.appdata() + "/tmp") && IsDirectory(env.appdata() + "/2025-4"));
  EXPECT_EQ(Thrown([] { mmfile_get_directory_path(static_cast<DirectoryName>(0)); }), "Failure from method getting path");
  ScopedEnv no_override("MORVELLANTH_APPDATA_OVERRIDE");
  EXPECT_EQ(mmfile_get_directory_path(APPDATA), env.home() + "/.morvellanth");
  EXPECT_TRUE(IsDirectory(env.home() + "/.morvellanth"));
}

TEST(UserDirs, DirectoriesBelowARegularFileFail) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "plain", "x");
  char* dir = reinterpret_cast<char*>(1);
  FileMessages messages;
  const std::string failed = "WARNING mmfile_mkdir: mmfile_mkdir_recursive failed: " + env.root();
  {
    ScopedEnv tmp("MORVELLANTH_TMPDIR", env / "plain/tmp");
    EXPECT_EQ(Thrown([] { mmfile_get_directory_path(TEMP); }), "Failure from method getting path");
    EXPECT_EQ(messages.getMessages(), failed + "/plain/tmp : Not a directory\n");
  }
  ScopedEnv appdata("MORVELLANTH_APPDATA_OVERRIDE", env / "plain/appdata");
  EXPECT_EQ(mmfile_morvellanth_appdata_dir(&dir), -1);
  EXPECT_EQ(dir, nullptr);
  EXPECT_EQ(messages.getMessages(), failed + "/plain/appdata : Not a directory\n");
  EXPECT_EQ(mmfile_get_morvellanth_temp(&dir), -1);
  // A file of the application-data name counts as present: only the release directory fails.
  ScopedEnv file_appdata("MORVELLANTH_APPDATA_OVERRIDE", env / "plain");
  EXPECT_EQ(mmfile_get_appdata_release_dir(&dir), 0);
  EXPECT_EQ(dir, nullptr);
  EXPECT_EQ(Thrown([] { mmfile_get_appdata_release_dir_path(); }), "Failure getting the appdata/release directory");
}

TEST(ProductDirs, VersionedDirectoriesUnderTheInstallationRoot) {
  FileTestEnv env;
  const std::string root = env / "install";
  ScopedEnv morvellanth("MORVELLANTH", root);
  mkdir(root.c_str(), 0755);
  for (const char* name : {"kitbase-notes", "kitbasex-v1", "old-kitbase-v1", "kitbase-v7.2", "panoply-v146",
                           "orbelle-v8x4", "qvx-v", "qvx-v7.", "qvx-v7.2.1", "qvx-7.2"})
    mkdir((root + "/" + name).c_str(), 0755);
  char* dir = nullptr;
  EXPECT_EQ(mmfile_find_product_dir("kitbase", &dir), 0);
  EXPECT_EQ(Take(dir), root + "/kitbase-v7.2");
  EXPECT_EQ(mmfile_get_product_dir_path("orbelle"), root + "/orbelle-v8x4");  // any minor separator
  EXPECT_EQ(Thrown([] { mmfile_get_product_dir_path("qvx"); }), "Failure getting the product directory");
}

TEST(ProductDirs, MissingRootIsPrintedAndRaised) {
  FileTestEnv env;
  ScopedEnv morvellanth("MORVELLANTH", env / "install");
  const auto child = mmfs_test::RunInChild([] {
    char* dir = nullptr;
    return mmfile_find_product_dir("kitbase", &dir) == -1 && !dir ? 0 : 1;
  });
  EXPECT_EQ(child.exit_code, 0);
  EXPECT_EQ(child.out, "opendir: Unable to open \"" + env / "install" + "\"\n");
  EXPECT_EQ(child.err, "FATAL Cannot open " + env / "install" + "\n");
}
