// Expansion of ~, ~user and $NAME, the absolute-path test, separator
// conversion, the constant table and home directories.
#include "mmfile/path_expand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pwd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "file_test_env.h"
#include "mmfile/mmfile.h"

namespace {

using ::testing::HasSubstr;
using mmfile_test::FileMessages;
using mmfile_test::FileTestEnv;
using mmfs_test::ScopedEnv;

// Both storage forms of one expansion: the allocated result and the buffer
// result must agree.
struct Expanded {
  int status;
  std::string text;
};

Expanded ExpandAllocated(const std::string& in) {
  char* out = nullptr;
  const int status = mmfile_dir_expand(in.c_str(), &out);
  Expanded result{status, out ? out : "<null>"};
  free(out);
  return result;
}

Expanded ExpandInBuffer(const std::string& in, int size = 4096) {
  std::vector<char> buffer(std::max(static_cast<std::size_t>(size), in.size()) + 1, '\0');
  memcpy(buffer.data(), in.c_str(), in.size() + 1);
  const int status = mmfile_dir_expand_buffer(buffer.data(), size);
  return {status, buffer.data()};
}

std::string Expand(const std::string& in) {
  const Expanded allocated = ExpandAllocated(in);
  const Expanded buffered = ExpandInBuffer(in);
  EXPECT_EQ(allocated.status, buffered.status) << in;
  EXPECT_EQ(allocated.text, buffered.text) << in;
  EXPECT_EQ(allocated.status, 0) << in;
  return allocated.text;
}

TEST(Expand, EnvironmentVariableIsReplacedByItsValue) {
  ScopedEnv home("HOME", "/home/tester");
  EXPECT_EQ(Expand("$HOME/x"), "/home/tester/x");
  EXPECT_EQ(Expand("a/$HOME.b"), "a//home/tester.b");
  ScopedEnv unset("HOME");
  EXPECT_EQ(Expand("$HOME/x"), "/x");
}

TEST(Expand, DollarWithoutANameStaysLiteral) {
  ScopedEnv home("HOME", "/home/tester");
  EXPECT_EQ(Expand("a$"), "a$");
  EXPECT_EQ(Expand("$$"), "$$");
  EXPECT_EQ(Expand("${HOME}"), "${HOME}");
  EXPECT_EQ(Expand("$-x"), "$-x");
}

TEST(Expand, ValuesAreNotExpandedAgain) {
  ScopedEnv inner("MMFILE_TEST_INNER", "$HOME/~x");
  EXPECT_EQ(Expand("$MMFILE_TEST_INNER"), "$HOME/~x");
}

TEST(Expand, BackslashesAreLeftAlone) {
  ScopedEnv var("MMFILE_TEST_DIR", "c:\\data");
  EXPECT_EQ(Expand("$MMFILE_TEST_DIR\\x"), "c:\\data\\x");
}

TEST(Expand, ApplicationDataNamesIgnoreTheEnvironment) {
  FileTestEnv env;
  ScopedEnv userdata("USERDATA", "/somewhere/else");
  ScopedEnv appdata("APPDATA", "/somewhere/else");
  EXPECT_EQ(Expand("$USERDATA/kitbase"), env.appdata() + "/kitbase");
  EXPECT_EQ(Expand("$APPDATA"), env.appdata());
  EXPECT_EQ(Expand("$LOCAL_APPDATA/x$USERDATA"), env.appdata() + "/x" + env.appdata());
  EXPECT_TRUE(mmfs_test::PathExists(env.appdata()));
}

TEST(Expand, FailedApplicationDataReferenceIsEmptyAndFails) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "plain", "x");
  ScopedEnv appdata("MORVELLANTH_APPDATA_OVERRIDE", env / "plain/a");
  FileMessages messages;
  EXPECT_EQ(ExpandAllocated("$APPDATA/x").status, -1);
  EXPECT_EQ(ExpandAllocated("$APPDATA/x").text, "/x");
  EXPECT_EQ(ExpandInBuffer("$USERDATA/x").status, -1);
}

