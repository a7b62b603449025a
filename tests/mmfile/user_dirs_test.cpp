// The user's application-data, release, temporary, desktop and documents
// directories and their string wrappers.
#include "mmfile/user_dirs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "file_test_env.h"
#include "mmerr/mmerr.h"
#include "mmfile/mmfile.h"

namespace {

using ::testing::HasSubstr;
using mmfile_test::FileTestEnv;
using mmfs_test::PathExists;
using mmfs_test::ScopedEnv;

bool IsDirectory(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

unsigned Permissions(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 ? st.st_mode & 07777 : 0;
}

std::string Take(char* text) {
  std::string result = text ? text : "<null>";
  free(text);
  return result;
}

TEST(AppdataDir, OverrideIsCreatedAndReturnedExactly) {
  FileTestEnv env;
  ScopedEnv override_dir("MORVELLANTH_APPDATA_OVERRIDE", env / "deep/er/appdata");
  char* dir = nullptr;
  EXPECT_EQ(mmfile_morvellanth_appdata_dir(&dir), 0);
  EXPECT_EQ(Take(dir), env / "deep/er/appdata");
  EXPECT_TRUE(IsDirectory(env / "deep/er/appdata"));
  EXPECT_EQ(Permissions(env / "deep/er/appdata"), 0755u);
}

TEST(AppdataDir, DefaultsToDotMorvellanthInHome) {
  FileTestEnv env;
  ScopedEnv no_override("MORVELLANTH_APPDATA_OVERRIDE");
  char* dir = nullptr;
  EXPECT_EQ(mmfile_morvellanth_appdata_dir(&dir), 0);
  EXPECT_EQ(Take(dir), env.home() + "/.morvellanth");
  EXPECT_TRUE(IsDirectory(env.home() + "/.morvellanth"));
}

TEST(AppdataDir, LocalAndUserdataNameTheSameDirectory) {
  FileTestEnv env;
  char* local = nullptr;
  char* user = reinterpret_cast<char*>(1);
  EXPECT_EQ(mmfile_morvellanth_local_appdata_dir(&local), 0);
  EXPECT_EQ(mmfile_morvellanth_userdata_dir(&user), 0);
  EXPECT_EQ(Take(local), env.appdata());
  EXPECT_EQ(Take(user), env.appdata());
}

TEST(AppdataDir, BelowARegularFileFailsWithNullAndWarning) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "plain", "x");
  ScopedEnv override_dir("MORVELLANTH_APPDATA_OVERRIDE", env / "plain/appdata");
  mmfile_test::FileMessages capture;
  char* dir = reinterpret_cast<char*>(1);
  EXPECT_EQ(mmfile_morvellanth_appdata_dir(&dir), -1);
  EXPECT_EQ(dir, nullptr);
  EXPECT_EQ(capture.getMessages(), "WARNING mmfile_mkdir: mmfile_mkdir_recursive failed: " + env.root() +
                                       "/plain/appdata : Not a directory\n");
}

TEST(ReleaseDir, IsAppdataSlashCurrentReleaseAndIsMade) {
  FileTestEnv env;
  char* dir = nullptr;
  EXPECT_EQ(mmfile_get_appdata_release_dir(&dir), 0);
  EXPECT_EQ(Take(dir), env.appdata() + "/2025-4");
  EXPECT_TRUE(IsDirectory(env.appdata() + "/2025-4"));
  EXPECT_EQ(mmfile_get_appdata_release_dir_path(), env.appdata() + "/2025-4");
}

TEST(ReleaseDir, UnmakeableReleaseDirGivesZeroWithNullAndTheWrapperThrows) {
  FileTestEnv env;
  // An existing file of the application-data name counts as present, so only
  // the release directory below it fails.
  mmfs_test::WriteFile(env.appdata(), "not a directory");
  char* dir = reinterpret_cast<char*>(1);
  EXPECT_EQ(mmfile_get_appdata_release_dir(&dir), 0);
  EXPECT_EQ(dir, nullptr);
  try {
    mmfile_get_appdata_release_dir_path();
    FAIL() << "no exception";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Failure getting the appdata/release directory");
  }
}

