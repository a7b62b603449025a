// Runs the gfortran program that calls the error-reporting twins and checks
// what it printed, what reached standard error and the records it wrote.
#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"

TEST(MmerrFortranTwins, WriteTrimmedPrefixesAndWholeFieldsToUnitsAndStreams) {
  mmfs_test::TempDir dir;
  auto result = mmfs_test::RunProgram({MMERR_FORTRAN_PROGRAM, dir.path()});
  ASSERT_EQ(result.exit_code, 0) << result.err;
  // The level word, a blank and all 79 characters of the field, blanks included.
  const std::string blanks(79 - 12, ' ');
  EXPECT_EQ(mmfs_test::ReadFile(dir / "unit.txt"),
            "ERR WARNING first record" + blanks + "\nprogram line\n");
  EXPECT_EQ(result.err, "WARNING from fortran" + blanks + "\n");
  EXPECT_EQ(result.out,
            "handle=1 maxlevel=5 statuses 1 1 1 1 1 1 1 1\n"
            "[MMERR_OK            ][(bogus MMERR level) ]\n");
}