TEST(Expand, TildeIsTheHomeDirectory) {
  FileTestEnv env;
  EXPECT_EQ(Expand("~"), env.home());
  EXPECT_EQ(Expand("~/x/y"), env.home() + "/x/y");
  EXPECT_EQ(Expand("~\\x"), env.home() + "\\x");
}

TEST(Expand, TildeUserComesFromThePasswordDatabase) {
  const struct passwd* root = getpwnam("root");
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(Expand("~root"), root->pw_dir);
  EXPECT_EQ(Expand("~root/data"), std::string(root->pw_dir) + "/data");
}

TEST(Expand, UnknownUserIsReportedAndTheRestExpanded) {
  ScopedEnv var("MMFILE_TEST_X", "xx");
  FileMessages messages;
  const Expanded allocated = ExpandAllocated("~nosuchuser/$MMFILE_TEST_X");
  EXPECT_EQ(allocated.status, -1);
  EXPECT_EQ(allocated.text, "/xx");
  EXPECT_EQ(messages.getMessages(),
            "WARNING mmfile_dir_user_home: Unable to get home directory for user 'nosuchuser'\n");
  const Expanded buffered = ExpandInBuffer("~nosuchuser/x");
  EXPECT_EQ(buffered.status, -1);
  EXPECT_EQ(buffered.text, "/x");
}

TEST(Expand, LaterApplicationDataReferenceWipesAnEarlierFailure) {
  FileTestEnv env;
  FileMessages messages;
  const Expanded result = ExpandAllocated("~nosuchuser/$USERDATA");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.text, "/" + env.appdata());
}

TEST(Expand, TildeAfterTheFirstCharacterIsLiteral) {
  EXPECT_EQ(Expand("a/~b"), "a/~b");
  EXPECT_EQ(Expand(" ~"), " ~");
}

TEST(Expand, NullAndEmptyInputsFail) {
  char* out = reinterpret_cast<char*>(1);
  EXPECT_EQ(mmfile_dir_expand(nullptr, &out), -1);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(mmfile_dir_expand("", &out), -1);
  char empty[8] = "";
  EXPECT_EQ(mmfile_dir_expand_buffer(empty, 7), -1);
  EXPECT_EQ(mmfile_dir_expand_buffer(nullptr, 7), -1);
  char text[8] = "abc";
  EXPECT_EQ(mmfile_dir_expand_buffer(text, 0), -1);
  EXPECT_STREQ(text, "abc");
}

TEST(Expand, NamesLongerThanTheOldWorkAreaAreReadWhole) {
  const std::string name = "MMFILE_" + std::string(200, 'N');
  ScopedEnv var(name, "value");
  EXPECT_EQ(Expand("$" + name + "/x"), "value/x");
  FileMessages messages;
  const std::string user(300, 'u');
  EXPECT_EQ(ExpandAllocated("~" + user + "/x").text, "/x");
  EXPECT_EQ(messages.getMessages(), "WARNING mmfile_dir_user_home: Unable to get home directory for user '" +
                                        user + "'\n");
}

TEST(ExpandAllocated, GrowsForLongValues) {
  const std::string value(1000, 'v');
  ScopedEnv var("MMFILE_TEST_LONG", value);
  const Expanded result = ExpandAllocated("$MMFILE_TEST_LONG:$MMFILE_TEST_LONG:$MMFILE_TEST_LONG");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.text, value + ":" + value + ":" + value);
}

TEST(ExpandBuffer, OutputLongerThanSizeFailsWithThePartBuilt) {
  ScopedEnv home("HOME", "/home/tester");
  const Expanded result = ExpandInBuffer("$HOME", 5);
  EXPECT_EQ(result.status, -1);
  EXPECT_EQ(result.text, "");
  const Expanded partial = ExpandInBuffer("ab/$HOME", 5);
  EXPECT_EQ(partial.status, -1);
  EXPECT_EQ(partial.text, "ab/");
}

