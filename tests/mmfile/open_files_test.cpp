// Opening files through the search path and the table of open files.
#include "mmfile/open_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "file_test_env.h"
#include "mmfile/mmfile.h"

namespace {

using mmfile_test::CurrentDir;
using mmfile_test::FileMessages;
using mmfile_test::FileTestEnv;
using mmfile_test::ScopedCwd;

std::string RecordedPath(FILE* fp, std::size_t buflen = 4096) {
  std::vector<char> buffer(buflen + 1, '#');
  if (mmfile_file_get_path(fp, buffer.data(), buflen) != 0) return "<failed>";
  return buffer.data();
}

std::string ReadAll(FILE* fp) {
  std::string text;
  char chunk[256];
  while (fgets(chunk, sizeof chunk, fp)) text += chunk;
  return text;
}

class OpenFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    mkdir((env_ / "d1").c_str(), 0755);
    mkdir((env_ / "d2").c_str(), 0755);
    mkdir((env_ / "work").c_str(), 0755);
    mmfs_test::WriteFile(env_ / "d2/data.txt", "found in d2\n");
    mmfile_path_set((env_ / "d1:" + env_.root() + "/d2").c_str());
    ASSERT_EQ(chdir((env_ / "work").c_str()), 0);
  }
  FileTestEnv env_;
  ScopedCwd cwd_;  // puts the working directory back
};

TEST_F(OpenFiles, ReadingFindsTheFileAndComesBackToTheWorkingDirectory) {
  FILE* fp = nullptr;
  ASSERT_EQ(mmfile_open("data.txt", &fp, "r"), 0);
  ASSERT_NE(fp, nullptr);
  EXPECT_EQ(CurrentDir(), env_ / "work");
  EXPECT_EQ(ReadAll(fp), "found in d2\n");
  EXPECT_EQ(RecordedPath(fp), env_ / "d2/data.txt");
  EXPECT_EQ(mmfile_close(fp), 0);
}

TEST_F(OpenFiles, RelativeSearchPathEntriesAreEnteredFromTheWorkingDirectory) {
  mmfile_path_set("../d2");
  FILE* fp = nullptr;
  ASSERT_EQ(mmfile_open("data.txt", &fp, "r"), 0);
  EXPECT_EQ(ReadAll(fp), "found in d2\n");
  EXPECT_EQ(RecordedPath(fp), "../d2/data.txt");
  EXPECT_EQ(CurrentDir(), env_ / "work");
  mmfile_close(fp);
}

TEST_F(OpenFiles, NameMissingFromTheSearchPathIsAnInfoNote) {
  FileMessages messages;
  FILE* fp = reinterpret_cast<FILE*>(1);
  EXPECT_EQ(mmfile_open("nope.txt", &fp, "r"), -1);
  EXPECT_EQ(fp, nullptr);
  EXPECT_EQ(messages.getMessages(), "INFO MMFILE: file not found in search path: \"nope.txt\"\n");
}

TEST_F(OpenFiles, WritingUsesTheWorkingDirectoryWithoutSearching) {
  FILE* fp = nullptr;
  ASSERT_EQ(mmfile_open("data.txt", &fp, "w"), 0);
  fputs("new", fp);
  EXPECT_EQ(RecordedPath(fp), env_ / "work/data.txt");
  EXPECT_EQ(mmfile_close(fp), 0);
  EXPECT_EQ(mmfs_test::ReadFile(env_ / "work/data.txt"), "new");
  EXPECT_EQ(mmfs_test::ReadFile(env_ / "d2/data.txt"), "found in d2\n");
}

TEST_F(OpenFiles, FailedWriteOpenReportsTheReadingText) {
  mmfs_test::WriteFile(env_ / "work/plain", "x");
  FileMessages messages;
  FILE* fp = nullptr;
  EXPECT_EQ(mmfile_open("plain/x", &fp, "w"), -1);
  EXPECT_EQ(fp, nullptr);
  EXPECT_EQ(messages.getMessages(), "INFO MMFILE: unable to open file for reading: \"plain/x\"\n");
}

TEST_F(OpenFiles, FailedReadOpenOfAnAbsoluteNameReportsTheMode) {
  FileMessages messages;
  FILE* fp = nullptr;
  const std::string missing = env_ / "missing/x";
  EXPECT_EQ(mmfile_open(missing.c_str(), &fp, "rb"), -1);
  EXPECT_EQ(messages.getMessages(), "INFO MMFILE: unable to open file (rb): \"" + missing + "\"\n");
}

