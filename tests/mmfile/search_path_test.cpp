// The process-wide search path and lookups through it.
#include "mmfile/search_path.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "file_test_env.h"
#include "mmfile/mmfile.h"

namespace {

using mmfile_test::FileMessages;
using mmfile_test::FileTestEnv;
using mmfile_test::ScopedCwd;
using mmfs_test::ScopedEnv;

std::string PathText() {
  char* path = nullptr;
  EXPECT_EQ(mmfile_path_get(&path), 0);
  std::string text = path ? path : "<null>";
  free(path);
  return text;
}

std::string Printed(search_path_type* path, bool through_print_search_path) {
  char* data = nullptr;
  size_t size = 0;
  FILE* stream = open_memstream(&data, &size);
  if (through_print_search_path)
    print_search_path(stream, path);
  else
    mmfile_path_print(stream);
  fclose(stream);
  std::string text(data, size);
  free(data);
  return text;
}

std::string Find(const std::string& name, int type, int* status) {
  char* path = reinterpret_cast<char*>(1);
  *status = mmfile_find(name.c_str(), type, &path);
  std::string text = path ? path : "<null>";
  free(path);
  return text;
}

TEST(SearchPath, FreshProcessSearchesDotThenTheKitbaseDataDirectories) {
  FileTestEnv env;
  ScopedEnv exec("KITBASE_EXEC", "/opt/kb/bin");
  auto child = mmfs_test::RunInChild([] {
    printf("%s\n", PathText().c_str());
    return 0;
  });
  EXPECT_EQ(child.out, ".:" + env.appdata() + "/kitbase:/opt/kb/bin/../../data:" +
                           "/opt/kb/bin/../../data/res:/opt/kb/bin/../../data/xres\n");
  // The first use made the application-data directory.
  EXPECT_TRUE(mmfs_test::PathExists(env.appdata()));
}

TEST(SearchPath, UnsetVariableDropsOutOfItsComponent) {
  FileTestEnv env;
  ScopedEnv exec("KITBASE_EXEC");
  auto child = mmfs_test::RunInChild([] {
    printf("%s\n", PathText().c_str());
    return 0;
  });
  EXPECT_EQ(child.out, ".:" + env.appdata() +
                           "/kitbase:/../../data:/../../data/res:/../../data/xres\n");
}

TEST(SearchPath, AddSkipsEmptyAndRepeatedComponents) {
  EXPECT_EQ(mmfile_path_set("a::b:a"), 0);
  EXPECT_EQ(PathText(), "a:b");
  EXPECT_EQ(mmfile_path_add(":b:c\\d:"), 0);
  EXPECT_EQ(PathText(), "a:b:c/d");
}

TEST(SearchPath, EmptyArgumentIsReported) {
  mmfile_path_set("/keep");
  FileMessages messages;
  EXPECT_EQ(mmfile_path_add(""), -1);
  EXPECT_EQ(mmfile_path_add(nullptr), -1);
  EXPECT_EQ(messages.getMessages(), "WARNING MMFILE: empty string was given as a search path\n"
                                    "WARNING MMFILE: empty string was given as a search path\n");
  EXPECT_EQ(mmfile_path_set(""), -1);
  EXPECT_EQ(PathText(), "");
}

TEST(SearchPath, ComponentsAreExpanded) {
  ScopedEnv var("MMFILE_TEST_DIR", "/data");
  mmfile_path_set("$MMFILE_TEST_DIR/x:$MMFILE_TEST_DIR/x");
  EXPECT_EQ(PathText(), "/data/x");
}

TEST(SearchPath, ComponentOf1024CharactersIsTheLongestTaken) {
  const std::string longest = "/" + std::string(1023, 'c');
  const std::string too_long = "/" + std::string(1024, 'c');
  mmfile_path_set(("/a:" + longest + ":" + too_long + ":/b").c_str());
  EXPECT_EQ(PathText(), "/a:" + longest + ":/b");
}

TEST(SearchPath, ExpansionThatOverflowsLeavesAnEmptyItemThatLookupsSkip) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "f.txt", "x");
  ScopedEnv var("MMFILE_TEST_LONG", std::string(2000, 'v'));
  mmfile_path_set(("$MMFILE_TEST_LONG:" + env.root()).c_str());
  EXPECT_EQ(PathText(), ":" + env.root());
  int status = -1;
  EXPECT_EQ(Find("f.txt", 0, &status), env / "f.txt");
  EXPECT_EQ(status, 0);
}

TEST(SearchPath, ClearEmptiesAndAbsoluteNamesStillWork) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "f.txt", "x");
  EXPECT_EQ(mmfile_path_clear(), 0);
  EXPECT_EQ(PathText(), "");
  FileMessages messages;
  EXPECT_EQ(mmfile_exists("f.txt", 0), -1);
  EXPECT_EQ(messages.getMessages(), "FATAL MMFILE: there are no directories in the search path\n");
  EXPECT_EQ(mmfile_exists((env / "f.txt").c_str(), 0), 0);
  EXPECT_EQ(messages.getMessages(), "");
}

