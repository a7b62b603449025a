// Making directories with their parents, and removing files and trees.
#include "mmfile/directory_tree.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "file_test_env.h"
#include "mmfile/mmfile.h"

namespace {

using mmfile_test::FileMessages;
using mmfile_test::FileTestEnv;
using mmfile_test::ScopedCwd;
using mmfs_test::PathExists;

unsigned Permissions(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 ? st.st_mode & 07777 : 0;
}

bool IsDirectory(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// Runs the body with the process umask set to 022.
class Mkdir : public ::testing::Test {
 protected:
  void SetUp() override { saved_mask_ = umask(022); }
  void TearDown() override { umask(saved_mask_); }
  FileTestEnv env_;
  mode_t saved_mask_ = 0;
};

TEST_F(Mkdir, ExistingDirectoryKeepsItsPermissions) {
  mkdir((env_ / "d").c_str(), 0700);
  EXPECT_EQ(mmfile_mkdir((env_ / "d").c_str(), 0755), 0);
  EXPECT_EQ(Permissions(env_ / "d"), 0700u);
}

TEST_F(Mkdir, MissingParentsAreMadeAndOnlyTheLastGetsTheMode) {
  EXPECT_EQ(mmfile_mkdir((env_ / "a/b/c").c_str(), 0700), 0);
  EXPECT_EQ(Permissions(env_ / "a"), 0755u);
  EXPECT_EQ(Permissions(env_ / "a/b"), 0755u);
  EXPECT_EQ(Permissions(env_ / "a/b/c"), 0700u);
}

TEST_F(Mkdir, ModeIsAppliedPastTheUmask) {
  EXPECT_EQ(mmfile_mkdir((env_ / "open").c_str(), 0777), 0);
  EXPECT_EQ(Permissions(env_ / "open"), 0777u);
}

TEST_F(Mkdir, RelativePathsAreMadeBelowTheWorkingDirectory) {
  ScopedCwd inside(env_.root());
  EXPECT_EQ(mmfile_mkdir("r/s", 0750), 0);
  EXPECT_EQ(Permissions(env_ / "r/s"), 0750u);
  EXPECT_EQ(mmfile_mkdir("x\\y", 0755), 0);
  EXPECT_TRUE(IsDirectory(env_ / "x/y"));
  EXPECT_FALSE(PathExists(env_ / "x\\y"));
}

TEST_F(Mkdir, ExistingRegularFileCountsAsDone) {
  mmfs_test::WriteFile(env_ / "f", "x");
  EXPECT_EQ(mmfile_mkdir((env_ / "f").c_str(), 0755), 0);
}

TEST_F(Mkdir, PathBelowARegularFileFailsAndKeepsErrno) {
  mmfs_test::WriteFile(env_ / "f", "x");
  FileMessages messages;
  errno = 0;
  EXPECT_EQ(mmfile_mkdir((env_ / "f/sub/leaf").c_str(), 0755), -1);
  EXPECT_EQ(errno, ENOTDIR);
  EXPECT_EQ(messages.getMessages(), "WARNING mmfile_mkdir: mmfile_mkdir_recursive failed: " +
                                        env_.root() + "/f/sub/leaf : Not a directory\n");
}

TEST_F(Mkdir, NullPathIsReported) {
  FileMessages messages;
  EXPECT_EQ(mmfile_mkdir(nullptr, 0755), -1);
  EXPECT_EQ(messages.getMessages(), "WARNING mmfile_mkdir: Null path\n");
}

TEST_F(Mkdir, JoinedRelativePathHolds1023Characters) {
  const std::string base = mmfile_test::MakeDirOfLength(env_ / "w", 800);
  ScopedCwd inside(base);
  // base + "/" + relative: exactly 1023 characters, then 1024.
  const std::string fits = std::string(100, 'p') + "/" + std::string(1023 - 800 - 1 - 101, 'q');
  EXPECT_EQ(mmfile_mkdir(fits.c_str(), 0755), 0);
  EXPECT_TRUE(IsDirectory(base + "/" + fits));
  FileMessages messages;
  const std::string too_long = fits + "q";
  errno = 0;
  EXPECT_EQ(mmfile_mkdir(too_long.c_str(), 0755), -1);
  EXPECT_EQ(errno, ENAMETOOLONG);
  // The failure reporter formats into 1024 bytes, so the text is cut there.
  const std::string text = "mmfile_mkdir: mmfile_mkdir_recursive failed: " + base + "/" +
                           too_long + " : File name too long\n";
  EXPECT_EQ(messages.getMessages(), "WARNING " + text.substr(0, 1023));
  EXPECT_FALSE(PathExists(base + "/" + too_long));
}

TEST_F(Mkdir, AbsolutePathsAreNotBoundByTheJoinBuffer) {
  const std::string deep = mmfile_test::MakeDirOfLength(env_ / "w", 1500) + "/leaf";
  EXPECT_EQ(mmfile_mkdir(deep.c_str(), 0755), 0);
  EXPECT_TRUE(IsDirectory(deep));
}

TEST(RmRecursive, RemovesAFileOrAWholeTree) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "f", "x");
  EXPECT_EQ(mmfile_rm_recursive((env / "f").c_str()), 0);
  EXPECT_FALSE(PathExists(env / "f"));

