// Store operations on the user's file: typed keys, validation, groups,
// platform keys, removal, lists and writing back.
#include "mmpref/mmpref.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "mmerr/capture.h"
#include "pref_sandbox.h"
#include "support/test_support.h"

namespace {

using morvellanth::mmlibs::CaptureMMErr;
using mmpref_test::PrefSandbox;
using mmpref_test::xmlDocument;

class MMprefStoreTest : public ::testing::Test {
 protected:
  std::string userFile() const { return sandbox_.userFile("Pavane"); }
  std::string fileText() const { return mmfs_test::ReadFile(userFile()); }

  PrefSandbox sandbox_;
};

TEST_F(MMprefStoreTest, OpeningCreatesAnEmptyUserFile) {
  MMPREF store(MMPREF_PAVANE, false);
  EXPECT_TRUE(mmfs_test::PathExists(userFile()));
  EXPECT_EQ(fileText(), "");
  std::string file;
  store.getSettingsFile(file);
  EXPECT_EQ(file, userFile());
}

TEST_F(MMprefStoreTest, TypedValuesSurviveAWriteAndAReopen) {
  {
    MMPREF store(MMPREF_PAVANE, false);
    EXPECT_EQ(store.set("panel/width", 640, ""), MMPREF_SUCCESS);
    EXPECT_EQ(store.set("panel/ratio", 0.75, ""), MMPREF_SUCCESS);
    EXPECT_EQ(store.set("panel/shown", true, ""), MMPREF_SUCCESS);
    EXPECT_EQ(store.set("title", QString("Main window"), "shown in the title bar"), MMPREF_SUCCESS);
    EXPECT_EQ(store.syncSettings(), MMPREF_SUCCESS);
  }
  EXPECT_NE(fileText().find("    <!--shown in the title bar-->\n    <title dt=\"QString\">Main window</title>"),
            std::string::npos)
      << fileText();

  MMPREF store(MMPREF_PAVANE, false);
  MMpref_Err err;
  EXPECT_EQ(store.get<int>("panel/width", &err), 640);
  EXPECT_EQ(err, MMPREF_SUCCESS);
  EXPECT_EQ(store.get<double>("panel/ratio", &err), 0.75);
  EXPECT_EQ(store.get<bool>("panel/shown", &err), true);
  EXPECT_EQ(store.get<QString>("title", &err), "Main window");
  EXPECT_EQ(err, MMPREF_SUCCESS);
  EXPECT_EQ(store.getType("panel/width"), MMPREF_TYPE_INT);
  EXPECT_EQ(store.getType("title"), MMPREF_TYPE_STRING);
  EXPECT_EQ(store.getType("panel/ratio"), MMPREF_TYPE_DOUBLE);
  EXPECT_EQ(store.getType("panel/shown"), MMPREF_TYPE_BOOL);
  EXPECT_EQ(store.getType("panel/none"), MMPREF_TYPE_NONE);
}

TEST_F(MMprefStoreTest, SetOfAnotherTypeIsRefusedWithAMessage) {
  MMPREF store(MMPREF_PAVANE, false);
  ASSERT_EQ(store.set("title", QString("Main"), ""), MMPREF_SUCCESS);
  CaptureMMErr capture(-1);
  EXPECT_EQ(store.set("title", 5, ""), MMPREF_FAILURE);
  EXPECT_EQ(capture.getMessages(),
            "WARNING set: Incorrect value of type 'int' is being set for existing 'QString' type key('title')\n");
  MMpref_Err err;
  EXPECT_EQ(store.get<QString>("title", &err), "Main");
}

TEST_F(MMprefStoreTest, SetOfTheSameTypeKeepsAnEarlierComment) {
  {
    MMPREF store(MMPREF_PAVANE, false);
    ASSERT_EQ(store.set("count", 1, "how many"), MMPREF_SUCCESS);
    ASSERT_EQ(store.set("count", 2, ""), MMPREF_SUCCESS);
    MMpref_Err err;
    EXPECT_EQ(store.get<int>("count", &err), 2);
  }
  EXPECT_NE(fileText().find("<!--how many-->\n    <count dt=\"int\">2</count>"), std::string::npos) << fileText();
}

TEST_F(MMprefStoreTest, InvalidKeysGiveCode10AndNameTheBadPart) {
  MMPREF store(MMPREF_PAVANE, false);
  const std::map<std::string, std::string> bad = {
      {"a b", "a b"}, {"group/9lives", "9lives"}, {"a//b", ""}, {"", ""}, {"/lead", ""}, {"tail/", ""},
      {"tab\there", "tab\there"}};
  for (const auto& [key, part] : bad) {
    CaptureMMErr capture(-1);
    EXPECT_EQ(store.set(key, 1, ""), MMPREF_INVALID_KEY) << key;
    EXPECT_EQ(capture.getMessages(), "WARNING validate_key: Invalid character in the mmpref key '" + part +
                                         "'. See w3.org for valid xml element tag rules.")
        << key;
  }
  CaptureMMErr quiet(-1);
  EXPECT_EQ(MMPREF::validate_key("good/_name/x-1.y"), 0);
  std::map<std::string, MMPREF_TYPE> keys;
  store.listKeys(keys);
  EXPECT_TRUE(keys.empty());
}

TEST_F(MMprefStoreTest, ConvertsTheTextOfAFileToItsType) {
  sandbox_.write(userFile(), xmlDocument("<w dt=\"int\">-640</w>\n<r dt=\"double\">0.1</r>\n"
                                         "<on dt=\"bool\">true</on>\n<off dt=\"bool\">false</off>\n"
                                         "<s dt=\"QString\"> padded </s>\n"));
  MMPREF store(MMPREF_PAVANE, false);
  MMpref_Err err;
  EXPECT_EQ(store.get<int>("w", &err), -640);
  EXPECT_EQ(store.get<double>("r", &err), 0.1);
  EXPECT_TRUE(store.get<bool>("on", &err));
  EXPECT_EQ(err, MMPREF_SUCCESS);
  EXPECT_FALSE(store.get<bool>("off", &err));
  EXPECT_EQ(err, MMPREF_SUCCESS);
  EXPECT_EQ(store.get<QString>("s", &err), " padded ");
}

TEST_F(MMprefStoreTest, ReadsReportAbsentAndMismatchedTypes) {
  sandbox_.write(userFile(), xmlDocument("<num dt=\"int\">abc</num>\n<text dt=\"QString\">12</text>\n"
                                         "<untyped>true</untyped>\n<odd dt=\"float\">1.5</odd>\n"));
  MMPREF store(MMPREF_PAVANE, false);
  MMpref_Err err;
  EXPECT_EQ(store.get<int>("missing", &err), 0);
  EXPECT_EQ(err, MMPREF_NOT_FOUND);
  EXPECT_EQ(store.get<int>("text", &err), 0);
  EXPECT_EQ(err, MMPREF_WRONG_TYPE);
  EXPECT_EQ(store.get<int>("num", &err), 0);
  EXPECT_EQ(err, MMPREF_WRONG_TYPE);
  EXPECT_EQ(store.get<QString>("num", &err), "");
  EXPECT_EQ(err, MMPREF_WRONG_TYPE);
  EXPECT_EQ(store.getType("untyped"), MMPREF_TYPE_BOOL);
  EXPECT_EQ(store.getType("odd"), MMPREF_TYPE_BOOL);
  EXPECT_EQ(store.get_or_use_value<int>("missing", 7, &err), 7);
  EXPECT_EQ(err, MMPREF_NOT_FOUND);
  EXPECT_EQ(store.get_or_use_value<int>("num", 8, &err), 8);
  EXPECT_EQ(err, MMPREF_WRONG_TYPE);
  EXPECT_EQ(store.get_or_use_value<QString>("text", "x", &err), "12");
  EXPECT_EQ(err, MMPREF_SUCCESS);
}

TEST_F(MMprefStoreTest, GroupsPrefixKeysAndRefuseInvalidNames) {
  MMPREF store(MMPREF_PAVANE, false);
  ASSERT_EQ(store.beginGroup("viewer"), MMPREF_SUCCESS);
  ASSERT_EQ(store.beginGroup("colors"), MMPREF_SUCCESS);
  CaptureMMErr capture(-1);
  EXPECT_EQ(store.beginGroup("a b"), MMPREF_INVALID_KEY);
  EXPECT_EQ(store.getGroup(), "viewer/colors");
  ASSERT_EQ(store.set("background", QString("black"), ""), MMPREF_SUCCESS);
  store.endGroup();
  store.endGroup();
  EXPECT_EQ(store.getGroup(), "");
  MMpref_Err err;
  EXPECT_EQ(store.get<QString>("viewer/colors/background", &err), "black");
  std::vector<std::string> groups;
  store.getSubgroups(groups, "viewer");
  EXPECT_EQ(groups, std::vector<std::string>{"colors"});
  groups.clear();
  store.getSubgroups(groups);
  EXPECT_EQ(groups, std::vector<std::string>{"viewer"});
}

TEST_F(MMprefStoreTest, PlatformKeyOfTheRunningSystemIsReadFirst) {
  {
    MMPREF store(MMPREF_PAVANE, false);
    ASSERT_EQ(store.set("width", 640, ""), MMPREF_SUCCESS);
    EXPECT_EQ(store.beginOsAttribute(MMPREF_PLATFORM_NONE), MMPREF_PLATFORM_LINUX);
    ASSERT_EQ(store.set("width", 800, ""), MMPREF_SUCCESS);
    EXPECT_EQ(store.beginOsAttribute(MMPREF_PLATFORM_WINDOWS), MMPREF_PLATFORM_WINDOWS);
    ASSERT_EQ(store.set("height", 900, ""), MMPREF_SUCCESS);
    store.endOsAttribute();
  }
  EXPECT_NE(fileText().find("<width dt=\"int\" os=\"linux\">800</width>"), std::string::npos) << fileText();
  MMPREF store(MMPREF_PAVANE, false);
  MMpref_Err err;
  EXPECT_EQ(store.get<int>("width", &err), 800);
  EXPECT_EQ(store.get<int>("height", &err), 0);
  EXPECT_EQ(err, MMPREF_NOT_FOUND);
  EXPECT_TRUE(store.hasKey("width"));
  EXPECT_FALSE(store.hasKey("height"));
  std::map<std::string, MMPREF_TYPE> keys;
  store.listKeys(keys);
  const std::map<std::string, MMPREF_TYPE> expected = {
      {"height:os=windows", MMPREF_TYPE_INT}, {"width", MMPREF_TYPE_INT}, {"width:os=linux", MMPREF_TYPE_INT}};
  EXPECT_EQ(keys, expected);
}

TEST_F(MMprefStoreTest, PlatformKeyWrittenByAnotherProgramIsFound) {
  sandbox_.write(userFile(), xmlDocument("<w dt=\"int\">1</w>\n<w dt=\"int\" os=\"linux\">2</w>\n"
                                         "<h dt=\"int\" os=\"windows\">3</h>\n"));
  MMPREF store(MMPREF_PAVANE, false);
  MMpref_Err err;
  EXPECT_EQ(store.get<int>("w", &err), 2);
  EXPECT_EQ(store.getType("h"), MMPREF_TYPE_NONE);
}

TEST_F(MMprefStoreTest, HasKeyWithATypeReturnsACode) {
  MMPREF store(MMPREF_PAVANE, false);
  ASSERT_EQ(store.set("n", 1, ""), MMPREF_SUCCESS);
  EXPECT_EQ(store.hasKey("n", MMPREF_TYPE_NONE), MMPREF_FAILURE);
  EXPECT_EQ(store.hasKey("absent", MMPREF_TYPE_NONE), MMPREF_FAILURE);
  EXPECT_EQ(store.hasKey("n", MMPREF_TYPE_INT), MMPREF_SUCCESS);
  EXPECT_EQ(store.hasKey("n", MMPREF_TYPE_STRING), MMPREF_FAILURE);
  EXPECT_EQ(store.hasKey("absent", MMPREF_TYPE_INT), MMPREF_NOT_FOUND);
}

TEST_F(MMprefStoreTest, TypedRemovalTakesOnlyAMatchingEntry) {
  MMPREF store(MMPREF_PAVANE, false);
  ASSERT_EQ(store.set("w", 1, ""), MMPREF_SUCCESS);
  store.beginOsAttribute(MMPREF_PLATFORM_NONE);
  ASSERT_EQ(store.set("w", 2, ""), MMPREF_SUCCESS);
  store.endOsAttribute();
  EXPECT_EQ(store.removeKey("w", MMPREF_TYPE_STRING), MMPREF_WRONG_TYPE);
  EXPECT_EQ(store.removeKey("w", MMPREF_TYPE_INT), MMPREF_SUCCESS);
  MMpref_Err err;
  EXPECT_EQ(store.get<int>("w", &err), 1);
  EXPECT_EQ(store.removeKey("w", MMPREF_TYPE_INT), MMPREF_SUCCESS);
  EXPECT_FALSE(store.hasKey("w"));
  EXPECT_EQ(store.removeKey("w", MMPREF_TYPE_INT), MMPREF_NOT_FOUND);
}

TEST_F(MMprefStoreTest, UntypedRemovalTakesTheNameAndEverythingBelow) {
  MMPREF store(MMPREF_PAVANE, false);
  ASSERT_EQ(store.set("g", 1, ""), MMPREF_SUCCESS);
  ASSERT_EQ(store.set("g/a", 2, ""), MMPREF_SUCCESS);
  ASSERT_EQ(store.set("g/sub/b", QString("x"), ""), MMPREF_SUCCESS);
  ASSERT_EQ(store.set("keep", 3, ""), MMPREF_SUCCESS);
  EXPECT_EQ(store.remove_key("g"), MMPREF_SUCCESS);
  std::map<std::string, MMPREF_TYPE> keys;
  store.listKeys(keys);
  EXPECT_EQ(keys, (std::map<std::string, MMPREF_TYPE>{{"keep", MMPREF_TYPE_INT}}));
  EXPECT_EQ(store.removeKey("g", MMPREF_TYPE_NONE), MMPREF_NOT_FOUND);
  EXPECT_EQ(store.removeKey("", MMPREF_TYPE_NONE), MMPREF_NOT_FOUND);
  EXPECT_TRUE(store.hasKey("keep"));
  store.clearSettings();
  EXPECT_FALSE(store.hasKey("keep"));
}

TEST_F(MMprefStoreTest, ListsTheKeysOfOneTypeBelowAGroup) {
  MMPREF store(MMPREF_PAVANE, false);
  ASSERT_EQ(store.set("recent/count", 3, ""), MMPREF_SUCCESS);
  ASSERT_EQ(store.set("recent/limit", 10, ""), MMPREF_SUCCESS);
  ASSERT_EQ(store.set("recent/deep/depth", 2, ""), MMPREF_SUCCESS);
  ASSERT_EQ(store.set("recent/name", QString("last"), ""), MMPREF_SUCCESS);
  store.beginOsAttribute(MMPREF_PLATFORM_NONE);
  ASSERT_EQ(store.set("recent/count", 4, ""), MMPREF_SUCCESS);
  store.endOsAttribute();

  std::map<std::string, int> ints;
  EXPECT_EQ(store.getIntList("recent", ints), MMPREF_SUCCESS);
  EXPECT_EQ(ints, (std::map<std::string, int>{{"count", 4}, {"deep/depth", 2}, {"limit", 10}}));
  std::map<std::string, std::string> texts;
  EXPECT_EQ(store.getStringList("recent", texts), MMPREF_SUCCESS);
  EXPECT_EQ(texts, (std::map<std::string, std::string>{{"name", "last"}}));
  std::map<std::string, double> none;
  EXPECT_EQ(store.getDoubleList("recent", none), MMPREF_SUCCESS);
  EXPECT_TRUE(none.empty());
  EXPECT_EQ(store.getDoubleList("nowhere", none), MMPREF_NOT_FOUND);
  EXPECT_EQ(store.getGroup(), "");
}

TEST_F(MMprefStoreTest, ConvenienceFormsForwardCodesAndDefaults) {
  MMPREF store(MMPREF_PAVANE, false);
  ASSERT_EQ(store.set("n", 5, ""), MMPREF_SUCCESS);
  int n = 0;
  EXPECT_EQ(store.getInt("n", &n), MMPREF_SUCCESS);
  EXPECT_EQ(n, 5);
  EXPECT_EQ(store.getInt("absent", &n, 9), MMPREF_NOT_FOUND);
  EXPECT_EQ(n, 9);
  std::string s;
  EXPECT_EQ(store.getString("n", s, "fallback"), MMPREF_WRONG_TYPE);
  EXPECT_EQ(s, "fallback");
}

TEST_F(MMprefStoreTest, UnknownProductThrowsWithItsText) {
  try {
    MMPREF store(static_cast<MMPREF_PRODUCTS>(16), false);
    FAIL() << "opened an unknown product";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "The product is not recognized by the library.");
  }
  EXPECT_THROW(MMPREF(static_cast<MMPREF_PRODUCTS>(-1), false), std::runtime_error);
}

TEST_F(MMprefStoreTest, UnreadableUserFileThrowsAnAccessError) {
  std::filesystem::create_directories(userFile());
  try {
    MMPREF store(MMPREF_PAVANE, false);
    FAIL() << "opened a directory as a preference file";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()), format_error(MMPREF_ACCESS_ERROR));
  }
}

TEST_F(MMprefStoreTest, LockFailureAtOpenThrowsItsText) {
  mmfs_test::WriteFile(sandbox_.root() + "/plain", "");
  mmfs_test::ScopedEnv tmpdir("TMPDIR", sandbox_.root() + "/plain/sub");
  const mmfs_test::ChildResult result = mmfs_test::RunInChild([] {
    try {
      MMPREF store(MMPREF_PAVANE, false);
    } catch (const std::runtime_error& error) {
      return std::string(error.what()) == "Failure to set lock on given settings file." ? 9 : 1;
    }
    return 0;
  });
  EXPECT_EQ(result.exit_code, 9) << result.err;
  EXPECT_NE(result.err.find("Failed to aquire lock in '"), std::string::npos);
}

}  // namespace
