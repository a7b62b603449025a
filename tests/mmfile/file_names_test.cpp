// Unique file names and listing files by suffix.
#include "mmfile/file_names.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <boost/filesystem/exception.hpp>
#include <regex>
#include <string>
#include <vector>

#include "file_test_env.h"

namespace {

using mmfile_test::FileTestEnv;

TEST(UniqueNames, TwoNamesDifferAndFollowTheModel) {
  const std::string a = morvellanth::path::get_unique_file_name(".txt");
  const std::string b = morvellanth::path::get_unique_file_name(".txt");
  EXPECT_NE(a, b);
  EXPECT_EQ(a.size(), 23u);
  const std::regex model("[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}\\.txt");
  EXPECT_TRUE(std::regex_match(a, model)) << a;
  EXPECT_EQ(morvellanth::path::get_unique_file_name("").size(), 19u);
}

TEST(UniqueNames, TemporaryPathLiesInTheTemporaryDirectory) {
  FileTestEnv env;
  mmfs_test::ScopedEnv tmp("MORVELLANTH_TMPDIR", env / "scratch");
  const std::string path = morvellanth::path::get_unique_temporary_file_path(".mae");
  EXPECT_EQ(path.rfind(env / "scratch/", 0), 0u) << path;
  EXPECT_EQ(path.size(), (env / "scratch/").size() + 23);
  EXPECT_TRUE(mmfs_test::PathExists(env / "scratch"));
}

TEST(FilesWithSuffix, RegularFilesWhosePathEndsWithTheSuffix) {
  FileTestEnv env;
  const std::string dir = env / "d";
  mkdir(dir.c_str(), 0755);
  for (const char* name : {"a.txt", "b.txt", "c.dat", "D.TXT", "txt"}) mmfs_test::WriteFile(dir + "/" + name, "x");
  mkdir((dir + "/sub.txt").c_str(), 0755);
  mmfs_test::WriteFile(dir + "/sub.txt/inner.txt", "x");
  symlink((dir + "/a.txt").c_str(), (dir + "/link.txt").c_str());
  symlink((dir + "/missing").c_str(), (dir + "/dangling.txt").c_str());
  auto files = morvellanth::path::get_all_files_with_suffix(dir, ".txt");
  std::sort(files.begin(), files.end());
  EXPECT_EQ(files, (std::vector<std::string>{dir + "/a.txt", dir + "/b.txt", dir + "/link.txt"}));

  files = morvellanth::path::get_all_files_with_suffix(dir, "");
  EXPECT_EQ(files.size(), 6u);
}

TEST(FilesWithSuffix, UnreadableDirectoryThrows) {
  FileTestEnv env;
  EXPECT_THROW(morvellanth::path::get_all_files_with_suffix(env / "missing", ".txt"),
               boost::filesystem::filesystem_error);
}

}  // namespace
