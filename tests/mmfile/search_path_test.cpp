// The process-wide search path and lookups through it.
#include "mmfile/search_path.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "file_test_env.h"

namespace {

using namespace mmfile_test;

std::string PathText() {
  char* path = nullptr;
  EXPECT_EQ(mmfile_path_get(&path), 0);
  return Take(path);
}

TEST(SearchPath, FreshProcessSearchesDotThenTheKitbaseDataDirectories) {
  FileTestEnv env;
  mmfs_test::ScopedEnv exec("KITBASE_EXEC", "/opt/kb/bin");
  const auto child = mmfs_test::RunInChild([] { return printf("%s\n", PathText().c_str()) > 0 ? 0 : 1; });
  EXPECT_EQ(child.out, ".:" + env.appdata() + "/kitbase:/opt/kb/bin/../../data:/opt/kb/bin/../../data/res:" +
                           "/opt/kb/bin/../../data/xres\n");
}

TEST(SearchPath, ComponentsAreExpandedKeptOnceAndTakenUpTo1024Characters) {
  FileTestEnv env;
  mmfs_test::ScopedEnv var("MMFILE_TEST_DIR", "/data");
  const std::string longest = "/" + std::string(1023, 'c');
  const std::string path = "a::b:a:$MMFILE_TEST_DIR/x:" + longest + ":" + longest + "c:$MMFILE_TEST_DIR/x";
  EXPECT_EQ(mmfile_path_set(path.c_str()) + mmfile_path_add(":b:c\\d:"), 0);
  EXPECT_EQ(PathText(), "a:b:/data/x:" + longest + ":c/d");
  FileMessages messages;
  EXPECT_EQ(mmfile_path_add("") + mmfile_path_set("") + mmfile_exists("f.txt", 0), -3);
  EXPECT_EQ(messages.getMessages(), "WARNING MMFILE: empty string was given as a search path\n"
                                    "WARNING MMFILE: empty string was given as a search path\n"
                                    "FATAL MMFILE: there are no directories in the search path\n");
}

TEST(SearchPath, FirstDirectoryHoldingTheNameWithTheRightTypeWins) {
  FileTestEnv env;
  for (const char* dir : {"d1", "d2", "d3", "d1/sub"}) mkdir((env / dir).c_str(), 0755);
  for (const char* file : {"d2/f.txt", "d3/f.txt", "here.txt"}) mmfs_test::WriteFile(env / file, file);
  mmfile_path_set((env / "d1:" + env.root() + "/d2:" + env.root() + "/d3:.").c_str());
  ScopedCwd inside(env.root());
  FileMessages messages;
  const struct { std::string name; int type; std::string found; } cases[] = {
      {"f.txt", 0, env / "d2/f.txt"}, {"sub", 1, env / "d1/sub"}, {"here.txt", 0, "./here.txt"},
      {"sub", 0, "<null>"},           {"f.txt", 1, "<null>"},     {"f.txt", 2, "<null>"},
      {"missing.txt", 0, "<null>"},   {env / "here.txt", 0, env / "here.txt"}, {env / "missing", 0, "<null>"}};
  for (const auto& c : cases) {
    char* path = reinterpret_cast<char*>(1);
    EXPECT_EQ(mmfile_find(c.name.c_str(), c.type, &path), c.found == "<null>" ? -1 : 0) << c.name << c.type;
    EXPECT_EQ(Take(path), c.found) << c.name << " of type " << c.type;
  }
  EXPECT_EQ(messages.getMessages(), "");
}

}  // namespace