TEST_F(OpenFiles, FoundNameThatFopenRefusesIsReportedWithTheMode) {
  // "+r" holds an r, so the name is searched for, but fopen rejects the mode.
  FileMessages messages;
  FILE* fp = reinterpret_cast<FILE*>(1);
  EXPECT_EQ(mmfile_open("data.txt", &fp, "+r"), -1);
  EXPECT_EQ(fp, nullptr);
  EXPECT_EQ(messages.getMessages(), "INFO MMFILE: unable to open file (+r): \"data.txt\"\n");
  EXPECT_EQ(CurrentDir(), env_ / "work");
}

TEST_F(OpenFiles, AbsoluteNamesAreRecordedAsDirectoryAndBaseName) {
  FILE* fp = nullptr;
  const std::string path = env_ / "d2//data.txt";
  ASSERT_EQ(mmfile_open(path.c_str(), &fp, "r"), 0);
  EXPECT_EQ(RecordedPath(fp), env_ / "d2/data.txt");
  mmfile_close(fp);
  mmfs_test::WriteFile("/tmp/mmfile_open_root_test.txt", "x");
  ASSERT_EQ(mmfile_open("//tmp/mmfile_open_root_test.txt", &fp, "r"), 0);
  EXPECT_EQ(RecordedPath(fp), "//tmp/mmfile_open_root_test.txt");
  mmfile_close(fp);
  remove("/tmp/mmfile_open_root_test.txt");
}

TEST_F(OpenFiles, HundredAndFirstOpenIsRefused) {
  std::vector<FILE*> open;
  for (int i = 0; i < 100; ++i) {
    FILE* fp = nullptr;
    ASSERT_EQ(mmfile_open((env_ / "d2/data.txt").c_str(), &fp, "r"), 0) << i;
    open.push_back(fp);
  }
  FileMessages messages;
  FILE* fp = reinterpret_cast<FILE*>(1);
  EXPECT_EQ(mmfile_open((env_ / "d2/data.txt").c_str(), &fp, "r"), -1);
  EXPECT_EQ(fp, nullptr);
  EXPECT_EQ(messages.getMessages(), "FATAL MMFILE: attempt to have more than 100 files open at once\n");

  // Closing one makes room for exactly one more.
  EXPECT_EQ(mmfile_close(open[50]), 0);
  open.erase(open.begin() + 50);
  ASSERT_EQ(mmfile_open("data.txt", &fp, "r"), 0);
  open.push_back(fp);
  EXPECT_EQ(mmfile_open("data.txt", &fp, "r"), -1);
  for (FILE* f : open) EXPECT_EQ(mmfile_close(f), 0);
}

TEST_F(OpenFiles, ClosingTheSecondOfThreeKeepsTheOthersInOrder) {
  mmfs_test::WriteFile(env_ / "d1/one", "1");
  mmfs_test::WriteFile(env_ / "d2/two", "2");
  FILE* first = nullptr;
  FILE* second = nullptr;
  FILE* third = nullptr;
  ASSERT_EQ(mmfile_open("one", &first, "r"), 0);
  ASSERT_EQ(mmfile_open("two", &second, "r"), 0);
  ASSERT_EQ(mmfile_open("three", &third, "w"), 0);
  EXPECT_EQ(mmfile_close(second), 0);
  EXPECT_EQ(RecordedPath(first), env_ / "d1/one");
  EXPECT_EQ(RecordedPath(third), env_ / "work/three");
  FileMessages messages;
  EXPECT_EQ(mmfile_file_get_path(second, nullptr, 0), -1);
  EXPECT_EQ(messages.getMessages(), "FATAL MMFILE: file pointer does not match any open files\n");
  EXPECT_EQ(mmfile_close(first), 0);
  EXPECT_EQ(RecordedPath(third), env_ / "work/three");
  EXPECT_EQ(mmfile_close(third), 0);
  // Closing again is refused without a word.
  EXPECT_EQ(mmfile_close(third), -1);
  EXPECT_EQ(messages.getMessages(), "");
}

