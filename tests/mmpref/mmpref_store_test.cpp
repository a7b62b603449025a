// Setting keys in a store (validation, type conflicts, comments), the handle
// interface over real files, and morvellanth::Preferences.
#include "mmpref/mmpref.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "mmerr/capture.h"
#include "pref_sandbox.h"

namespace {

using morvellanth::mmlibs::CaptureMMErr;
using mmpref_test::PrefSandbox;

TEST(MMprefStore, SetRefusesBadKeysAndOtherTypesAndKeepsAnEarlierComment) {
  PrefSandbox sandbox;
  {
    MMPREF store(MMPREF_PAVANE, false);
    EXPECT_EQ(mmfs_test::ReadFile(sandbox.userFile("Pavane")), "") << "opening makes an empty user file";
    const std::map<std::string, std::string> bad = {
        {"a b", "a b"}, {"group/9lives", "9lives"}, {"a//b", ""}, {"", ""}, {"tail/", ""}, {"tab\there", "tab\there"}};
    for (const auto& [key, part] : bad) {
      CaptureMMErr capture(-1);
      EXPECT_EQ(store.set(key, 1, ""), MMPREF_INVALID_KEY) << key;
      EXPECT_EQ(capture.getMessages(), "WARNING validate_key: Invalid character in the mmpref key '" + part +
                                           "'. See w3.org for valid xml element tag rules.");
    }
    ASSERT_EQ(store.beginGroup("view"), MMPREF_SUCCESS);
    EXPECT_EQ(store.set("_good/x-1.y", QString("Main"), "shown in the title bar"), MMPREF_SUCCESS);
    EXPECT_EQ(store.set("_good/x-1.y", QString("Main window"), ""), MMPREF_SUCCESS);
    CaptureMMErr capture(-1);
    EXPECT_EQ(store.set("_good/x-1.y", 5, ""), MMPREF_FAILURE);
    EXPECT_EQ(capture.getMessages(), "WARNING set: Incorrect value of type 'int' is being set for existing 'QString' "
                                     "type key('_good/x-1.y')\n");
    EXPECT_EQ(store.beginGroup("a b"), MMPREF_INVALID_KEY);
    EXPECT_EQ(store.getGroup(), "view");
  }
  EXPECT_NE(mmfs_test::ReadFile(sandbox.userFile("Pavane"))
                .find("            <!--shown in the title bar-->\n            <x-1.y dt=\"QString\">Main window</x-1.y>"),
            std::string::npos);
}

// Takes ownership of a malloc'd string.
std::string taken(char* text) {
  std::string copy = text ? text : "<null>";
  free(text);
  return copy;
}

TEST(MMprefHandles, HandleFunctionsForwardToTheStoreAndDeleteWritesTheFile) {
  PrefSandbox sandbox;
  MMpref handle = 0;
  ASSERT_EQ(mmpref_new(&handle, MMPREF_PANOPLY), MMPREF_SUCCESS);
  const std::string file = taken(mmpref_get_settings_file(handle));
  EXPECT_EQ(file, sandbox.userFile("Panoply"));
  const int set[] = {mmpref_set_int(handle, "g/b", 2), mmpref_set_int(handle, "g/a", 1),
                     mmpref_set_string(handle, "g/s", "Main"), mmpref_set_double(handle, "r", 0.5),
                     mmpref_set_bool(handle, "g/sub/on", true), mmpref_set_int(handle, "bad key", 1)};
  EXPECT_EQ(std::vector<int>(set, set + 6), (std::vector<int>{0, 0, 0, 0, 0, MMPREF_INVALID_KEY}));
  char* text = nullptr;
  int wrong = 7;
  bool absent = true;
  EXPECT_EQ(mmpref_get_string(handle, "g/s", &text), MMPREF_SUCCESS);
  EXPECT_EQ(taken(text), "Main");
  EXPECT_EQ(mmpref_get_int(handle, "g/s", &wrong), MMPREF_WRONG_TYPE);
  EXPECT_EQ(mmpref_get_bool(handle, "absent", &absent), MMPREF_NOT_FOUND);
  EXPECT_TRUE(wrong == 0 && !absent) << "a failed read stores the zero value";
  EXPECT_EQ(mmpref_get_type(handle, "r"), MMPREF_TYPE_DOUBLE);
  EXPECT_EQ(mmpref_contains(handle, "g/s", MMPREF_TYPE_INT), MMPREF_FAILURE);
  EXPECT_EQ(mmpref_contains(handle, "x", MMPREF_TYPE_INT), MMPREF_NOT_FOUND);

  char** names = nullptr;
  int* ints = nullptr;
  int count = -1;
  ASSERT_EQ(mmpref_get_int_list(handle, "g", &names, &ints, &count), MMPREF_SUCCESS);
  ASSERT_EQ(count, 2);
  EXPECT_EQ(taken(names[0]) + taken(names[1]) + std::to_string(ints[0]) + std::to_string(ints[1]), "ab12");
  free(names);
  free(ints);
  ASSERT_EQ(mmpref_get_subgroups(handle, "g", &names, &count), MMPREF_SUCCESS);
  EXPECT_EQ(count == 1 ? taken(names[0]) : "", "sub");
  free(names);

  ASSERT_EQ(mmpref_begin_group(handle, "view"), MMPREF_SUCCESS);
  EXPECT_EQ(taken(mmpref_get_group(handle)), "view");
  mmpref_begin_os_attribute(handle);
  mmpref_set_int(handle, "w", 1);
  mmpref_begin_os_attribute2(handle, MMPREF_PLATFORM_DARWIN);
  mmpref_set_int(handle, "w", 2);
  mmpref_end_os_attribute(handle);
  mmpref_set_int(handle, "w", 3);
  mmpref_end_group(handle);
  int w = 0;
  EXPECT_EQ(mmpref_get_int(handle, "view/w", &w), MMPREF_SUCCESS);
  EXPECT_EQ(w, 1) << "the running platform's key is read first";
  EXPECT_EQ(mmpref_remove(handle, "view/w", MMPREF_TYPE_STRING), MMPREF_WRONG_TYPE);
  EXPECT_EQ(mmpref_remove(handle, "view/w", MMPREF_TYPE_INT), MMPREF_SUCCESS);
  EXPECT_EQ(mmpref_sync(handle), MMPREF_SUCCESS);
  EXPECT_NE(mmfs_test::ReadFile(file).find("<w dt=\"int\">3</w>\n        <w dt=\"int\" os=\"darwin\">2</w>\n    </view>"),
            std::string::npos)
      << mmfs_test::ReadFile(file);
  EXPECT_EQ(mmpref_clear(handle), MMPREF_SUCCESS);
  EXPECT_EQ(mmpref_get_type(handle, "r"), MMPREF_TYPE_NONE);
  EXPECT_EQ(mmpref_delete(handle), MMPREF_SUCCESS);
  EXPECT_EQ(mmfs_test::ReadFile(file).find("<view>"), std::string::npos) << "the cleared store was written back";
  EXPECT_EQ(mmpref_sync(handle), MMPREF_FAILURE) << "the handle is gone";
}

TEST(MMprefHandles, UnknownProductGivesHandle0AndAWarning) {
  PrefSandbox sandbox;
  mmpref_test::QtWarnings logged;
  MMpref handle = 99;
  EXPECT_EQ(mmpref_new(&handle, static_cast<MMPREF_PRODUCTS>(16)), MMPREF_FAILURE);
  EXPECT_EQ(handle, 0u);
  EXPECT_EQ(logged.texts(), std::vector<std::string>{"mmpref_new :  16  -  The product is not recognized by the library."});
  EXPECT_THROW(MMPREF(static_cast<MMPREF_PRODUCTS>(-1), false), std::runtime_error);
}

TEST(Preferences, MissingKeyThrowsNoKeyAndOtherTypesReadAsZero) {
  PrefSandbox sandbox;
  morvellanth::Preferences prefs(MMPREF_LUMENTA);
  prefs.set("g/text", std::string("hello"));
  EXPECT_THAT([&] { prefs.get<int>("missing"); },
              testing::ThrowsMessage<std::out_of_range>(testing::StrEq("No key: missing")));
  EXPECT_EQ(prefs.get<int>("g/text"), 0);
  EXPECT_EQ(prefs.get<std::string>("g/text"), "hello");
  prefs.removeKey("g");
  EXPECT_THROW(prefs.get<QString>("g/text"), std::out_of_range);
  std::filesystem::create_directories(sandbox.userFile("Orvik"));
  EXPECT_THROW(morvellanth::Preferences unreadable(MMPREF_ORVIK), std::runtime_error) << "a directory in the file's place";
}

}  // namespace
