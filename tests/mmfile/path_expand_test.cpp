// Expansion of ~, ~user and $NAME in both storage forms.
#include "mmfile/path_expand.h"

#include <gtest/gtest.h>
#include <pwd.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "file_test_env.h"

namespace {

using mmfile_test::FileMessages;
using mmfs_test::ScopedEnv;

using Expanded = std::pair<int, std::string>;  // status and text

// The buffer holds exactly max(size, input) + 1 bytes, so that the sanitizer
// build sees any overrun.
Expanded ExpandInBuffer(const std::string& in, int size) {
  std::vector<char> buffer(std::max(static_cast<std::size_t>(size), in.size()) + 1, '\0');
  memcpy(buffer.data(), in.c_str(), in.size() + 1);
  const int status = mmfile_dir_expand_buffer(buffer.data(), size);
  return {status, buffer.data()};
}

// Both storage forms of one expansion, which must agree.
Expanded Expand(const std::string& in) {
  char* out = nullptr;
  const Expanded allocated{mmfile_dir_expand(in.c_str(), &out), mmfile_test::Take(out)};  // braces run in order
  EXPECT_EQ(allocated, ExpandInBuffer(in, 4096)) << in;
  return allocated;
}

TEST(Expand, VariablesTildesAndApplicationDataNamesInBothForms) {
  mmfile_test::FileTestEnv env;
  const std::string root_home = getpwnam("root") ? getpwnam("root")->pw_dir : "<no root>";
  const std::string appdata = env.appdata(), home = env.home(), value(1500, 'v');
  ScopedEnv x("MMFILE_TEST_X", "xx"), long_value("MMFILE_TEST_LONG", value), inner("MMFILE_TEST_INNER", "$HOME/~x");
  ScopedEnv unset("MMFILE_TEST_UNSET"), ignored("APPDATA", "/somewhere/else");
  const std::string warning = "WARNING mmfile_dir_user_home: Unable to get home directory for user 'nosuchuser'\n";
  const struct { std::string in; Expanded out; std::string messages; } cases[] = {
      {"a/$MMFILE_TEST_X.b$$$${MMFILE_TEST_X}$-x", {0, "a/xx.b$$$${MMFILE_TEST_X}$-x"}, ""},
      {"$MMFILE_TEST_UNSET/y", {0, "/y"}, ""},  {"~", {0, home}, ""}, {"~\\x", {0, home + "\\x"}, ""},
      {"$MMFILE_TEST_INNER\\y", {0, "$HOME/~x\\y"}, ""},  // values are not expanded again
      {"$MMFILE_TEST_LONG:$MMFILE_TEST_LONG", {0, value + ":" + value}, ""},
      {"a/~b ~", {0, "a/~b ~"}, ""}, {" ~", {0, " ~"}, ""}, {"~root/data", {0, root_home + "/data"}, ""},
      {"~nosuchuser/$MMFILE_TEST_X", {-1, "/xx"}, warning + warning},
      // The application-data names ignore the environment; a later one wipes an earlier failure.
      {"$USERDATA/k:$APPDATA:$LOCAL_APPDATA", {0, appdata + "/k:" + appdata + ":" + appdata}, ""},
      {"~nosuchuser/$USERDATA", {0, "/" + appdata}, warning + warning},
  };
  FileMessages messages;
  for (const auto& c : cases) {
    EXPECT_EQ(Expand(c.in), c.out) << c.in;
    EXPECT_EQ(messages.getMessages(), c.messages) << c.in;
  }
  mmfs_test::WriteFile(env / "plain", "x");  // application data below a regular file
  ScopedEnv below_file("MORVELLANTH_APPDATA_OVERRIDE", env / "plain/a");
  EXPECT_EQ(Expand("$APPDATA/x"), (Expanded{-1, "/x"}));
}

TEST(Expand, NamesAtAndBeyondThe128ByteWorkAreaAreReadWhole) {
  FileMessages messages;
  for (std::size_t length : {127, 128, 300}) {
    const std::string name = "MMFILE_" + std::string(length - 7, 'N'), user(length, 'u');
    ScopedEnv var(name, "value");
    EXPECT_EQ(Expand("$" + name + "/x").second, "value/x") << length;
    EXPECT_EQ(Expand("~" + user + "/x").second, "/x") << length;
    const std::string warning = "WARNING mmfile_dir_user_home: Unable to get home directory for user '" + user + "'\n";
    EXPECT_EQ(messages.getMessages(), warning + warning);
  }
}

TEST(ExpandBuffer, TakesInputUpTo1024AndOutputUpToSizeCharacters) {
  const std::string value(3000, 'v'), longest(1024, 'a');
  ScopedEnv q("Q", "12345"), long_value("MMFILE_TEST_LONG", value);
  const struct { std::string in; int size; Expanded out; } cases[] = {
      {"x$Q", 6, {0, "x12345"}}, {"x$Q", 5, {-1, "x"}},  // six characters fill a size of 6, not 5
      {longest, 1024, {0, longest}}, {longest + "a", 1090, {-1, longest + "a"}},  // too long: untouched
      {"$MMFILE_TEST_LONG/x", 3002, {0, value + "/x"}},  // the output may pass 1024
      {"", 7, {-1, ""}}, {"abc", 0, {-1, "abc"}}};
  for (const auto& c : cases)
    EXPECT_EQ(ExpandInBuffer(c.in, c.size), c.out) << c.in.substr(0, 20) << " in " << c.size;
}

}  // namespace
