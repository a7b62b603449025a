// Splitting and joining path components.
#include "mmfile/path_components.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The string a component function hands out, released as its contract says.
std::string Take(char* text) {
  std::string result = text ? text : "<null>";
  mmfile_free_component_string(text);
  return result;
}

struct Parsed {
  std::string directory;
  std::string file;
};

Parsed Parse(const char* path) {
  char* directory = reinterpret_cast<char*>(1);
  char* file = reinterpret_cast<char*>(1);
  mmfile_parse_path(path, &directory, &file);
  return {Take(directory), Take(file)};
}

TEST(LastComponent, IsWhatFollowsTheLastSlash) {
  EXPECT_EQ(Take(mmfile_get_last_component("a/b/c.txt")), "c.txt");
  EXPECT_EQ(Take(mmfile_get_last_component("name")), "name");
  EXPECT_EQ(Take(mmfile_get_last_component("dir/")), "");
  EXPECT_EQ(Take(mmfile_get_last_component("")), "<null>");
  EXPECT_EQ(Take(mmfile_get_last_component(nullptr)), "<null>");
}

TEST(RemoveComponent, CutsAtTheLastSlash) {
  EXPECT_EQ(Take(mmfile_remove_component("a/b/c.txt")), "a/b");
  EXPECT_EQ(Take(mmfile_remove_component("dir/")), "dir");
  EXPECT_EQ(Take(mmfile_remove_component("name")), "");
  EXPECT_EQ(Take(mmfile_remove_component("/usr")), "");
  EXPECT_EQ(Take(mmfile_remove_component("")), "<null>");
  EXPECT_EQ(Take(mmfile_remove_component(nullptr)), "<null>");
}

TEST(AddComponent, JoinsWithExactlyOneSlash) {
  EXPECT_EQ(Take(mmfile_add_component("a", "b")), "a/b");
  EXPECT_EQ(Take(mmfile_add_component("a/", "/b")), "a/b");
  EXPECT_EQ(Take(mmfile_add_component("a/", "b")), "a/b");
  EXPECT_EQ(Take(mmfile_add_component("a", "/b")), "a/b");
  EXPECT_EQ(Take(mmfile_add_component("/", "b")), "/b");
}

TEST(AddComponent, EitherAloneWhenTheOtherIsMissing) {
  EXPECT_EQ(Take(mmfile_add_component("", "b")), "b");
  EXPECT_EQ(Take(mmfile_add_component(nullptr, "b")), "b");
  EXPECT_EQ(Take(mmfile_add_component("a", "")), "a");
  EXPECT_EQ(Take(mmfile_add_component("a", nullptr)), "a");
  EXPECT_EQ(Take(mmfile_add_component("", "")), "<null>");
  EXPECT_EQ(Take(mmfile_add_component(nullptr, nullptr)), "<null>");
}

TEST(ParsePath, SplitsIntoDirectoryAndFileName) {
  Parsed p = Parse("a//b");
  EXPECT_EQ(p.directory, "a");
  EXPECT_EQ(p.file, "b");
  p = Parse("dir/");
  EXPECT_EQ(p.directory, "dir");
  EXPECT_EQ(p.file, "<null>");
  p = Parse("name");
  EXPECT_EQ(p.directory, "<null>");
  EXPECT_EQ(p.file, "name");
  p = Parse("/a/b/c.txt");
  EXPECT_EQ(p.directory, "/a/b");
  EXPECT_EQ(p.file, "c.txt");
}

TEST(ParsePath, RootKeepsItsSlashes) {
  Parsed p = Parse("/x");
  EXPECT_EQ(p.directory, "/");
  EXPECT_EQ(p.file, "x");
  p = Parse("//x");
  EXPECT_EQ(p.directory, "//");
  EXPECT_EQ(p.file, "x");
  p = Parse("/");
  EXPECT_EQ(p.directory, "/");
  EXPECT_EQ(p.file, "<null>");
}

TEST(ParsePath, StopsAtTheFirstLineFeed) {
  Parsed p = Parse("dir/file\nrest/more");
  EXPECT_EQ(p.directory, "dir");
  EXPECT_EQ(p.file, "file");
  p = Parse("\nafter");
  EXPECT_EQ(p.directory, "<null>");
  EXPECT_EQ(p.file, "<null>");
  p = Parse("");
  EXPECT_EQ(p.directory, "<null>");
  EXPECT_EQ(p.file, "<null>");
  p = Parse(nullptr);
  EXPECT_EQ(p.directory, "<null>");
  EXPECT_EQ(p.file, "<null>");
}

TEST(FreeComponent, IgnoresNull) { mmfile_free_component_string(nullptr); SUCCEED(); }

}  // namespace