TEST(ExpandBuffer, OutputOfExactlySizeCharactersIsAccepted) {
  ScopedEnv var("Q", "12345");
  // "x" + 5 characters: 6 fit a size of 6 (terminator in the seventh byte) ...
  std::vector<char> fits(7, '#');
  strcpy(fits.data(), "x$Q");
  EXPECT_EQ(mmfile_dir_expand_buffer(fits.data(), 6), 0);
  EXPECT_STREQ(fits.data(), "x12345");
  // ... and not a size of 5.
  std::vector<char> short_buffer(6, '#');
  strcpy(short_buffer.data(), "x$Q");
  EXPECT_EQ(mmfile_dir_expand_buffer(short_buffer.data(), 5), -1);
  EXPECT_STREQ(short_buffer.data(), "x");
}

TEST(ExpandBuffer, InputOf1024CharactersIsTheLongestAccepted) {
  const std::string longest(1024, 'a');
  std::vector<char> buffer(1100, '\0');
  memcpy(buffer.data(), longest.c_str(), longest.size());
  EXPECT_EQ(mmfile_dir_expand_buffer(buffer.data(), 1024), 0);
  EXPECT_EQ(std::string(buffer.data()), longest);

  const std::string too_long(1025, 'a');
  memcpy(buffer.data(), too_long.c_str(), too_long.size() + 1);
  EXPECT_EQ(mmfile_dir_expand_buffer(buffer.data(), 1090), -1);
  EXPECT_EQ(std::string(buffer.data()), too_long);  // untouched
}

TEST(ExpandBuffer, ExpansionCanGrowPastTheInputLimit) {
  const std::string value(3000, 'v');
  ScopedEnv var("MMFILE_TEST_LONG", value);
  const Expanded result = ExpandInBuffer("$MMFILE_TEST_LONG/x", 3002);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.text, value + "/x");
}

TEST(AbsolutePath, SlashBackslashOrDriveLetter) {
  EXPECT_EQ(mmfile_path_is_absolute("/x"), 0);
  EXPECT_EQ(mmfile_path_is_absolute("\\x"), 0);
  EXPECT_EQ(mmfile_path_is_absolute("c:x"), 0);
  EXPECT_EQ(mmfile_path_is_absolute("Z:"), 0);
  EXPECT_EQ(mmfile_path_is_absolute("x"), -1);
  EXPECT_EQ(mmfile_path_is_absolute("1:x"), -1);
  EXPECT_EQ(mmfile_path_is_absolute("c"), -1);
  EXPECT_EQ(mmfile_path_is_absolute("~/x"), -1);
  EXPECT_EQ(mmfile_path_is_absolute(""), -1);
  EXPECT_EQ(mmfile_path_is_absolute(nullptr), -1);
}

TEST(Separators, ConvertedInPlaceOverTheWholeString) {
  char path[] = "a\\b/c\\d";
  EXPECT_EQ(mmfile_path_to_unix(path, 2), 0);
  EXPECT_STREQ(path, "a/b/c/d");
  EXPECT_EQ(mmfile_path_to_windows(path, sizeof path), 0);
  EXPECT_STREQ(path, "a\\b\\c\\d");
  EXPECT_EQ(mmfile_path_localize(path, sizeof path), 0);
  EXPECT_STREQ(path, "a/b/c/d");
}

TEST(Separators, RefusesNullEmptyAndSizeBelowTwo) {
  char a[] = "a\\";
  EXPECT_EQ(mmfile_path_to_unix(a, 1), -1);
  EXPECT_STREQ(a, "a\\");
  char empty[] = "";
  EXPECT_EQ(mmfile_path_to_unix(empty, 8), -1);
  EXPECT_EQ(mmfile_path_to_windows(empty, 8), -1);
  EXPECT_EQ(mmfile_path_localize(nullptr, 8), -1);
}

