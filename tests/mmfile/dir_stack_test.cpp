// The working directory and the stack of saved working directories.
#include "mmfile/dir_stack.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "file_test_env.h"
#include "mmfile/mmfile.h"

namespace {

using mmfile_test::CurrentDir;
using mmfile_test::FileMessages;
using mmfile_test::FileTestEnv;
using mmfile_test::ScopedCwd;
using mmfs_test::ScopedEnv;

TEST(DirStack, PopReturnsToThePushedDirectoryAfterTwoChanges) {
  FileTestEnv env;
  mkdir((env / "a").c_str(), 0755);
  mkdir((env / "b").c_str(), 0755);
  ScopedCwd restore(env.root());
  ASSERT_EQ(mmfile_dir_current_push(), 0);
  EXPECT_EQ(mmfile_dir_current_set("a"), 0);
  EXPECT_EQ(CurrentDir(), env / "a");
  EXPECT_EQ(mmfile_dir_current_set((env / "b").c_str()), 0);
  EXPECT_EQ(CurrentDir(), env / "b");
  EXPECT_EQ(mmfile_dir_current_pop(), 0);
  EXPECT_EQ(CurrentDir(), env.root());

  FileMessages messages;
  EXPECT_EQ(mmfile_dir_current_pop(), -1);
  EXPECT_EQ(messages.getMessages(), "INFO MMFILE: attempt to pop current directory from empty stack\n");
}

TEST(DirStack, NestedPushesPopInReverseOrder) {
  FileTestEnv env;
  mkdir((env / "a").c_str(), 0755);
  ScopedCwd restore(env.root());
  mmfile_dir_current_push();
  mmfile_dir_current_set("a");
  mmfile_dir_current_push();
  mmfile_dir_current_set("/");
  EXPECT_EQ(mmfile_dir_current_pop(), 0);
  EXPECT_EQ(CurrentDir(), env / "a");
  EXPECT_EQ(mmfile_dir_current_pop(), 0);
  EXPECT_EQ(CurrentDir(), env.root());
}

TEST(DirStack, PopOfAVanishedDirectoryFailsButDropsTheEntry) {
  FileTestEnv env;
  mkdir((env / "gone").c_str(), 0755);
  ScopedCwd restore(env / "gone");
  ASSERT_EQ(mmfile_dir_current_push(), 0);
  chdir(env.root().c_str());
  rmdir((env / "gone").c_str());
  EXPECT_EQ(mmfile_dir_current_pop(), -1);
  FileMessages messages;
  EXPECT_EQ(mmfile_dir_current_pop(), -1);
  EXPECT_EQ(messages.getMessages(), "INFO MMFILE: attempt to pop current directory from empty stack\n");
}

TEST(CurrentDir, GetReturnsTheWorkingDirectory) {
  FileTestEnv env;
  ScopedCwd restore(env.root());
  char* dir = nullptr;
  EXPECT_EQ(mmfile_dir_current_get(&dir), 0);
  EXPECT_EQ(std::string(dir), env.root());
  free(dir);
}

TEST(CurrentDir, DeletedWorkingDirectoryCannotBeRead) {
  FileTestEnv env;
  const std::string gone = env / "gone";
  auto child = mmfs_test::RunInChild([&] {
    mkdir(gone.c_str(), 0755);
    if (chdir(gone.c_str()) != 0 || rmdir(gone.c_str()) != 0) return 2;
    char* dir = reinterpret_cast<char*>(1);
    if (mmfile_dir_current_get(&dir) != -1 || dir) return 3;
    if (mmfile_dir_current_push() != -1) return 4;
    return 0;
  });
  ASSERT_TRUE(child.exited);
  EXPECT_EQ(child.exit_code, 0);
  EXPECT_EQ(child.err, "FATAL mmfile_dir_current_get: current_path No such file or directory"
                       "FATAL mmfile_dir_current_get: current_path No such file or directory");
}

TEST(CurrentDir, SetExpandsAndConvertsBackslashes) {
  FileTestEnv env;
  mkdir((env / "a").c_str(), 0755);
  mkdir((env / "a/b").c_str(), 0755);
  ScopedCwd restore(env.root());
  ScopedEnv var("MMFILE_TEST_DIR", env / "a");
  EXPECT_EQ(mmfile_dir_current_set("$MMFILE_TEST_DIR"), 0);
  EXPECT_EQ(CurrentDir(), env / "a");
  EXPECT_EQ(mmfile_dir_current_set((env.root() + "\\a\\b").c_str()), 0);
  EXPECT_EQ(CurrentDir(), env / "a/b");
}

TEST(CurrentDir, SetFailsForEmptyExpansionMissingDirectoryAndNull) {
  FileTestEnv env;
  ScopedCwd restore(env.root());
  ScopedEnv unset("MMFILE_TEST_UNSET");
  EXPECT_EQ(mmfile_dir_current_set("$MMFILE_TEST_UNSET"), -1);
  EXPECT_EQ(mmfile_dir_current_set((env / "missing").c_str()), -1);
  EXPECT_EQ(mmfile_dir_current_set(""), -1);
  EXPECT_EQ(mmfile_dir_current_set(nullptr), -1);
  FileMessages messages;
  EXPECT_EQ(mmfile_dir_current_set("~nosuchuser"), -1);
  EXPECT_EQ(CurrentDir(), env.root());
}

TEST(CurrentDir, SetTakes1023CharactersButNotMore) {
  FileTestEnv env;
  ScopedCwd restore(env.root());
  const std::string longest = mmfile_test::MakeDirOfLength(env.root(), 1023);
  EXPECT_EQ(mmfile_dir_current_set(longest.c_str()), 0);
  EXPECT_EQ(CurrentDir(), longest);
  chdir(env.root().c_str());
  EXPECT_EQ(mmfile_dir_current_set((longest + "/").c_str()), -1);
  EXPECT_EQ(CurrentDir(), env.root());
}

}  // namespace
