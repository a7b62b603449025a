// Numbered directory scans and their filters.
#include "mmfile/directory_scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <set>
#include <string>

#include "file_test_env.h"
#include "mmfile/mmfile.h"

namespace {

using ::testing::HasSubstr;
using mmfile_test::FileMessages;
using mmfile_test::FileTestEnv;

// Every name the scan yields, until it ends.
std::set<std::string> Drain(int scan) {
  std::set<std::string> names;
  char name[300];
  int status;
  while ((status = mmfile_get_next_file(scan, name, 256)) == 0) {
    name[256] = '\0';
    names.insert(name);
  }
  EXPECT_EQ(status, -2);
  return names;
}

class Scan : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"a1", "a2x", "ab", "b1", ".hidden"})
      mmfs_test::WriteFile(env_ / name, "x");
    mkdir((env_ / "a3dir").c_str(), 0755);
  }
  FileTestEnv env_;
};

TEST_F(Scan, YieldsEveryNameButTheDotEntries) {
  int scan = -1;
  ASSERT_EQ(mmfile_open_directory(&scan, env_.root().c_str()), 0);
  EXPECT_GE(scan, 0);
  EXPECT_EQ(Drain(scan), (std::set<std::string>{"a1", "a2x", "ab", "b1", ".hidden", "a3dir", "home"}));
  char name[16];
  EXPECT_EQ(mmfile_get_next_file(scan, name, sizeof name), -2);
  EXPECT_EQ(mmfile_close_directory(scan), 0);
}

TEST_F(Scan, FilterKeepsOnlyMatchingNames) {
  int scan = -1;
  ASSERT_EQ(mmfile_open_directory(&scan, env_.root().c_str()), 0);
  EXPECT_EQ(mmfile_set_dir_filter(scan, "^a[0-9]"), 0);
  EXPECT_EQ(Drain(scan), (std::set<std::string>{"a1", "a2x", "a3dir"}));
  mmfile_close_directory(scan);
}

TEST_F(Scan, LaterFilterReplacesTheEarlierOneAndEmptyChangesNothing) {
  int scan = -1;
  ASSERT_EQ(mmfile_open_directory(&scan, env_.root().c_str()), 0);
  EXPECT_EQ(mmfile_set_dir_filter(scan, "^a"), 0);
  EXPECT_EQ(mmfile_set_dir_filter(scan, "1$"), 0);
  EXPECT_EQ(mmfile_set_dir_filter(scan, ""), 0);
  EXPECT_EQ(Drain(scan), (std::set<std::string>{"a1", "b1"}));
  mmfile_close_directory(scan);
}

TEST_F(Scan, BadFilterIsReported) {
  int scan = -1;
  ASSERT_EQ(mmfile_open_directory(&scan, env_.root().c_str()), 0);
  FileMessages messages;
  EXPECT_EQ(mmfile_set_dir_filter(scan, "a(b"), -1);
  EXPECT_THAT(messages.getMessages(), HasSubstr("INFO MMFILE: can not compile filter -> a(b\n"));
  EXPECT_EQ(Drain(scan).size(), 7u);
  mmfile_close_directory(scan);
}

TEST(ScanBounds, NameLongerThanTheBufferIsLostAndExactFitIsUnterminated) {
  FileTestEnv env;
  mkdir((env / "one").c_str(), 0755);
  mmfs_test::WriteFile(env / "one/abcd", "x");
  int scan = -1;
  ASSERT_EQ(mmfile_open_directory(&scan, (env / "one").c_str()), 0);
  char name[8] = "#######";
  EXPECT_EQ(mmfile_get_next_file(scan, name, 3), -1);
  EXPECT_EQ(mmfile_get_next_file(scan, name, 3), -2);
  mmfile_close_directory(scan);

  ASSERT_EQ(mmfile_open_directory(&scan, (env / "one").c_str()), 0);
  EXPECT_EQ(mmfile_get_next_file(scan, name, 4), 0);
  EXPECT_EQ(std::string(name, 7), "abcd###");
  mmfile_close_directory(scan);
}

TEST(ScanBounds, EntryNameOf255Bytes) {
  FileTestEnv env;
  mkdir((env / "one").c_str(), 0755);
  const std::string longest(255, 'n');
  mmfs_test::WriteFile(env / "one/" + longest, "x");
  int scan = -1;
  char name[300];
  memset(name, '#', sizeof name);
  ASSERT_EQ(mmfile_open_directory(&scan, (env / "one").c_str()), 0);
  EXPECT_EQ(mmfile_get_next_file(scan, name, 255), 0);
  EXPECT_EQ(std::string(name, 256), longest + "#");
  mmfile_close_directory(scan);
  ASSERT_EQ(mmfile_open_directory(&scan, (env / "one").c_str()), 0);
  EXPECT_EQ(mmfile_get_next_file(scan, name, 254), -1);
  mmfile_close_directory(scan);
}

TEST(ScanOpen, MissingDirectoryIsPrintedOnStandardOutput) {
  FileTestEnv env;
  const std::string missing = env / "missing";
  const std::string file = env / "plain";
  mmfs_test::WriteFile(file, "x");
  auto child = mmfs_test::RunInChild([&] {
    int scan = 5;
    if (mmfile_open_directory(&scan, missing.c_str()) != -1 || scan != -1) return 1;
    if (mmfile_open_directory(&scan, file.c_str()) != -1 || scan != -1) return 2;
    return 0;
  });
  EXPECT_EQ(child.exit_code, 0);
  EXPECT_EQ(child.out, "opendir: Unable to open \"" + missing + "\"\nopendir: Unable to open \"" +
                           file + "\"\n");
  EXPECT_EQ(child.err, "");
}

TEST(ScanNumbers, ClosedRecordsAreReusedHighestFirst) {
  FileTestEnv env;
  int first = -1, second = -1, third = -1;
  ASSERT_EQ(mmfile_open_directory(&first, env.root().c_str()), 0);
  ASSERT_EQ(mmfile_open_directory(&second, env.root().c_str()), 0);
  ASSERT_EQ(mmfile_open_directory(&third, env.root().c_str()), 0);
  EXPECT_EQ(second, first + 1);
  EXPECT_EQ(third, first + 2);
  mmfile_close_directory(first);
  mmfile_close_directory(second);
  int again = -1;
  ASSERT_EQ(mmfile_open_directory(&again, env.root().c_str()), 0);
  EXPECT_EQ(again, second);
  mmfile_close_directory(again);
  mmfile_close_directory(third);
  int reserved = -5;
  EXPECT_EQ(directory_search_new(&reserved), 0);
  EXPECT_GE(reserved, third);
  // A reserved record is not open.
  char name[8];
  EXPECT_EQ(mmfile_get_next_file(reserved, name, 8), -1);
  EXPECT_EQ(mmfile_set_dir_filter(reserved, "x"), -1);
}

TEST(ScanNumbers, BadNumbersAreRefused) {
  FileMessages messages;
  EXPECT_EQ(mmfile_close_directory(-1), -1);
  EXPECT_EQ(mmfile_close_directory(999), -1);
  EXPECT_EQ(messages.getMessages(), "WARNING mmfile_close_directory(): bad dir index = -1 \n"
                                    "WARNING mmfile_close_directory(): bad dir index = 999 \n");
  char name[8];
  EXPECT_EQ(mmfile_get_next_file(999, name, 8), -1);
  EXPECT_EQ(mmfile_get_next_file(-3, name, 8), -1);
}

}  // namespace
