// The chain behind the user's file (machine, then installation file) and the
// filling of a new user file from past releases, on real files.
#include "mmpref/mmpref.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "pref_sandbox.h"

namespace {

using mmpref_test::PrefSandbox;
using mmpref_test::QtWarnings;
using mmpref_test::xmlDocument;

TEST(MMprefFallback, EachLevelHidesTheOnesBelowAndFallbackValuesGiveCode2) {
  PrefSandbox sandbox;
  const std::string fixtures = std::string(MMFS_TEST_SOURCE_DIR) + "/fixtures/";
  sandbox.write(sandbox.machineFile(), mmfs_test::ReadFile(fixtures + "machine.xml"));
  sandbox.write(sandbox.installationFile(), mmfs_test::ReadFile(fixtures + "installation.xml"));
  MMPREF store(MMPREF_PAVANE, false);
  MMpref_Err err;
  EXPECT_EQ(store.get<QString>("site/docs", &err), "https://docs.example.invalid/");
  EXPECT_EQ(err, MMPREF_SUCCESS);
  EXPECT_EQ(store.get_or_use_value<QString>("site/docs", "none", &err), "https://docs.example.invalid/");
  EXPECT_EQ(err, MMPREF_FALLBACK_VALUE);
  EXPECT_EQ(store.getKeySource("site/docs"), MMPREF_SOURCE_INSTALLATION);

  EXPECT_EQ(store.get_or_use_value<int>("shared", 0, &err), 1);
  EXPECT_EQ(err, MMPREF_FALLBACK_VALUE);
  EXPECT_EQ(store.getKeySource("shared"), MMPREF_SOURCE_MACHINE);
  ASSERT_EQ(store.set("shared", 5, ""), MMPREF_SUCCESS);
  EXPECT_EQ(store.get_or_use_value<int>("shared", 0, &err), 5);
  EXPECT_EQ(err, MMPREF_SUCCESS);
  EXPECT_EQ(store.getKeySource("shared"), MMPREF_SOURCE_USER);
  EXPECT_EQ(store.getKeySource("nowhere"), MMPREF_SOURCE_NOT_FOUND);
  int n = 0;
  EXPECT_EQ(store.getInt("nowhere", &n, 3), MMPREF_NOT_FOUND);
  EXPECT_EQ(n, 3);
  EXPECT_EQ(store.getType("site/untyped"), MMPREF_TYPE_BOOL) << "a missing type reads as bool";

  std::map<std::string, int> ints;
  EXPECT_EQ(store.getIntList("machineonly", ints), MMPREF_SUCCESS);
  EXPECT_EQ(ints, (std::map<std::string, int>{{"a", 1}, {"b", 2}, {"sub/d", 4}}));
}

TEST(MMprefMigration, CopiesOnlyTheNewestPastReleaseThatHasKeys) {
  PrefSandbox sandbox;
  sandbox.write(sandbox.userFile("Pavane", "2025-3"), xmlDocument(""));
  sandbox.write(sandbox.userFile("Pavane", "2025-2"), "not xml at all");
  sandbox.write(sandbox.userFile("Pavane", "2024-2"),
                xmlDocument("<!--kept with the key-->\n<k dt=\"int\">1</k>\n<only2024 dt=\"bool\">true</only2024>\n"));
  sandbox.write(sandbox.userFile("Pavane", "2023-1"), xmlDocument("<k dt=\"int\">2</k>\n<old dt=\"int\">3</old>\n"));
  {
    QtWarnings quiet;
    MMPREF store(MMPREF_PAVANE, true);
    EXPECT_FALSE(mmfs_test::PathExists(sandbox.userFile("Pavane"))) << "written only by the first sync";
  }
  EXPECT_EQ(mmfs_test::ReadFile(sandbox.userFile("Pavane")),
            xmlDocument("    <!--kept with the key-->\n    <k dt=\"int\">1</k>\n    <only2024 dt=\"bool\">true</only2024>\n"));
}

TEST(MMprefMigration, OldReleasesAreFoundUnderTheirOwnDirectoriesAndNames) {
  PrefSandbox sandbox;
  const std::string home = sandbox.root() + "/home/.morvellanth/";
  sandbox.write(home + "2017-2/Orbelle.xml", xmlDocument("<from dt=\"QString\">home 2017-2</from>\n"));
  sandbox.write(sandbox.userFile("Orbelle", "2017-1"), xmlDocument("<from dt=\"QString\">appdata 2017-1</from>\n"));
  sandbox.write(home + "2017-1/Orbelle.xml", xmlDocument("<from dt=\"QString\">home 2017-1</from>\n"));
  sandbox.write(sandbox.userFile("Quorlan", "2019-3"), xmlDocument("<from dt=\"QString\">Quorlan</from>\n"));
  sandbox.write(sandbox.userFile("Fjord", "2019-3"), xmlDocument("<from dt=\"QString\">Fjord</from>\n"));
  MMpref_Err err;
  EXPECT_EQ(MMPREF(MMPREF_ORBELLE, true).get<QString>("from", &err), "home 2017-1");
  EXPECT_EQ(MMPREF(MMPREF_FJORD, true).get<QString>("from", &err), "Quorlan");
  EXPECT_EQ(MMPREF(MMPREF_QVX, true).get<QString>("from", &err), "Fjord");
}

}  // namespace