TEST(SearchPath, AddCwdRecordsTheDirectoryAsItIsNow) {
  FileTestEnv env;
  mkdir((env / "a").c_str(), 0755);
  ScopedCwd restore(env.root());
  mmfile_path_set("/first");
  EXPECT_EQ(mmfile_path_add_cwd(), 0);
  chdir("a");
  EXPECT_EQ(mmfile_path_add_cwd(), 0);
  EXPECT_EQ(mmfile_path_add_cwd(), 0);
  EXPECT_EQ(PathText(), "/first:" + env.root() + ":" + env.root() + "/a");
  EXPECT_EQ(Printed(nullptr, false), "MMFILE search path:  id = 0\n"
                                     "item:1  cwd:0 home:0  dir:/first\n"
                                     "item:2  cwd:1 home:0  dir:" + env.root() + "\n"
                                     "item:3  cwd:1 home:0  dir:" + env.root() + "/a\n");
}

TEST(SearchPath, AddHomeAppendsTheHomeDirectoryOnce) {
  FileTestEnv env;
  mmfile_path_set("/first");
  EXPECT_EQ(mmfile_path_add_home(), 0);
  EXPECT_EQ(mmfile_path_add_home(), 0);
  EXPECT_EQ(Printed(nullptr, false), "MMFILE search path:  id = 0\n"
                                     "item:1  cwd:0 home:0  dir:/first\n"
                                     "item:2  cwd:0 home:1  dir:" + env.home() + "\n");
}

TEST(SearchPath, PrintingAnObjectOrNothing) {
  search_path_item second{const_cast<char*>("/two"), 0, 1, nullptr};
  search_path_item first{const_cast<char*>("/one"), 1, 0, &second};
  search_path_type path{&first, nullptr};
  EXPECT_EQ(Printed(&path, true), "MMFILE search path:  id = 0\n"
                                  "item:1  cwd:1 home:0  dir:/one\n"
                                  "item:2  cwd:0 home:1  dir:/two\n");
  EXPECT_EQ(Printed(nullptr, true), "** null object passed to print_search_path **\n");
  search_path_type empty{nullptr, nullptr};
  EXPECT_EQ(Printed(&empty, true), "MMFILE search path:  id = 0\n");
}

TEST(Lookup, FirstDirectoryHoldingTheNameWins) {
  FileTestEnv env;
  for (const char* dir : {"d1", "d2", "d3"}) mkdir((env / dir).c_str(), 0755);
  mmfs_test::WriteFile(env / "d2/f.txt", "2");
  mmfs_test::WriteFile(env / "d3/f.txt", "3");
  mkdir((env / "d1/sub").c_str(), 0755);
  mmfile_path_set((env / "d1:" + env.root() + "/d2:" + env.root() + "/d3").c_str());
  int status = -1;
  EXPECT_EQ(Find("f.txt", 0, &status), env / "d2/f.txt");
  EXPECT_EQ(status, 0);
  EXPECT_EQ(Find("sub", 1, &status), env / "d1/sub");
  EXPECT_EQ(status, 0);
  // A directory is no regular file, and a file no directory.
  EXPECT_EQ(Find("sub", 0, &status), "<null>");
  EXPECT_EQ(status, -1);
  EXPECT_EQ(Find("f.txt", 1, &status), "<null>");
  EXPECT_EQ(status, -1);
  EXPECT_EQ(Find("f.txt", 2, &status), "<null>");
  EXPECT_EQ(status, -1);
}

TEST(Lookup, MissIsQuietAndDotSearchesTheWorkingDirectory) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "here.txt", "x");
  ScopedCwd restore(env.root());
  mmfile_path_set(".");
  FileMessages messages;
  int status = 0;
  EXPECT_EQ(Find("missing.txt", 0, &status), "<null>");
  EXPECT_EQ(status, -1);
  EXPECT_EQ(messages.getMessages(), "");
  EXPECT_EQ(Find("here.txt", 0, &status), "./here.txt");
  EXPECT_EQ(status, 0);
}

TEST(Lookup, AbsoluteNameIsTestedDirectlyAndCopied) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "f.txt", "x");
  mmfile_path_set("/nowhere");
  int status = -1;
  EXPECT_EQ(Find(env / "f.txt", 0, &status), env / "f.txt");
  EXPECT_EQ(status, 0);
  EXPECT_EQ(Find(env / "missing", 0, &status), "<null>");
  EXPECT_EQ(status, -1);
}

TEST(Lookup, FileExistsTestsOneLiteralPath) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "f.txt", "x");
  EXPECT_EQ(mmfile_file_exists((env / "f.txt").c_str(), 0), 0);
  EXPECT_EQ(mmfile_file_exists((env / "f.txt").c_str(), 1), -1);
  EXPECT_EQ(mmfile_file_exists(env.root().c_str(), 1), 0);
  EXPECT_EQ(mmfile_file_exists((env / "f.txt/below").c_str(), 0), -1);
  EXPECT_EQ(mmfile_file_exists(nullptr, 0), -1);
}

TEST(JoinPath, JoinsTwoListsWithAColon) {
  EXPECT_EQ(join_path("a:b", "c"), "a:b:c");
  EXPECT_EQ(join_path("a", ""), "a");
  EXPECT_EQ(join_path("", "b"), "b");
  EXPECT_EQ(join_path("", ""), "");
}

}  // namespace
