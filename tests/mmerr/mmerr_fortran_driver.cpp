// Runs the gfortran program that calls the error-reporting twins and checks
// what it printed, what reached standard error and the records it wrote.
#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"

namespace {

using mmfs_test::ReadFile;
using mmfs_test::RunProgram;
using mmfs_test::TempDir;

class MmerrFortranTwins : public ::testing::Test {
 protected:
  void SetUp() override {
    result_ = RunProgram({MMERR_FORTRAN_PROGRAM, dir_.path()});
    ASSERT_TRUE(result_.exited) << result_.err;
    ASSERT_EQ(result_.exit_code, 0) << result_.err;
  }
  TempDir dir_;
  mmfs_test::ChildResult result_;
};

TEST_F(MmerrFortranTwins, StatusesComeBackThroughTheLastArgument) {
  EXPECT_NE(result_.out.find("new handle=1 status=1\n"), std::string::npos) << result_.out;
  EXPECT_NE(result_.out.find("prefix status=1\n"), std::string::npos);
  EXPECT_NE(result_.out.find("file status=1\n"), std::string::npos);
  EXPECT_NE(result_.out.find("throw status=1\n"), std::string::npos);
  EXPECT_NE(result_.out.find("level=2 status=1\n"), std::string::npos);
  EXPECT_NE(result_.out.find("after delete status=0\n"), std::string::npos);
}

TEST_F(MmerrFortranTwins, UnitHandleWritesRecordsWithTrimmedPrefix) {
  // ERR and 17 blanks become "ERR ", then the word and the 79 characters.
  std::string expected = "ERR WARNING first record" + std::string(79 - 12, ' ') + "\n" +
                         "program line\n";
  EXPECT_EQ(ReadFile(dir_ / "unit.txt"), expected);
}

TEST_F(MmerrFortranTwins, NegativeUnitSilencesButStillCounts) {
  EXPECT_EQ(ReadFile(dir_ / "unit.txt").find("never written"), std::string::npos);
  EXPECT_NE(result_.out.find("maxlevel=5\n"), std::string::npos);
}

TEST_F(MmerrFortranTwins, NineteenCharacterPrefixIsKeptWhole) {
  EXPECT_EQ(ReadFile(dir_ / "long_prefix.txt"),
            "ABCDEFGHIJKLMNOPQRSWARNING x" + std::string(78, ' ') + "\n");
}

TEST_F(MmerrFortranTwins, DefaultHandleThrowEndsWithNewline) {
  EXPECT_EQ(result_.err, "WARNING from fortran" + std::string(79 - 12, ' ') + "\n");
}

TEST_F(MmerrFortranTwins, ReturnCodeIsBlankPadded) {
  EXPECT_NE(result_.out.find("code1=[MMERR_OK            ]"), std::string::npos) << result_.out;
  EXPECT_NE(result_.out.find("code4=[MMERR_WARNING       ]"), std::string::npos);
  EXPECT_NE(result_.out.find("code9=[(bogus MMERR level) ]"), std::string::npos);
}

}  // namespace