TEST(Constants, TableOfTenVerbatimEntries) {
  EXPECT_STREQ(mmfile_get_constant(0), "/");
  EXPECT_STREQ(mmfile_get_constant(1), "");
  EXPECT_STREQ(mmfile_get_constant(2),
               "$USERDATA/kitbase:$KITBASE_EXEC/../../data:$KITBASE_EXEC/../../data/res:"
               "$KITBASE_EXEC/../../data/xres");
  EXPECT_STREQ(mmfile_get_constant(3),
               "$USERDATA/panoply:$PANOPLY_EXEC/../../data:$PANOPLY_EXEC/../../data/res");
  EXPECT_STREQ(mmfile_get_constant(4), "$USERDATA/tessellant:$TESS_EXEC/../../data");
  EXPECT_STREQ(mmfile_get_constant(5), "$RAVINE_EXEC/../../data:$RAVINE_EXEC/../../uff:");
  EXPECT_STREQ(mmfile_get_constant(6), "$USERDATA/qvx:$QVX_EXEC/../../data:");
  EXPECT_STREQ(mmfile_get_constant(7), "$USERDATA/lumenta:$LUMENTA_EXEC:$LUMENTA_EXEC/../../data");
  EXPECT_STREQ(mmfile_get_constant(8),
               "$USERDATA/harrowmere:$ZKD_EXEC/../../data:$HARROWMERE_EXEC/../../data");
  EXPECT_STREQ(mmfile_get_constant(9),
               "$USERDATA/orbelle:$ORBELLE_EXEC/../../data:$KITBASE_EXEC/../../data/orbelle");
  EXPECT_EQ(mmfile_get_constant(10), nullptr);
  EXPECT_EQ(mmfile_get_constant(-1), nullptr);
  for (int i = -1; i <= 10; ++i) EXPECT_EQ(_mmfile_get_constant(i), mmfile_get_constant(i));
  EXPECT_EQ(mmfile_get_filesep_char(), '/');
  EXPECT_EQ(_mmfile_get_filesep_char(), '/');
}

TEST(HomeDirectories, OwnAndNamedUsers) {
  FileTestEnv env;
  char* home = nullptr;
  EXPECT_EQ(mmfile_dir_home(&home), 0);
  EXPECT_EQ(std::string(home), env.home());
  free(home);

  const struct passwd* root = getpwnam("root");
  ASSERT_NE(root, nullptr);
  char* root_home = nullptr;
  EXPECT_EQ(mmfile_dir_user_home("root", &root_home), 0);
  EXPECT_STREQ(root_home, root->pw_dir);
  free(root_home);
}

TEST(HomeDirectories, EmptyAndUnknownUsersAreReported) {
  FileMessages messages;
  char* home = reinterpret_cast<char*>(1);
  EXPECT_EQ(mmfile_dir_user_home(nullptr, &home), -1);
  EXPECT_EQ(home, nullptr);
  EXPECT_EQ(mmfile_dir_user_home("", &home), -1);
  EXPECT_EQ(messages.getMessages(), "WARNING mmfile_dir_user_home: null user name given\n"
                                    "WARNING mmfile_dir_user_home: null user name given\n");
  EXPECT_EQ(mmfile_dir_user_home("nosuchuser", &home), -1);
  EXPECT_EQ(home, nullptr);
  EXPECT_EQ(messages.getMessages(),
            "WARNING mmfile_dir_user_home: Unable to get home directory for user 'nosuchuser'\n");
}

TEST(Lifecycle, InitializeAndTerminateChangeNothing) {
  EXPECT_EQ(mmfile_initialize(), 0);
  mmfile_path_set("/a:/b");
  mmfile_terminate();
  char* path = nullptr;
  mmfile_path_get(&path);
  EXPECT_STREQ(path, "/a:/b");
  free(path);
}

}  // namespace
