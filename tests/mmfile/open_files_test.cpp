// Opening files through the search path and the table of open files.
#include "mmfile/open_files.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "file_test_env.h"

namespace {

using mmfile_test::FileMessages;
using mmfile_test::ScopedCwd;

// The buffer holds exactly buflen bytes, so that the sanitizer build sees any
// overrun.
std::string RecordedPath(FILE* fp, std::size_t buflen = 4096) {
  std::vector<char> buffer(buflen);
  return mmfile_file_get_path(fp, buffer.data(), buflen) == 0 ? buffer.data() : "<failed>";
}

// The search path holds d1 and d2, only d2 holds data.txt, and the test
// works in "work".
class OpenFiles : public ::testing::Test {
 protected:
  std::string MakeTree() {
    for (const char* dir : {"d1", "d2", "work"}) mkdir((env_ / dir).c_str(), 0755);
    mmfs_test::WriteFile(env_ / "d2/data.txt", "found in d2\n");
    mmfile_path_set((env_ / "d1:" + env_.root() + "/d2").c_str());
    return env_ / "work";
  }
  mmfile_test::FileTestEnv env_;
  ScopedCwd cwd_{MakeTree()};
  FILE* fp_ = nullptr;
};

TEST_F(OpenFiles, ReadingSearchesFromTheFoundDirectoryAndComesBackWritingStaysHere) {
  ASSERT_EQ(mmfile_open("data.txt", &fp_, "r"), 0);
  EXPECT_EQ(std::filesystem::current_path(), env_ / "work");
  EXPECT_EQ(fgetc(fp_), 'f');
  EXPECT_EQ(RecordedPath(fp_), env_ / "d2/data.txt");
  EXPECT_EQ(mmfile_close(fp_), 0);
  ASSERT_EQ(mmfile_open("data.txt", &fp_, "w"), 0);
  EXPECT_EQ(RecordedPath(fp_), env_ / "work/data.txt");
  EXPECT_EQ(mmfile_close(fp_), 0);
  EXPECT_EQ(mmfs_test::ReadFile(env_ / "d2/data.txt"), "found in d2\n");
}

TEST_F(OpenFiles, FailuresAreInfoNotesNamingTheFile) {
  FileMessages messages;
  EXPECT_EQ(mmfile_open("nope.txt", &fp_, "r") + mmfile_open("data.txt", &fp_, "+r"), -2);
  EXPECT_EQ(fp_, nullptr);
  // "+r" holds an r, so the name is searched for, but fopen refuses the mode.
  EXPECT_EQ(messages.getMessages(), "INFO MMFILE: file not found in search path: \"nope.txt\"\n"
                                    "INFO MMFILE: unable to open file (+r): \"data.txt\"\n");
}

TEST_F(OpenFiles, HundredAndFirstOpenIsRefused) {
  std::vector<FILE*> open(100);
  for (FILE*& fp : open) ASSERT_EQ(mmfile_open("data.txt", &fp, "r"), 0);
  FileMessages messages;
  EXPECT_EQ(mmfile_open("data.txt", &fp_, "r"), -1);
  EXPECT_EQ(messages.getMessages(), "FATAL MMFILE: attempt to have more than 100 files open at once\n");
  EXPECT_EQ(mmfile_close(open[50]), 0);  // makes room for exactly one more
  ASSERT_EQ(mmfile_open("data.txt", &open[50], "r"), 0);
  EXPECT_EQ(mmfile_open("data.txt", &fp_, "r"), -1);
  for (FILE* fp : open) EXPECT_EQ(mmfile_close(fp), 0);
}

TEST_F(OpenFiles, ClosingTheSecondOfThreeKeepsTheOthersInOrder) {
  mmfs_test::WriteFile(env_ / "d1/one", "1");
  FILE *first = nullptr, *second = nullptr, *third = nullptr;
  ASSERT_EQ(mmfile_open("one", &first, "r") + mmfile_open("data.txt", &second, "r"), 0);
  ASSERT_EQ(mmfile_open("three", &third, "w"), 0);
  EXPECT_EQ(mmfile_close(second), 0);
  EXPECT_EQ(RecordedPath(first), env_ / "d1/one");
  EXPECT_EQ(RecordedPath(third), env_ / "work/three");
  EXPECT_EQ(mmfile_close(first), 0);
  EXPECT_EQ(RecordedPath(third), env_ / "work/three");
  EXPECT_EQ(mmfile_close(third), 0);
  EXPECT_EQ(mmfile_close(third), -1);  // no longer open
}

TEST_F(OpenFiles, TableHolds255NameAnd1023DirectoryAnd15ModeCharacters) {
  mkdir((env_ / "d2/s").c_str(), 0755);
  const std::string name = "s/" + std::string(253, 'n'), mode = "r" + std::string(14, 'b');
  const std::string dir = mmfile_test::MakeDirOfLength(env_ / "a", 1023);
  const std::string long_dir = mmfile_test::MakeDirOfLength(env_ / "b", 1024);
  for (const std::string& file : {name, name + "n"}) mmfs_test::WriteFile(env_ / "d2/" + file, "x");
  ASSERT_EQ(mmfile_open(name.c_str(), &fp_, mode.c_str()), 0);
  const std::string recorded = env_ / "d2/" + name;  // its copy needs room for the terminator
  EXPECT_EQ(RecordedPath(fp_, recorded.size() + 1), recorded);
  FileMessages messages;
  const std::string too_small = "FATAL MMFILE: buffer too small for intended use\n";
  EXPECT_EQ(RecordedPath(fp_, recorded.size()), "<failed>");
  EXPECT_EQ(mmfile_close(fp_), 0);
  EXPECT_EQ(mmfile_open((name + "n").c_str(), &fp_, "r") + mmfile_open("data.txt", &fp_, (mode + "b").c_str()), -2);
  EXPECT_EQ(messages.getMessages(), too_small + too_small + too_small);
  {
    ScopedCwd inside(dir);
    ASSERT_EQ(mmfile_open("out.txt", &fp_, "w"), 0);
    EXPECT_EQ(RecordedPath(fp_), dir + "/out.txt");
    EXPECT_EQ(mmfile_close(fp_), 0);
  }
  ScopedCwd inside(long_dir);
  EXPECT_EQ(mmfile_open("out.txt", &fp_, "w"), -1);
  EXPECT_EQ(messages.getMessages(), too_small);
  EXPECT_FALSE(mmfs_test::PathExists(long_dir + "/out.txt"));  // refused before making it
}

}  // namespace