TEST_F(OpenFiles, StreamsNotOpenedHereAreNotClosed) {
  FILE* foreign = fopen((env_ / "d2/data.txt").c_str(), "r");
  ASSERT_NE(foreign, nullptr);
  EXPECT_EQ(mmfile_close(foreign), -1);
  EXPECT_EQ(ReadAll(foreign), "found in d2\n");
  fclose(foreign);
}

TEST_F(OpenFiles, NullStreamIsReported) {
  FileMessages messages;
  EXPECT_EQ(mmfile_close(nullptr), -1);
  EXPECT_EQ(messages.getMessages(), "FATAL MMFILE: null file pointer\n");
  char buffer[16] = "junk";
  EXPECT_EQ(mmfile_file_get_path(nullptr, buffer, sizeof buffer), -1);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(messages.getMessages(), "FATAL MMFILE: null file pointer\n"
                                    "FATAL MMFILE: file pointer does not match any open files\n");
}

TEST_F(OpenFiles, GetPathNeedsRoomForSlashAndTerminator) {
  FILE* fp = nullptr;
  ASSERT_EQ(mmfile_open("data.txt", &fp, "r"), 0);
  const std::string expected = env_ / "d2/data.txt";
  EXPECT_EQ(RecordedPath(fp, expected.size() + 1), expected);
  FileMessages messages;
  EXPECT_EQ(RecordedPath(fp, expected.size()), "<failed>");
  EXPECT_EQ(messages.getMessages(), "FATAL MMFILE: buffer too small for intended use\n");
  mmfile_close(fp);
}

TEST_F(OpenFiles, NameFieldHolds255Characters) {
  mkdir((env_ / "d2/s").c_str(), 0755);
  const std::string fits = "s/" + std::string(253, 'n');
  const std::string too_long = "s/" + std::string(254, 'n');
  mmfs_test::WriteFile(env_ / "d2/" + fits, "x");
  mmfs_test::WriteFile(env_ / "d2/" + too_long, "x");
  FILE* fp = nullptr;
  ASSERT_EQ(mmfile_open(fits.c_str(), &fp, "r"), 0);
  EXPECT_EQ(RecordedPath(fp), env_ / "d2/" + fits);
  mmfile_close(fp);
  FileMessages messages;
  EXPECT_EQ(mmfile_open(too_long.c_str(), &fp, "r"), -1);
  EXPECT_EQ(fp, nullptr);
  EXPECT_EQ(messages.getMessages(), "FATAL MMFILE: buffer too small for intended use\n");
}

TEST_F(OpenFiles, DirectoryFieldHolds1023Characters) {
  const std::string fits = mmfile_test::MakeDirOfLength(env_ / "a", 1023);
  const std::string too_long = mmfile_test::MakeDirOfLength(env_ / "b", 1024);
  FILE* fp = nullptr;
  {
    ScopedCwd inside(fits);
    ASSERT_EQ(mmfile_open("out.txt", &fp, "w"), 0);
    EXPECT_EQ(RecordedPath(fp), fits + "/out.txt");
    mmfile_close(fp);
  }
  {
    ScopedCwd inside(too_long);
    FileMessages messages;
    EXPECT_EQ(mmfile_open("out.txt", &fp, "w"), -1);
    EXPECT_EQ(messages.getMessages(), "FATAL MMFILE: buffer too small for intended use\n");
    // Refused before anything was made.
    EXPECT_FALSE(mmfs_test::PathExists(too_long + "/out.txt"));
  }
  mmfile_path_set(fits.c_str());
  mmfs_test::WriteFile(fits + "/in.txt", "x");
  ASSERT_EQ(mmfile_open("in.txt", &fp, "r"), 0);
  EXPECT_EQ(RecordedPath(fp), fits + "/in.txt");
  mmfile_close(fp);
}

TEST_F(OpenFiles, ModeFieldHolds15Characters) {
  FILE* fp = nullptr;
  const std::string fits = "r" + std::string(14, 'b');
  ASSERT_EQ(mmfile_open("data.txt", &fp, fits.c_str()), 0);
  EXPECT_EQ(ReadAll(fp), "found in d2\n");
  mmfile_close(fp);
  FileMessages messages;
  EXPECT_EQ(mmfile_open("data.txt", &fp, (fits + "b").c_str()), -1);
  EXPECT_EQ(messages.getMessages(), "FATAL MMFILE: buffer too small for intended use\n");
}

}  // namespace