  mkdir((env / "t").c_str(), 0755);
  mkdir((env / "t/u").c_str(), 0755);
  mmfs_test::WriteFile(env / "t/u/g", "y");
  mmfs_test::WriteFile(env / "t/.hidden", "z");
  EXPECT_EQ(mmfile_rm_recursive((env / "t").c_str()), 0);
  EXPECT_FALSE(PathExists(env / "t"));
}

TEST(RmRecursive, RelativePathsAndBackslashesAreTakenBelowTheWorkingDirectory) {
  FileTestEnv env;
  mkdir((env / "t").c_str(), 0755);
  mmfs_test::WriteFile(env / "t/g", "y");
  ScopedCwd inside(env.root());
  EXPECT_EQ(mmfile_rm_recursive("t\\g"), 0);
  EXPECT_FALSE(PathExists(env / "t/g"));
  EXPECT_EQ(mmfile_rm_recursive("t"), 0);
  EXPECT_FALSE(PathExists(env / "t"));
}

TEST(RmRecursive, MissingSpecialAndBelowFilePathsFailQuietly) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "f", "x");
  mkfifo((env / "fifo").c_str(), 0644);
  FileMessages messages;
  EXPECT_EQ(mmfile_rm_recursive((env / "missing").c_str()), -1);
  EXPECT_EQ(mmfile_rm_recursive((env / "f/below").c_str()), -1);
  EXPECT_EQ(mmfile_rm_recursive((env / "fifo").c_str()), -1);
  EXPECT_EQ(messages.getMessages(), "");
  EXPECT_TRUE(PathExists(env / "fifo"));
}

TEST(RmRecursive, NullPathIsFatal) {
  FileMessages messages;
  EXPECT_EQ(mmfile_rm_recursive(nullptr), -1);
  EXPECT_EQ(messages.getMessages(), "FATAL mmfile_rm_recursive: Null path.\n");
}

TEST(RmRecursive, JoinedRelativePathHolds1023Characters) {
  FileTestEnv env;
  const std::string base = mmfile_test::MakeDirOfLength(env / "w", 800);
  ScopedCwd inside(base);
  const std::string fits(1023 - 800 - 1, 'f');
  const std::string too_long(1024 - 800 - 1, 'f');
  mmfs_test::WriteFile(base + "/" + fits, "x");
  mmfs_test::WriteFile(base + "/" + too_long, "x");
  EXPECT_EQ(mmfile_rm_recursive(fits.c_str()), 0);
  EXPECT_FALSE(PathExists(base + "/" + fits));
  FileMessages messages;
  EXPECT_EQ(mmfile_rm_recursive(too_long.c_str()), -1);
  EXPECT_EQ(messages.getMessages(), "FATAL MMFILE: buffer too small for intended use\n");
  EXPECT_TRUE(PathExists(base + "/" + too_long));
}

TEST(RmRecursive, DeletedWorkingDirectoryGivesMinusOne) {
  FileTestEnv env;
  const std::string gone = env / "gone";
  auto child = mmfs_test::RunInChild([&] {
    mkdir(gone.c_str(), 0755);
    if (chdir(gone.c_str()) != 0 || rmdir(gone.c_str()) != 0) return 2;
    return mmfile_rm_recursive("x") == -1 ? 0 : 1;
  });
  EXPECT_EQ(child.exit_code, 0);
}

}  // namespace