TEST(ReleaseDir, AppdataFailureIsReturnedAsItIs) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "plain", "x");
  ScopedEnv override_dir("MORVELLANTH_APPDATA_OVERRIDE", env / "plain/a");
  mmfile_test::FileMessages capture;
  char* dir = reinterpret_cast<char*>(1);
  EXPECT_EQ(mmfile_get_appdata_release_dir(&dir), -1);
  EXPECT_EQ(dir, nullptr);
}

TEST(ReleaseDir, DeprecatedNameForwardsAndLogsItsDeprecation) {
  FileTestEnv env;
  ScopedEnv warn("MORVELLANTH_DEPRECATION_WARNING", "1");
  auto child = mmfs_test::RunInChild([] {
    char* dir = nullptr;
    const int status = mmfile_appdata_release_dir(&dir);
    printf("%d %s\n", status, dir ? dir : "<null>");
    free(dir);
    return 0;
  });
  ASSERT_TRUE(child.exited);
  EXPECT_EQ(child.out, "0 " + env.appdata() + "/2025-4\n");
  EXPECT_THAT(child.err, HasSubstr("WARNING DEPRECATION for mmfile_appdata_release_dir ("));
  EXPECT_THAT(child.err, HasSubstr("mmfile_appdata_release_dir function is deprecated for "
                                   "mmfile_get_appdata_release_dir\n"));
}

TEST(TempDir, EnvironmentSettingIsMadeAndReturned) {
  FileTestEnv env;
  ScopedEnv tmp("MORVELLANTH_TMPDIR", env / "t/u");
  char* dir = nullptr;
  EXPECT_EQ(mmfile_get_morvellanth_temp(&dir), 0);
  EXPECT_EQ(Take(dir), env / "t/u");
  EXPECT_TRUE(IsDirectory(env / "t/u"));
}

TEST(TempDir, DefaultsToTmpBelowAppdata) {
  FileTestEnv env;
  char* dir = nullptr;
  EXPECT_EQ(mmfile_get_morvellanth_temp(&dir), 0);
  EXPECT_EQ(Take(dir), env.appdata() + "/tmp");
  EXPECT_TRUE(IsDirectory(env.appdata() + "/tmp"));
}

TEST(TempDir, MissingAppdataIsReported) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "plain", "x");
  ScopedEnv override_dir("MORVELLANTH_APPDATA_OVERRIDE", env / "plain/a");
  mmfile_test::FileMessages capture;
  char* dir = reinterpret_cast<char*>(1);
  EXPECT_EQ(mmfile_get_morvellanth_temp(&dir), -1);
  EXPECT_EQ(dir, nullptr);
  EXPECT_THAT(capture.getMessages(),
              HasSubstr("WARNING mmfile_get_morvellanth_temp: Unable to get local appdata "
                        "directory\n"));
}

TEST(TempDir, BelowARegularFileFails) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "plain", "x");
  ScopedEnv tmp("MORVELLANTH_TMPDIR", env / "plain/tmp");
  mmfile_test::FileMessages capture;
  char* dir = reinterpret_cast<char*>(1);
  EXPECT_EQ(mmfile_get_morvellanth_temp(&dir), -1);
  EXPECT_EQ(dir, nullptr);
}

TEST(TempDir, DefaultPathFillsTheBufferToItsLastByteButNoFurther) {
  FileTestEnv env;
  {
    // 1019 + "/tmp" = 1023 characters and the terminator: fits.
    const std::string appdata = mmfile_test::MakeDirOfLength(env.root(), 1019);
    ScopedEnv override_dir("MORVELLANTH_APPDATA_OVERRIDE", appdata);
    char* dir = nullptr;
    EXPECT_EQ(mmfile_get_morvellanth_temp(&dir), 0);
    EXPECT_EQ(Take(dir), appdata + "/tmp");
  }
  {
    const std::string appdata = mmfile_test::MakeDirOfLength(env / "b", 1020);
    ScopedEnv override_dir("MORVELLANTH_APPDATA_OVERRIDE", appdata);
    mmfile_test::FileMessages capture;
    char* dir = reinterpret_cast<char*>(1);
    EXPECT_EQ(mmfile_get_morvellanth_temp(&dir), -1);
    EXPECT_EQ(dir, nullptr);
    EXPECT_EQ(capture.getMessages(), "FATAL MMFILE: buffer too small for intended use\n");
    EXPECT_FALSE(PathExists(appdata + "/tmp"));
  }
}

