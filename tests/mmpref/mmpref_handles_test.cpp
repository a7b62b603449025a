// The handle interface and morvellanth::Preferences over real files.
#include "mmpref/mmpref.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "pref_sandbox.h"
#include "qt_messages.h"
#include "support/test_support.h"

namespace {

using mmpref_test::PrefSandbox;
using mmpref_test::QtMessages;
using mmpref_test::xmlDocument;

// Takes ownership of a malloc'd string.
std::string taken(char* text) {
  std::string copy = text ? text : "<null>";
  free(text);
  return copy;
}

std::vector<std::string> takenNames(char** names, int count) {
  std::vector<std::string> list;
  for (int i = 0; i < count; ++i) list.push_back(taken(names[i]));
  free(names);
  return list;
}

class MMprefHandlesTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(mmpref_new(&handle_, MMPREF_PANOPLY), MMPREF_SUCCESS); }
  void TearDown() override { mmpref_delete(handle_); }

  PrefSandbox sandbox_;
  MMpref handle_ = 0;
};

TEST_F(MMprefHandlesTest, HandleIsTheStoresAddressAndDeleteWritesTheFile) {
  EXPECT_NE(handle_, 0u);
  EXPECT_EQ(taken(mmpref_get_settings_file(handle_)), sandbox_.userFile("Panoply"));
  EXPECT_EQ(mmpref_set_int(handle_, "count", 3), MMPREF_SUCCESS);
  EXPECT_EQ(mmpref_set_string(handle_, "name", "Main"), MMPREF_SUCCESS);
  EXPECT_EQ(mmpref_set_double(handle_, "ratio", 0.5), MMPREF_SUCCESS);
  EXPECT_EQ(mmpref_set_bool(handle_, "shown", true), MMPREF_SUCCESS);
  EXPECT_EQ(mmpref_delete(handle_), MMPREF_SUCCESS);
  const std::string text = mmfs_test::ReadFile(sandbox_.userFile("Panoply"));
  EXPECT_NE(text.find("<count dt=\"int\">3</count>"), std::string::npos) << text;
  EXPECT_NE(text.find("<shown dt=\"bool\">true</shown>"), std::string::npos) << text;

  int count = 0;
  EXPECT_EQ(mmpref_get_int(handle_, "count", &count), MMPREF_FAILURE) << "the handle is gone";
  EXPECT_EQ(mmpref_delete(handle_), MMPREF_FAILURE);
  ASSERT_EQ(mmpref_new(&handle_, MMPREF_PANOPLY), MMPREF_SUCCESS);
  EXPECT_EQ(mmpref_get_int(handle_, "count", &count), MMPREF_SUCCESS);
  EXPECT_EQ(count, 3);
}

TEST_F(MMprefHandlesTest, GettersStoreValuesAndCodes) {
  ASSERT_EQ(mmpref_set_string(handle_, "name", "Main"), MMPREF_SUCCESS);
  ASSERT_EQ(mmpref_set_double(handle_, "ratio", 0.5), MMPREF_SUCCESS);
  char* name = nullptr;
  EXPECT_EQ(mmpref_get_string(handle_, "name", &name), MMPREF_SUCCESS);
  EXPECT_EQ(taken(name), "Main");
  double ratio = 0;
  EXPECT_EQ(mmpref_get_double(handle_, "ratio", &ratio), MMPREF_SUCCESS);
  EXPECT_EQ(ratio, 0.5);
  int wrong = 7;
  EXPECT_EQ(mmpref_get_int(handle_, "name", &wrong), MMPREF_WRONG_TYPE);
  EXPECT_EQ(wrong, 0);
  bool absent = true;
  EXPECT_EQ(mmpref_get_bool(handle_, "absent", &absent), MMPREF_NOT_FOUND);
  EXPECT_FALSE(absent);
  EXPECT_EQ(mmpref_get_type(handle_, "ratio"), MMPREF_TYPE_DOUBLE);
  EXPECT_EQ(mmpref_get_type(handle_, "absent"), MMPREF_TYPE_NONE);
  EXPECT_EQ(mmpref_contains(handle_, "name", MMPREF_TYPE_STRING), MMPREF_SUCCESS);
  EXPECT_EQ(mmpref_contains(handle_, "name", MMPREF_TYPE_INT), MMPREF_FAILURE);
  EXPECT_EQ(mmpref_contains(handle_, "absent", MMPREF_TYPE_INT), MMPREF_NOT_FOUND);
  EXPECT_EQ(mmpref_get_key_source(handle_, "name"), MMPREF_SOURCE_USER);
  EXPECT_EQ(mmpref_set_int(handle_, "bad key", 1), MMPREF_INVALID_KEY);
}

