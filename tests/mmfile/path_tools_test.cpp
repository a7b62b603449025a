// Path components, the working-directory stack, separator conversion, unique
// names and listing by suffix.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/filesystem.hpp>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "file_test_env.h"
#include "mmfile/mmfile.h"

namespace {

using mmfile_test::FileMessages;
using mmfile_test::FileTestEnv;
using mmfile_test::ScopedCwd;
using mmfile_test::Take;

TEST(PathComponents, SplitAndJoinAtSlashes) {
  EXPECT_EQ(Take(mmfile_get_last_component("a/b/c.txt")), "c.txt");
  EXPECT_EQ(Take(mmfile_get_last_component("")), "<null>");
  EXPECT_EQ(Take(mmfile_remove_component("a/b/c.txt")), "a/b");
  EXPECT_EQ(Take(mmfile_remove_component("name")), "");
  EXPECT_EQ(Take(mmfile_add_component("a/", "/b")), "a/b");
  EXPECT_EQ(Take(mmfile_add_component(nullptr, "b")), "b");
  EXPECT_EQ(Take(mmfile_add_component("", "")), "<null>");

  struct Case { const char* path; const char* directory; const char* file; } cases[] = {
      {"a//b", "a", "b"},   {"dir/", "dir", "<null>"}, {"name", "<null>", "name"},
      {"/x", "/", "x"},     {"//x", "//", "x"},        {"dir/file\nrest/more", "dir", "file"},
      {"", "<null>", "<null>"},
  };
  for (const Case& c : cases) {
    char* directory = nullptr;
    char* file = nullptr;
    mmfile_parse_path(c.path, &directory, &file);
    EXPECT_EQ(Take(directory), c.directory) << c.path;
    EXPECT_EQ(Take(file), c.file) << c.path;
  }
}

TEST(DirStack, PopReturnsToThePushedDirectoryAndRefusesAnEmptyStack) {
  FileTestEnv env;
  mkdir((env / "a").c_str(), 0755);
  ScopedCwd restore(env.root());
  ASSERT_EQ(mmfile_dir_current_push(), 0);
  EXPECT_EQ(mmfile_dir_current_set("a"), 0);
  EXPECT_EQ(std::filesystem::current_path().string(), env / "a");
  EXPECT_EQ(mmfile_dir_current_pop(), 0);
  EXPECT_EQ(std::filesystem::current_path().string(), env.root());
  FileMessages messages;
  EXPECT_EQ(mmfile_dir_current_pop(), -1);
  EXPECT_EQ(messages.getMessages(), "INFO MMFILE: attempt to pop current directory from empty stack\n");
}

TEST(Separators, LocalizeMakesSlashes) {
  char path[] = "a\\b\\c";
  EXPECT_EQ(mmfile_path_localize(path, sizeof path), 0);
  EXPECT_STREQ(path, "a/b/c");
  char empty[] = "";
  EXPECT_EQ(mmfile_path_localize(empty, sizeof empty), -1);
}

TEST(UniqueNames, FollowTheModelInTheTemporaryDirectory) {
  FileTestEnv env;
  mmfs_test::ScopedEnv tmp("MORVELLANTH_TMPDIR", env / "scratch");
  const std::string a = morvellanth::path::get_unique_file_name(".txt");
  EXPECT_NE(a, morvellanth::path::get_unique_file_name(".txt"));
  EXPECT_TRUE(std::regex_match(a, std::regex("[0-9a-f]{4}(-[0-9a-f]{4}){3}\\.txt"))) << a;
  const std::string path = morvellanth::path::get_unique_temporary_file_path(".mae");
  EXPECT_EQ(path.rfind(env / "scratch/", 0), 0u) << path;
}

TEST(FilesWithSuffix, ListsRegularFilesWhosePathEndsWithTheSuffix) {
  FileTestEnv env;
  const std::string dir = env / "d";
  mkdir(dir.c_str(), 0755);
  for (const char* name : {"a.txt", "b.txt", "c.dat", "D.TXT"}) mmfs_test::WriteFile(dir + "/" + name, "x");
  mkdir((dir + "/sub.txt").c_str(), 0755);
  std::vector<std::string> files = morvellanth::path::get_all_files_with_suffix(dir, ".txt");
  std::sort(files.begin(), files.end());
  EXPECT_EQ(files, (std::vector<std::string>{dir + "/a.txt", dir + "/b.txt"}));
  EXPECT_THROW(morvellanth::path::get_all_files_with_suffix(env / "missing", ".txt"),
               boost::filesystem::filesystem_error);
}

}  // namespace
