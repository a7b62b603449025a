// Numbered directory scans, making directories with their parents, and
// removing files and trees.
#include "mmfile/directory_scan.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "file_test_env.h"
#include "mmfile/directory_tree.h"

namespace {

using namespace mmfile_test;
using mmfs_test::PathExists;

// Every name a scan of `dir` through `filter` yields into a buffer of `size`
// bytes, until it ends; "<lost>" for a name that did not fit.
std::set<std::string> Scan(const std::string& dir, const char* filter, int size = 256) {
  int scan = -1, status;
  EXPECT_EQ(mmfile_open_directory(&scan, dir.c_str()) + mmfile_set_dir_filter(scan, filter), 0) << filter;
  std::set<std::string> names;
  std::vector<char> name(size);  // exactly `size` bytes; an exact fit is not terminated
  while ((status = mmfile_get_next_file(scan, name.data(), size)) != -2)
    names.insert(status == 0 ? std::string(name.data(), strnlen(name.data(), size)) : "<lost>");
  EXPECT_EQ(mmfile_close_directory(scan), 0);
  return names;
}

TEST(DirectoryScan, YieldsTheNamesMatchingTheFilterUpTo255Bytes) {
  FileTestEnv env;
  for (const char* name : {"a1", "a2x", "b1", ".hidden"}) mmfs_test::WriteFile(env / name, "x");
  EXPECT_EQ(Scan(env.root(), ""), (std::set<std::string>{"a1", "a2x", "b1", ".hidden", "home"}));
  EXPECT_EQ(Scan(env.root(), "^a[0-9]"), (std::set<std::string>{"a1", "a2x"}));
  mkdir((env / "long").c_str(), 0755);
  const std::string longest(255, 'n');
  mmfs_test::WriteFile(env / "long/" + longest, "x");
  EXPECT_EQ(Scan(env / "long", "", 255), (std::set<std::string>{longest}));
  EXPECT_EQ(Scan(env / "long", "", 254), (std::set<std::string>{"<lost>"}));
}

TEST(Mkdir, MakesMissingParentsAndFailsBelowARegularFile) {
  FileTestEnv env;
  EXPECT_EQ(mmfile_mkdir((env / "a/b/c").c_str(), 0755), 0);
  EXPECT_TRUE(IsDirectory(env / "a/b/c"));
  mmfs_test::WriteFile(env / "f", "x");
  EXPECT_EQ(mmfile_mkdir((env / "f").c_str(), 0755), 0);  // exists, so done
  FileMessages messages;
  errno = 0;
  EXPECT_EQ(mmfile_mkdir((env / "f/sub/leaf").c_str(), 0755), -1);
  EXPECT_EQ(errno, ENOTDIR);
  EXPECT_EQ(messages.getMessages(), "WARNING mmfile_mkdir: mmfile_mkdir_recursive failed: " + env.root() +
                                        "/f/sub/leaf : Not a directory\n");
}

TEST(DirectoryTree, RelativePathJoinedToTheWorkingDirectoryHolds1023Characters) {
  FileTestEnv env;
  const std::string base = MakeDirOfLength(env / "w", 800);
  ScopedCwd inside(base);
  // base + "/" + relative: exactly 1023 characters, then 1024.
  const std::string fits = std::string(100, 'p') + "/" + std::string(1023 - 800 - 1 - 101, 'q');
  const std::string too_long = fits + "q";
  EXPECT_EQ(mmfile_mkdir(fits.c_str(), 0755), 0);
  EXPECT_TRUE(IsDirectory(base + "/" + fits));
  FileMessages messages;
  errno = 0;
  EXPECT_EQ(mmfile_mkdir(too_long.c_str(), 0755), -1);
  EXPECT_EQ(errno, ENAMETOOLONG);
  // The failure reporter formats into 1024 bytes, so the text is cut there.
  const std::string text =
      "mmfile_mkdir: mmfile_mkdir_recursive failed: " + base + "/" + too_long + " : File name too long\n";
  EXPECT_EQ(messages.getMessages(), "WARNING " + text.substr(0, 1023));
  EXPECT_FALSE(PathExists(base + "/" + too_long));

  mmfs_test::WriteFile(base + "/" + fits + "/f", "x");
  mmfs_test::WriteFile(base + "/" + too_long, "x");
  EXPECT_EQ(mmfile_rm_recursive(fits.c_str()), 0);
  EXPECT_FALSE(PathExists(base + "/" + fits));
  EXPECT_EQ(mmfile_rm_recursive(too_long.c_str()), -1);
  EXPECT_EQ(messages.getMessages(), "FATAL MMFILE: buffer too small for intended use\n");
  EXPECT_TRUE(PathExists(base + "/" + too_long));
}

TEST(RmRecursive, RemovesAFileOrATreeAndNothingElse) {
  FileTestEnv env;
  for (const char* dir : {"t", "t/u"}) mkdir((env / dir).c_str(), 0755);
  for (const char* file : {"f", "t/g", "t/u/h", "t/.hidden"}) mmfs_test::WriteFile(env / file, "x");
  ScopedCwd inside(env.root());
  FileMessages messages;
  for (const char* path : {"missing", "f/below"}) EXPECT_EQ(mmfile_rm_recursive(path), -1) << path;
  EXPECT_EQ(mmfile_rm_recursive((env / "t").c_str()) + mmfile_rm_recursive("f"), 0);
  EXPECT_FALSE(PathExists(env / "t") || PathExists(env / "f"));
  EXPECT_EQ(messages.getMessages(), "");
}

}  // namespace
