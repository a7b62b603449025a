// Runs the gfortran program that calls the file twins and checks what it
// printed and what the library reported on standard error.
#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"

namespace {

TEST(FortranProgram, FindsExpandsAndTruncatesThroughTheTwins) {
  mmfs_test::TempDir dir;
  mmfs_test::ScopedEnv var("MMFILE_FORTRAN_VAR", "/from/env");
  mmfs_test::ScopedEnv appdata("MORVELLANTH_APPDATA_OVERRIDE", dir / "appdata");
  const auto run = mmfs_test::RunProgram({MMFILE_FORTRAN_PROGRAM, dir.path()});
  ASSERT_TRUE(run.exited) << run.err;
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_EQ(run.out, "set status=0\n"
                     "find status=0\n"
                     "find path=[" + dir.path() + "/probe.dat]\n"
                     "find padded=T\n"
                     "miss status=-1\n"
                     "get status=-1\n"
                     "get short=[" + (dir.path() + "/none").substr(0, 8) + "]\n"
                     "expand status=0\n"
                     "expand=[/from/env/x]\n"
                     "absolute status=0\n"
                     "relative status=-1\n");
  // The truncation is FATAL and printed; the INFO notes stay below the default
  // handle's threshold.
  const std::string need = std::to_string(2 * dir.path().size() + 6);
  EXPECT_EQ(run.err, "FATAL mmfilef_path_get_: fpath not long enough; need " + need + " chars, have 8");
}

}  // namespace
