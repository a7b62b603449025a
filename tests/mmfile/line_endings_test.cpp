// Conversion of DOS line endings in place.
#include "mmfile/line_endings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "file_test_env.h"
#include "mmfile/fortran.h"
#include "mmfile/mmfile.h"

namespace {

using mmfile_test::FileMessages;
using mmfile_test::FileTestEnv;
using mmfs_test::ReadFile;
using mmfs_test::WriteFile;

TEST(DosFile, FirstLineWithACarriageReturnMakesADosFile) {
  FileTestEnv env;
  WriteFile(env / "dos", "one\r\ntwo\r\n");
  WriteFile(env / "unix", "one\ntwo\r\n");
  WriteFile(env / "empty", "");
  EXPECT_EQ(mmfile_is_dosfile((env / "dos").c_str()), 0);
  EXPECT_EQ(mmfile_is_dosfile((env / "unix").c_str()), -1);
  EXPECT_EQ(mmfile_is_dosfile((env / "empty").c_str()), -1);
  EXPECT_EQ(mmfile_is_dosfile((env / "missing").c_str()), -1);
}

TEST(DosFile, CarriageReturnBeyondTheFirst1023BytesIsNotSeen) {
  FileTestEnv env;
  WriteFile(env / "at", std::string(1022, 'a') + "\r\n");
  WriteFile(env / "beyond", std::string(1023, 'a') + "\r\n");
  EXPECT_EQ(mmfile_is_dosfile((env / "at").c_str()), 0);
  EXPECT_EQ(mmfile_is_dosfile((env / "beyond").c_str()), -1);
}

TEST(DosToUnix, EveryCrLfBecomesLfAndTheTemporaryFileIsGone) {
  FileTestEnv env;
  WriteFile(env / "f.txt", "one\r\ntwo\r\n\r\nlast");
  EXPECT_EQ(mmfile_dos_to_unix((env / "f.txt").c_str()), 0);
  EXPECT_EQ(ReadFile(env / "f.txt"), "one\ntwo\n\nlast");
  EXPECT_FALSE(mmfs_test::PathExists(env / "f.txt.tmp"));
}

TEST(DosToUnix, TextAfterALinesLastCarriageReturnIsDropped) {
  FileTestEnv env;
  WriteFile(env / "f.txt", "a\rb\r\nc\r\n");
  EXPECT_EQ(mmfile_dos_to_unix((env / "f.txt").c_str()), 0);
  EXPECT_EQ(ReadFile(env / "f.txt"), "a\rb\nc\n");
}

TEST(DosToUnix, LongLinesAreCopiedInPiecesWithoutLoss) {
  FileTestEnv env;
  const std::string long_line(3000, 'x');
  const std::string at_bound(1022, 'y');  // its CR is the 1023rd byte of a piece
  const std::string past_bound(1023, 'z');
  WriteFile(env / "f.txt",
            "head\r\n" + long_line + "\r\n" + at_bound + "\r\n" + past_bound + "\r\nend\r\n");
  EXPECT_EQ(mmfile_dos_to_unix((env / "f.txt").c_str()), 0);
  const std::string expected =
      "head\n" + long_line + "\n" + at_bound + "\n" + past_bound + "\nend\n";
  EXPECT_TRUE(ReadFile(env / "f.txt") == expected);
}

TEST(DosToUnix, UnixAndMissingFilesAreLeftAlone) {
  FileTestEnv env;
  WriteFile(env / "u.txt", "one\ntwo\r\n");
  EXPECT_EQ(mmfile_dos_to_unix((env / "u.txt").c_str()), 0);
  EXPECT_EQ(ReadFile(env / "u.txt"), "one\ntwo\r\n");
  EXPECT_EQ(mmfile_dos_to_unix((env / "missing").c_str()), 0);
  EXPECT_EQ(mmfile_dos_to_unix((env / "u.txt/below").c_str()), 0);
  EXPECT_EQ(mmfile_dos_to_unix(nullptr), 0);
}

TEST(DosToUnix, UnwritableTemporaryFileIsFatalAndKeepsTheOriginal) {
  FileTestEnv env;
  WriteFile(env / "f.txt", "one\r\n");
  mkdir((env / "f.txt.tmp").c_str(), 0755);  // the sibling cannot be opened for writing
  FileMessages messages;
  EXPECT_EQ(mmfile_dos_to_unix((env / "f.txt").c_str()), -1);
  EXPECT_EQ(messages.getMessages(),
            "FATAL mmfile_dos_to_unix():Failed to open '" + env / "f.txt.tmp" + "' for writing.\n");
  EXPECT_EQ(ReadFile(env / "f.txt"), "one\r\n");
}

TEST(DosToUnix, RegistrationKeepsNothingSoConvertingDoesNothing) {
  FileTestEnv env;
  WriteFile(env / "f.txt", "one\r\n");
  EXPECT_EQ(mmfile_dos_to_unix_register((env / "f.txt").c_str()), 0);
  EXPECT_EQ(mmfile_dos_to_unix_convert(), 0);
  EXPECT_EQ(ReadFile(env / "f.txt"), "one\r\n");
}

TEST(DosToUnix, FortranTwinsTrimTheFieldAndReportThroughStatus) {
  FileTestEnv env;
  WriteFile(env / "f.txt", "one\r\n");
  const std::string field = env / "f.txt" + std::string(20, ' ');
  int status = 7;
  EXPECT_EQ(mmfilef_dos_to_unix_(field.c_str(), &status, static_cast<int>(field.size())), 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(ReadFile(env / "f.txt"), "one\n");
  status = 7;
  EXPECT_EQ(mmfilef_dos_to_unix_register_(field.c_str(), &status, static_cast<int>(field.size())), 0);
  EXPECT_EQ(status, 0);
  status = 7;
  EXPECT_EQ(mmfilef_dos_to_unix_convert_(&status), 0);
  EXPECT_EQ(status, 0);
}

}  // namespace
