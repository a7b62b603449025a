// The installation check: a product directory under MORVELLANTH is found,
// a missing product or root is reported, and status is always reset.
#include "mmcommon/installation.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "support/test_support.h"

namespace {

using mmfs_test::ScopedEnv;
using mmfs_test::TempDir;

TEST(CheckInstallation, FindsAnInstalledProduct) {
  TempDir root;
  ASSERT_EQ(mkdir((root / "kitbase-v7.2").c_str(), 0755), 0);
  ScopedEnv installation("MORVELLANTH", root.path());
  int status = 99;
  EXPECT_EQ(mmcommon_check_installation("kitbase", &status), 0);
  EXPECT_EQ(status, 0);
}

TEST(CheckInstallation, ReportsAMissingProduct) {
  TempDir root;
  ASSERT_EQ(mkdir((root / "panoply-v3.1").c_str(), 0755), 0);
  mmfs_test::WriteFile(root / "kitbase-v7.2", "a file, not a directory");
  ScopedEnv installation("MORVELLANTH", root.path());
  int status = 99;
  EXPECT_EQ(mmcommon_check_installation("ravine", &status), -1);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(mmcommon_check_installation("panoply", &status), 0);
}

TEST(CheckInstallation, ReportsAMissingRoot) {
  TempDir root;
  ScopedEnv installation("MORVELLANTH", root / "missing");
  int status = 99;
  mmfs_test::ChildResult result = mmfs_test::RunInChild([&] {
    return mmcommon_check_installation("kitbase", &status) == -1 && status == 0 ? 0 : 1;
  });
  ASSERT_TRUE(result.exited);
  EXPECT_EQ(result.exit_code, 0) << result.out << result.err;
}

}  // namespace
