// The installation check: a product directory under MORVELLANTH is found, a
// missing one is reported, and status is reset either way.
#include "mmcommon/installation.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/test_support.h"

TEST(CheckInstallation, FindsOnlyInstalledProducts) {
  mmfs_test::TempDir root;
  ASSERT_EQ(mkdir((root / "kitbase-v7.2").c_str(), 0755), 0);
  mmfs_test::ScopedEnv installation("MORVELLANTH", root.path());
  int status[2] = {99, 99};
  EXPECT_EQ(mmcommon_check_installation("kitbase", &status[0]), 0);
  EXPECT_EQ(mmcommon_check_installation("panoply", &status[1]), -1);
  EXPECT_TRUE(status[0] == 0 && status[1] == 0);
}