TEST_F(MMprefHandlesTest, ListsComeAsParallelArraysInNameOrder) {
  ASSERT_EQ(mmpref_set_int(handle_, "g/b", 2), MMPREF_SUCCESS);
  ASSERT_EQ(mmpref_set_int(handle_, "g/a", 1), MMPREF_SUCCESS);
  ASSERT_EQ(mmpref_set_string(handle_, "g/s", "text"), MMPREF_SUCCESS);
  ASSERT_EQ(mmpref_set_bool(handle_, "g/sub/on", true), MMPREF_SUCCESS);

  char** names = nullptr;
  int* ints = nullptr;
  int count = -1;
  ASSERT_EQ(mmpref_get_int_list(handle_, "g", &names, &ints, &count), MMPREF_SUCCESS);
  ASSERT_EQ(count, 2);
  EXPECT_EQ(ints[0], 1);
  EXPECT_EQ(ints[1], 2);
  free(ints);
  EXPECT_EQ(takenNames(names, count), (std::vector<std::string>{"a", "b"}));

  char** texts = nullptr;
  ASSERT_EQ(mmpref_get_string_list(handle_, "g", &names, &texts, &count), MMPREF_SUCCESS);
  ASSERT_EQ(count, 1);
  EXPECT_EQ(takenNames(texts, count), std::vector<std::string>{"text"});
  EXPECT_EQ(takenNames(names, count), std::vector<std::string>{"s"});

  double* reals = nullptr;
  EXPECT_EQ(mmpref_get_double_list(handle_, "empty", &names, &reals, &count), MMPREF_NOT_FOUND);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(names, nullptr);
  EXPECT_EQ(reals, nullptr);

  ASSERT_EQ(mmpref_get_subgroups(handle_, "g", &names, &count), MMPREF_SUCCESS);
  EXPECT_EQ(takenNames(names, count), std::vector<std::string>{"sub"});
  ASSERT_EQ(mmpref_get_subgroups(handle_, nullptr, &names, &count), MMPREF_SUCCESS);
  EXPECT_EQ(takenNames(names, count), std::vector<std::string>{"g"});
}

TEST_F(MMprefHandlesTest, GroupsPlatformsRemovalAndClearing) {
  ASSERT_EQ(mmpref_begin_group(handle_, "view"), MMPREF_SUCCESS);
  EXPECT_EQ(mmpref_begin_group(handle_, "not valid"), MMPREF_INVALID_KEY);
  EXPECT_EQ(taken(mmpref_get_group(handle_)), "view");
  ASSERT_EQ(mmpref_begin_os_attribute(handle_), MMPREF_SUCCESS);
  ASSERT_EQ(mmpref_set_int(handle_, "w", 1), MMPREF_SUCCESS);
  ASSERT_EQ(mmpref_begin_os_attribute2(handle_, MMPREF_PLATFORM_DARWIN), MMPREF_SUCCESS);
  ASSERT_EQ(mmpref_set_int(handle_, "w", 2), MMPREF_SUCCESS);
  ASSERT_EQ(mmpref_end_os_attribute(handle_), MMPREF_SUCCESS);
  ASSERT_EQ(mmpref_set_int(handle_, "w", 3), MMPREF_SUCCESS);
  ASSERT_EQ(mmpref_end_group(handle_), MMPREF_SUCCESS);
  ASSERT_EQ(mmpref_sync(handle_), MMPREF_SUCCESS);
  const std::string text = mmfs_test::ReadFile(sandbox_.userFile("Panoply"));
  EXPECT_NE(text.find("<w dt=\"int\">3</w>\n        <w dt=\"int\" os=\"darwin\">2</w>\n"
                      "        <w dt=\"int\" os=\"linux\">1</w>"),
            std::string::npos)
      << text;

  EXPECT_EQ(mmpref_remove(handle_, "view/w", MMPREF_TYPE_INT), MMPREF_SUCCESS);
  int w = 0;
  EXPECT_EQ(mmpref_get_int(handle_, "view/w", &w), MMPREF_SUCCESS);
  EXPECT_EQ(w, 3) << "the running platform's key went first";
  EXPECT_EQ(mmpref_clear(handle_), MMPREF_SUCCESS);
  EXPECT_EQ(mmpref_get_type(handle_, "view/w"), MMPREF_TYPE_NONE);
}

