// The current release name, the past-release list and release ordering.
#include "mmfile/releases.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <string>

namespace {

TEST(Releases, CurrentReleaseNameIsAnAllocatedCopy) {
  char* name = nullptr;
  EXPECT_EQ(mmfile_get_release_name(&name), 0);
  ASSERT_NE(name, nullptr);
  EXPECT_STREQ(name, "2025-4");
  EXPECT_STREQ(name, MMFILE_CURRENT_RELEASE);
  free(name);
}

TEST(Releases, PastListRunsQuarterlyFromCurrentToTheBareYear2013) {
  const auto& names = mmfile_get_past_release_names();
  ASSERT_EQ(names.size(), 52u);
  EXPECT_EQ(names[0], "2025-4");
  EXPECT_EQ(names[1], "2025-3");
  EXPECT_EQ(names[3], "2025-1");
  EXPECT_EQ(names[4], "2024-4");
  EXPECT_EQ(names[47], "2014-1");
  EXPECT_EQ(names[48], "2013-3");
  EXPECT_EQ(names[49], "2013-2");
  EXPECT_EQ(names[50], "2013-1");
  EXPECT_EQ(names[51], "2013");
  EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), 52u);
  EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).count("2013-4"), 0u);
}

TEST(Releases, PastListIsOneSharedObject) {
  EXPECT_EQ(&mmfile_get_past_release_names(), &mmfile_get_past_release_names());
}

TEST(Releases, CompareOrdersByPositionInThePastList) {
  EXPECT_EQ(compare_releases("2025-4", "2013-1"), 1);
  EXPECT_EQ(compare_releases("2013-1", "2025-4"), -1);
  EXPECT_EQ(compare_releases("2013-1", "2013"), 1);
  EXPECT_EQ(compare_releases("2024-1", "2023-4"), 1);
  EXPECT_EQ(compare_releases("2020-2", "2020-2"), 0);
}

TEST(Releases, UnknownNamesRankBelowEveryListedOne) {
  EXPECT_EQ(compare_releases("2013-4", "2013-1"), -1);
  EXPECT_EQ(compare_releases("2013", "2026-1"), 1);
  EXPECT_EQ(compare_releases("2026-1", "1999-1"), 0);
  EXPECT_EQ(compare_releases("", "2013"), -1);
}

}  // namespace