TEST(HomeChildren, DesktopAndDocumentsAreJoinedToHomeWithoutBeingMade) {
  FileTestEnv env;
  char* desktop = nullptr;
  char* documents = nullptr;
  char* network = reinterpret_cast<char*>(1);
  EXPECT_EQ(mmfile_get_desktop_dir(&desktop), 0);
  EXPECT_EQ(mmfile_get_mydocuments_dir(&documents), 0);
  EXPECT_EQ(mmfile_get_mynetworkplaces_dir(&network), 0);
  EXPECT_EQ(Take(desktop), env.home() + "/Desktop");
  EXPECT_EQ(Take(documents), env.home() + "/Documents");
  EXPECT_EQ(network, nullptr);
  EXPECT_FALSE(PathExists(env.home() + "/Desktop"));
}

TEST(DirectoryPath, EachKindNamesItsDirectory) {
  FileTestEnv env;
  EXPECT_EQ(morvellanth::path::home(), env.home());
  EXPECT_EQ(mmfile_get_directory_path(HOME), env.home());
  EXPECT_EQ(mmfile_get_directory_path(APPDATA), env.appdata());
  EXPECT_EQ(mmfile_get_directory_path(LOCAL_APPDATA), env.appdata());
  EXPECT_EQ(mmfile_get_directory_path(DirectoryName::USERDATA), env.appdata());
  EXPECT_EQ(mmfile_get_directory_path(TEMP), env.appdata() + "/tmp");
  EXPECT_EQ(mmfile_get_directory_path(DESKTOP), env.home() + "/Desktop");
  EXPECT_EQ(mmfile_get_directory_path(DOCUMENTS), env.home() + "/Documents");
}

TEST(DirectoryPath, NetworkPlacesUnknownKindsAndFailuresThrow) {
  FileTestEnv env;
  for (int kind : {8, 0, 9, -1}) {
    try {
      mmfile_get_directory_path(static_cast<DirectoryName>(kind));
      ADD_FAILURE() << "no exception for " << kind;
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "Failure from method getting path");
    }
  }
  mmfs_test::WriteFile(env / "plain", "x");
  ScopedEnv override_dir("MORVELLANTH_APPDATA_OVERRIDE", env / "plain/a");
  mmfile_test::FileMessages capture;
  EXPECT_THROW(mmfile_get_directory_path(APPDATA), std::runtime_error);
}

TEST(InstallationRoot, ReadsMorvellanthAndJoinsConfig) {
  {
    ScopedEnv root("MORVELLANTH", "/opt/morvellanth");
    EXPECT_EQ(morvellanth::path::morvellanth_dir(), "/opt/morvellanth");
    EXPECT_EQ(mmfile_get_config_dir(), "/opt/morvellanth/config");
  }
  ScopedEnv unset("MORVELLANTH");
  EXPECT_EQ(morvellanth::path::morvellanth_dir(), "");
}

TEST(SupportMessage, AsksForAReportAtTheSupportPage) {
  char* message = nullptr;
  ASSERT_EQ(mmfile_get_morvellanth_support_error_mesg(&message), 0);
  const std::string text = Take(message);
  EXPECT_EQ(text.rfind("Please report this problem at https://", 0), 0u);
  EXPECT_THAT(text, ::testing::EndsWith(
                        ", and upload the following files, to help us diagnose this problem:"));
  EXPECT_EQ(mmfile_get_morvellanth_support_error_mesg(nullptr), -1);
}

TEST(ErrorCapture, CollectsTheSubsystemsMessagesAndRestoresPrinting) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "plain", "x");
  std::string captured;
  {
    auto capture = mmfile_capture_mmerr();
    EXPECT_EQ(mmfile_mkdir((env / "plain/sub").c_str(), 0755), -1);
    captured = capture.addMessagesAsDetails("cannot make it");
  }
  EXPECT_EQ(captured, "cannot make it:\n WARNING mmfile_mkdir: mmfile_mkdir_recursive failed: " +
                          env.root() + "/plain/sub : Not a directory\n");
  int printing = 0;
  mmerr_print_state(errHand_mmfile, &printing);
  EXPECT_EQ(printing, 1);
}

}  // namespace