TEST(MMprefHandles, UnknownProductGivesHandle0AndAWarning) {
  PrefSandbox sandbox;
  QtMessages logged;
  MMpref handle = 99;
  EXPECT_EQ(mmpref_new(&handle, static_cast<MMPREF_PRODUCTS>(16)), MMPREF_FAILURE);
  EXPECT_EQ(handle, 0u);
  ASSERT_EQ(logged.warnings().size(), 1u);
  EXPECT_EQ(logged.warnings()[0], "mmpref_new :  16  -  The product is not recognized by the library.");
}

TEST(MMprefHandles, UnknownHandleIsRefused) {
  const MMpref nowhere = 12345;
  int value = 0;
  EXPECT_EQ(mmpref_set_int(nowhere, "k", 1), MMPREF_FAILURE);
  EXPECT_EQ(mmpref_get_int(nowhere, "k", &value), MMPREF_FAILURE);
  EXPECT_EQ(mmpref_sync(nowhere), MMPREF_FAILURE);
  EXPECT_EQ(mmpref_get_settings_file(nowhere), nullptr);
}

class PreferencesTest : public ::testing::Test {
 protected:
  PrefSandbox sandbox_;
};

TEST_F(PreferencesTest, MissingKeyThrowsOutOfRangeAndOtherTypesReadAsZero) {
  morvellanth::Preferences prefs(MMPREF_LUMENTA);
  prefs.set("text", std::string("hello"));
  prefs.set("count", 4);
  try {
    prefs.get<int>("missing");
    FAIL() << "no exception";
  } catch (const std::out_of_range& error) {
    EXPECT_STREQ(error.what(), "No key: missing");
  }
  EXPECT_EQ(prefs.get<int>("text"), 0);
  EXPECT_EQ(prefs.get<std::string>("text"), "hello");
  EXPECT_EQ(prefs.get<QString>("text"), "hello");
  EXPECT_EQ(prefs.get<int>("count"), 4);
  EXPECT_TRUE(prefs.hasKey("count"));
  prefs.removeKey("count");
  EXPECT_FALSE(prefs.hasKey("count"));
  prefs.clear();
  EXPECT_THROW(prefs.get<std::string>("text"), std::out_of_range);
}

TEST_F(PreferencesTest, FillsANewFileFromThePastRelease) {
  sandbox_.write(sandbox_.userFile("Lumenta", "2024-4"), xmlDocument("<ratio dt=\"double\">2.5</ratio>\n"));
  morvellanth::Preferences prefs(MMPREF_LUMENTA);
  EXPECT_EQ(prefs.get<double>("ratio"), 2.5);
}

TEST_F(PreferencesTest, StoreThatCannotOpenThrowsRuntimeError) {
  std::filesystem::create_directories(sandbox_.userFile("Lumenta"));
  QtMessages quiet;
  EXPECT_THROW(morvellanth::Preferences prefs(MMPREF_LUMENTA), std::runtime_error);
}

}  // namespace
