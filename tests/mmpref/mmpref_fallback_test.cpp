// The chain behind the user's file (machine, then installation file), the
// filling of a new user file from past releases, and the repair of a corrupt
// one, all on real files.
#include "mmpref/mmpref.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

#include "mmerr/capture.h"
#include "pref_sandbox.h"
#include "qt_messages.h"
#include "support/test_support.h"

namespace {

using mmpref_test::PrefSandbox;
using mmpref_test::QtMessages;
using mmpref_test::xmlDocument;

std::string fixture(const std::string& name) {
  return mmfs_test::ReadFile(std::string(MMFS_TEST_SOURCE_DIR) + "/fixtures/" + name);
}

class MMprefFallbackTest : public ::testing::Test {
 protected:
  void SetUp() override {
    PrefSandbox::write(sandbox_.machineFile(), fixture("machine.xml"));
    PrefSandbox::write(sandbox_.installationFile(), fixture("installation.xml"));
  }
  PrefSandbox sandbox_;
};

TEST_F(MMprefFallbackTest, KeyOnlyInTheInstallationFileIsAFallbackValue) {
  MMPREF store(MMPREF_PAVANE, false);
  MMpref_Err err;
  EXPECT_EQ(store.get<QString>("site/docs", &err), "https://docs.example.invalid/");
  EXPECT_EQ(err, MMPREF_SUCCESS);
  EXPECT_EQ(store.get_or_use_value<QString>("site/docs", "none", &err), "https://docs.example.invalid/");
  EXPECT_EQ(err, MMPREF_FALLBACK_VALUE);
  EXPECT_EQ(store.getKeySource("site/docs"), MMPREF_SOURCE_INSTALLATION);
  EXPECT_FALSE(store.hasKey("site/docs"));
  EXPECT_EQ(store.getType("site/untyped"), MMPREF_TYPE_BOOL) << "a missing type reads as bool";
}

TEST_F(MMprefFallbackTest, EachLevelHidesTheOnesBelow) {
  MMPREF store(MMPREF_PAVANE, false);
  MMpref_Err err;
  EXPECT_EQ(store.get<int>("shared", &err), 1);
  EXPECT_EQ(store.getKeySource("shared"), MMPREF_SOURCE_MACHINE);
  EXPECT_EQ(store.get_or_use_value<int>("shared", 0, &err), 1);
  EXPECT_EQ(err, MMPREF_FALLBACK_VALUE);

  ASSERT_EQ(store.set("shared", 5, ""), MMPREF_SUCCESS);
  EXPECT_EQ(store.get_or_use_value<int>("shared", 0, &err), 5);
  EXPECT_EQ(err, MMPREF_SUCCESS);
  EXPECT_EQ(store.getKeySource("shared"), MMPREF_SOURCE_USER);
  EXPECT_EQ(store.getKeySource("nowhere"), MMPREF_SOURCE_NOT_FOUND);
  EXPECT_EQ(store.get_or_use_value<int>("nowhere", 3, &err), 3);
  EXPECT_EQ(err, MMPREF_NOT_FOUND);
}

TEST_F(MMprefFallbackTest, OpenGroupAndRunningPlatformApplyToTheFallbackFiles) {
  MMPREF store(MMPREF_PAVANE, false);
  ASSERT_EQ(store.beginGroup("display"), MMPREF_SUCCESS);
  MMpref_Err err;
  EXPECT_EQ(store.get<QString>("theme", &err), "dark");
  EXPECT_EQ(store.get<double>("scale", &err), 1.5);
  EXPECT_EQ(store.get<int>("fonts", &err), 12);
  EXPECT_EQ(store.getKeySource("fonts"), MMPREF_SOURCE_INSTALLATION);
  std::map<std::string, MMPREF_TYPE> keys;
  store.listKeys(keys);
  const std::map<std::string, MMPREF_TYPE> expected = {{"fonts", MMPREF_TYPE_INT},
                                                        {"scale", MMPREF_TYPE_DOUBLE},
                                                        {"scale:os=linux", MMPREF_TYPE_DOUBLE},
                                                        {"theme", MMPREF_TYPE_STRING}};
  EXPECT_EQ(keys, expected);
}

TEST_F(MMprefFallbackTest, ListOfAGroupFoundOnlyInTheMachineFile) {
  MMPREF store(MMPREF_PAVANE, false);
  std::map<std::string, int> ints;
  EXPECT_EQ(store.getIntList("machineonly", ints), MMPREF_SUCCESS);
  EXPECT_EQ(ints, (std::map<std::string, int>{{"a", 1}, {"b", 2}, {"sub/d", 4}}));
  std::vector<std::string> groups;
  store.getSubgroups(groups, "machineonly");
  EXPECT_TRUE(groups.empty()) << "subgroups are those of the user's file";
}

TEST_F(MMprefFallbackTest, SetRefusesATypeThatAFallbackKeyContradicts) {
  MMPREF store(MMPREF_PAVANE, false);
  morvellanth::mmlibs::CaptureMMErr capture(-1);
  EXPECT_EQ(store.set("shared", QString("text"), ""), MMPREF_FAILURE);
  EXPECT_EQ(capture.getMessages(),
            "WARNING set: Incorrect value of type 'QString' is being set for existing 'int' type key('shared')\n");
  EXPECT_FALSE(store.hasKey("shared"));
}

TEST_F(MMprefFallbackTest, UnreadableFallbackFileIsReportedAndLeftOut) {
  mmfs_test::WriteFile(sandbox_.machineFile(), "<ApplicationSettings><broken>");
  QtMessages logged;
  MMPREF store(MMPREF_PAVANE, false);
  const std::string expected = "scan_profile : Loading first level fallback   setting( \"" +
                               sandbox_.machineFile() +
                               "\" ) failed.  Format error in using settings file. This might not be in proper "
                               ".xml format.";
  const auto warnings = logged.warnings();
  ASSERT_EQ(warnings.size(), 2u);
  EXPECT_EQ(warnings[0].rfind("! Error parsing XML configuration file", 0), 0u) << warnings[0];
  EXPECT_EQ(warnings[1], expected);
  MMpref_Err err;
  EXPECT_EQ(store.get<int>("shared", &err), 2);
  EXPECT_EQ(store.getKeySource("shared"), MMPREF_SOURCE_INSTALLATION);
}

TEST_F(MMprefFallbackTest, FallbackFilesAreReadAgainOnlyAfterTheLastStoreCloses) {
  mmfs_test::ScopedEnv once("MORVELLANTH_MMPREF_TEST");
  MMpref_Err err;
  auto first = std::make_unique<MMPREF>(MMPREF_PAVANE, false);
  mmfs_test::WriteFile(sandbox_.machineFile(), xmlDocument("<shared dt=\"int\">100</shared>\n"));
  {
    MMPREF second(MMPREF_ORBELLE, false);
    EXPECT_EQ(second.get<int>("shared", &err), 1);
  }
  EXPECT_EQ(first->get<int>("shared", &err), 1);
  first.reset();
  MMPREF third(MMPREF_PAVANE, false);
  EXPECT_EQ(third.get<int>("shared", &err), 100);
}

TEST_F(MMprefFallbackTest, TestVariableRereadsTheFallbackFilesAtEveryOpen) {
  MMpref_Err err;
  MMPREF first(MMPREF_PAVANE, false);
  mmfs_test::WriteFile(sandbox_.machineFile(), xmlDocument("<shared dt=\"int\">100</shared>\n"));
  MMPREF second(MMPREF_ORBELLE, false);
  EXPECT_EQ(second.get<int>("shared", &err), 100);
  EXPECT_EQ(first.get<int>("shared", &err), 100) << "the fallback stores are shared by all stores";
}

class MMprefMigrationTest : public ::testing::Test {
 protected:
  PrefSandbox sandbox_;
};

TEST_F(MMprefMigrationTest, CopiesOnlyTheNewestPastReleaseThatHasKeys) {
  sandbox_.write(sandbox_.userFile("Pavane", "2025-3"), xmlDocument(""));
  sandbox_.write(sandbox_.userFile("Pavane", "2025-2"), "not xml at all");
  sandbox_.write(sandbox_.userFile("Pavane", "2024-2"),
                 xmlDocument("<!--kept with the key-->\n<k dt=\"int\">1</k>\n<only2024 dt=\"bool\">true</only2024>\n"));
  sandbox_.write(sandbox_.userFile("Pavane", "2023-1"),
                 xmlDocument("<k dt=\"int\">2</k>\n<only2023 dt=\"int\">3</only2023>\n"));
  {
    QtMessages quiet;
    MMPREF store(MMPREF_PAVANE, true);
    MMpref_Err err;
    EXPECT_EQ(store.get<int>("k", &err), 1);
    EXPECT_TRUE(store.get<bool>("only2024", &err));
    EXPECT_FALSE(store.hasKey("only2023"));
    EXPECT_FALSE(mmfs_test::PathExists(sandbox_.userFile("Pavane"))) << "written only by the first sync";
  }
  const std::string text = mmfs_test::ReadFile(sandbox_.userFile("Pavane"));
  EXPECT_NE(text.find("<!--kept with the key-->\n    <k dt=\"int\">1</k>"), std::string::npos) << text;
  EXPECT_EQ(text.find("only2023"), std::string::npos) << text;
}

TEST_F(MMprefMigrationTest, ReleasesUpTo2017_1AreFoundUnderTheHomeDirectory) {
  sandbox_.write(sandbox_.homeFile("Orbelle", "2016-4"), xmlDocument("<old dt=\"int\">7</old>\n"));
  sandbox_.write(sandbox_.userFile("Orbelle", "2016-3"), xmlDocument("<wrong dt=\"int\">8</wrong>\n"));
  MMPREF store(MMPREF_ORBELLE, true);
  MMpref_Err err;
  EXPECT_EQ(store.get<int>("old", &err), 7);
  EXPECT_FALSE(store.hasKey("wrong"));
}

TEST_F(MMprefMigrationTest, Release2019_3FilesAreFoundByThatReleasesNames) {
  sandbox_.write(sandbox_.userFile("Quorlan", "2019-3"), xmlDocument("<from dt=\"QString\">Quorlan</from>\n"));
  sandbox_.write(sandbox_.userFile("Fjord", "2019-3"), xmlDocument("<from dt=\"QString\">Fjord</from>\n"));
  MMpref_Err err;
  MMPREF fjord(MMPREF_FJORD, true);
  EXPECT_EQ(fjord.get<QString>("from", &err), "Quorlan");
  MMPREF qvx(MMPREF_QVX, true);
  EXPECT_EQ(qvx.get<QString>("from", &err), "Fjord");
}

TEST_F(MMprefMigrationTest, NothingToCopyMakesNoFileUntilAWrite) {
  {
    MMPREF store(MMPREF_PAVANE, true);
  }
  EXPECT_FALSE(mmfs_test::PathExists(sandbox_.userFile("Pavane")));
  {
    MMPREF store(MMPREF_PAVANE, true);
    ASSERT_EQ(store.set("k", 1, ""), MMPREF_SUCCESS);
  }
  EXPECT_TRUE(mmfs_test::PathExists(sandbox_.userFile("Pavane")));
}

TEST_F(MMprefMigrationTest, ExistingUserFileIsNeverFilledFromThePast) {
  sandbox_.write(sandbox_.userFile("Pavane"), "");
  sandbox_.write(sandbox_.userFile("Pavane", "2025-1"), xmlDocument("<k dt=\"int\">1</k>\n"));
  MMPREF store(MMPREF_PAVANE, true);
  EXPECT_FALSE(store.hasKey("k"));
}

TEST_F(MMprefMigrationTest, CorruptUserFileIsRemovedAndTheOpenSucceedsEmpty) {
  const std::string file = sandbox_.userFile("Pavane");
  sandbox_.write(file, "<ApplicationSettings><a dt=\"int\">1</a>");
  QtMessages logged;
  MMPREF store(MMPREF_PAVANE, false);
  EXPECT_FALSE(mmfs_test::PathExists(file));
  EXPECT_FALSE(store.hasKey("a"));
  const std::string expected = "initialize_handle : Loading setting( \"" + file +
                               "\" ) failed.  Format error in using settings file. This might not be in proper "
                               ".xml format.";
  ASSERT_EQ(logged.warnings().size(), 2u);
  EXPECT_EQ(logged.warnings()[1], expected);
  ASSERT_EQ(store.set("a", 2, ""), MMPREF_SUCCESS);
  EXPECT_EQ(store.syncSettings(), MMPREF_SUCCESS);
  EXPECT_NE(mmfs_test::ReadFile(file).find("<a dt=\"int\">2</a>"), std::string::npos);
}

// Whatever bytes the user's file holds, opening it gives a working store; the
// sanitizer build checks that reading them overruns nothing.
TEST_F(MMprefMigrationTest, RandomBytesInTheUserFileNeverBreakTheOpen) {
  QtMessages quiet;
  std::mt19937 random(4025);
  const std::string valid = xmlDocument("<g>\n<k dt=\"int\">1</k>\n<s dt=\"QString\">text</s>\n</g>\n");
  const char* const products[] = {"Pavane", "Harrowmere"};
  for (int round = 0; round < 40; ++round) {
    std::string bytes = valid;
    if (round % 2 == 0) {
      bytes.resize(1 + random() % 300);
      for (char& c : bytes) c = static_cast<char>(random());
    } else {
      for (int hit = 0; hit < 3; ++hit) bytes[random() % bytes.size()] = static_cast<char>(random());
    }
    const MMPREF_PRODUCTS product = static_cast<MMPREF_PRODUCTS>(round % 2);
    sandbox_.write(sandbox_.userFile(products[round % 2]), bytes);
    MMPREF store(product, false);
    EXPECT_EQ(store.set("after", round, ""), MMPREF_SUCCESS);
    EXPECT_EQ(store.syncSettings(), MMPREF_SUCCESS) << round;
    MMpref_Err err;
    EXPECT_EQ(store.get<int>("after", &err), round);
  }
}

}  // namespace
