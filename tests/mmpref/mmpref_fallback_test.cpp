// The chain behind the user's file (machine, then installation file), the
// filling of a new user file from past releases, and the repair of a corrupt
// one, all on real files.
#include "mmpref/mmpref.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "mmerr/capture.h"
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
  EXPECT_FALSE(store.hasKey("site/docs"));

  EXPECT_EQ(store.get_or_use_value<int>("shared", 0, &err), 1);
  EXPECT_EQ(err, MMPREF_FALLBACK_VALUE);
  EXPECT_EQ(store.getKeySource("shared"), MMPREF_SOURCE_MACHINE);
  morvellanth::mmlibs::CaptureMMErr capture(-1);
  EXPECT_EQ(store.set("shared", QString("text"), ""), MMPREF_FAILURE) << "the machine file's type holds";
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
  ASSERT_EQ(store.beginGroup("display"), MMPREF_SUCCESS);
  EXPECT_EQ(store.get<QString>("theme", &err), "dark");
  EXPECT_EQ(store.get<double>("scale", &err), 1.5) << "the running platform's key";
  EXPECT_EQ(store.get<int>("fonts", &err), 12);
  EXPECT_EQ(store.getKeySource("fonts"), MMPREF_SOURCE_INSTALLATION);
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
    MMpref_Err err;
    EXPECT_EQ(store.get<int>("k", &err), 1);
    EXPECT_TRUE(store.get<bool>("only2024", &err));
    EXPECT_FALSE(store.hasKey("old"));
    EXPECT_FALSE(mmfs_test::PathExists(sandbox.userFile("Pavane"))) << "written only by the first sync";
  }
  const std::string text = mmfs_test::ReadFile(sandbox.userFile("Pavane"));
  EXPECT_NE(text.find("<!--kept with the key-->\n    <k dt=\"int\">1</k>"), std::string::npos) << text;
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

TEST(MMprefRepair, CorruptUserFileIsRemovedAndTheOpenSucceedsEmpty) {
  PrefSandbox sandbox;
  const std::string file = sandbox.userFile("Pavane");
  sandbox.write(file, "<ApplicationSettings><a dt=\"int\">1</a>");
  QtWarnings logged;
  MMPREF store(MMPREF_PAVANE, false);
  EXPECT_FALSE(mmfs_test::PathExists(file));
  EXPECT_FALSE(store.hasKey("a"));
  ASSERT_EQ(logged.texts().size(), 2u);
  EXPECT_EQ(logged.texts()[1], "initialize_handle : Loading setting( \"" + file +
                                   "\" ) failed.  Format error in using settings file. This might not be in proper "
                                   ".xml format.");
}

}  // namespace
