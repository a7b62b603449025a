// Where preference files are looked for, per product, release and setting.
#include "mmpref/mmpref_locations.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "pref_sandbox.h"
#include "support/test_support.h"

namespace {

using mmfs_test::ScopedEnv;
using mmpref_test::PrefSandbox;
using namespace morvellanth::preferences::internal;

std::string fileOf(int product, const char* release) {
  return get_mmpref_file(static_cast<MMPREF_PRODUCTS>(product), release).toStdString();
}

class MMprefLocationsTest : public ::testing::Test {
 protected:
  PrefSandbox sandbox_;
};

TEST_F(MMprefLocationsTest, CurrentFilesLiveInTheApplicationDataDirectory) {
  EXPECT_EQ(mmpref_config_path().toStdString(), sandbox_.root() + "/appdata");
  EXPECT_EQ(fileOf(MMPREF_PAVANE, "2025-4"), sandbox_.userFile("Pavane"));
  EXPECT_EQ(fileOf(MMPREF_TIDEMARK, "2020-1"), sandbox_.userFile("Tidemark", "2020-1"));
}

TEST_F(MMprefLocationsTest, ReleasesUpTo2017_1UseTheHomeDirectory) {
  EXPECT_EQ(get_mmpref_directory("2017-1"), sandbox_.root() + "/home/.morvellanth/2017-1");
  EXPECT_EQ(get_mmpref_directory("2013"), sandbox_.root() + "/home/.morvellanth/2013");
  EXPECT_EQ(get_mmpref_directory("2017-2"), sandbox_.root() + "/appdata/2017-2");
}

TEST_F(MMprefLocationsTest, RelativeSandboxIsMadeAbsoluteForOldAndNewReleases) {
  const std::string previous = std::filesystem::current_path();
  ASSERT_EQ(chdir(sandbox_.root().c_str()), 0);
  {
    ScopedEnv sandbox("MORVELLANTH_MMPREF_SANDBOX", "box");
    const std::string base = sandbox_.root() + "/box/.morvellanth";
    EXPECT_EQ(mmpref_config_path().toStdString(), base);
    EXPECT_EQ(get_mmpref_directory("2016-2"), base + "/2016-2");
    EXPECT_EQ(get_mmpref_directory("2025-4"), base + "/2025-4");
  }
  ASSERT_EQ(chdir(previous.c_str()), 0);
}

TEST_F(MMprefLocationsTest, Release2019_3KeepsItsOwnNamesForProducts9To15) {
  const char* const base = "/2019-3/";
  const std::string dir = sandbox_.root() + "/appdata" + base;
  EXPECT_EQ(fileOf(9, "2019-3"), dir + "Quorlan.xml");
  EXPECT_EQ(fileOf(10, "2019-3"), dir + "Fjord.xml");
  EXPECT_EQ(fileOf(14, "2019-3"), dir + "Scripts.xml");
  EXPECT_EQ(fileOf(15, "2019-3"), dir + "Shared.xml");
  EXPECT_EQ(fileOf(0, "2019-3"), dir + "Pavane.xml");
  EXPECT_EQ(fileOf(8, "2019-3"), dir + "Panoply.xml");
  EXPECT_EQ(fileOf(9, "2019-4"), sandbox_.userFile("Fjord", "2019-4"));
  EXPECT_EQ(fileOf(15, "2019-2"), sandbox_.userFile("Tidemark", "2019-2"));
}

TEST_F(MMprefLocationsTest, UnknownProductHasNoFile) {
  EXPECT_EQ(mmpref_product_count(), 16);
  EXPECT_THROW(fileOf(16, "2025-4"), std::out_of_range);
  EXPECT_THROW(fileOf(-1, "2019-3"), std::out_of_range);
}

TEST(MMprefFallbackPaths, VariablesNameTheMachineAndInstallationFiles) {
  {
    ScopedEnv site("MORVELLANTH_SITE_PREFERENCE", "/site/prefs.xml");
    ScopedEnv machine("MORVELLANTH_MACHINE_PREFERENCE", "/machine/prefs.xml");
    EXPECT_EQ(get_suite_preferences_path().toStdString(), "/site/prefs.xml");
    EXPECT_EQ(get_machine_preferences_path().toStdString(), "/machine/prefs.xml");
  }
  ScopedEnv site("MORVELLANTH_SITE_PREFERENCE");
  ScopedEnv machine("MORVELLANTH_MACHINE_PREFERENCE");
  ScopedEnv root("MORVELLANTH", "/opt/suite");
  EXPECT_EQ(get_suite_preferences_path().toStdString(), "/opt/suite/config/suitepref.xml");
  EXPECT_EQ(get_machine_preferences_path().toStdString(),
            "/Library/Application Support/Morvellanth/suitepref.xml");
}

TEST(MMprefSource, TextsOfTheSources) {
  EXPECT_EQ(mmpref_source_to_string(MMPREF_SOURCE_USER), "user");
  EXPECT_EQ(mmpref_source_to_string(MMPREF_SOURCE_MACHINE), "machine");
  EXPECT_EQ(mmpref_source_to_string(MMPREF_SOURCE_INSTALLATION), "installation");
  EXPECT_EQ(mmpref_source_to_string(MMPREF_SOURCE_NOT_FOUND), "not found");
  EXPECT_EQ(mmpref_source_to_string(static_cast<MMPrefSource>(4)), "unknown");
}

}  // namespace
