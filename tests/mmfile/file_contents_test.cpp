// MD5 digests of strings and files, conversion of DOS line endings in place,
// and the release names.
#include "mmfile/md5.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>

#include "file_test_env.h"
#include "mmfile/line_endings.h"
#include "mmfile/releases.h"

namespace {

using namespace mmfs_test;

std::string Hex(const unsigned char* digest) {
  char text[2 * MMFILE_MD5_DIGEST_LENGTH + 1];
  for (int i = 0; i < MMFILE_MD5_DIGEST_LENGTH; ++i) snprintf(text + 2 * i, 3, "%02x", digest[i]);
  return text;
}

TEST(Md5, DigestsOfKnownStringsAndFiles) {
  mmfile_test::FileTestEnv env;
  unsigned char digest[MMFILE_MD5_DIGEST_LENGTH];
  EXPECT_EQ(mmfile_md5_string(digest, "abc"), 0);
  EXPECT_EQ(Hex(digest), "900150983cd24fb0d6963f7d28e17f72");
  WriteFile(env / "f", std::string(5000, 'a'));  // longer than one read
  EXPECT_EQ(mmfile_md5_file(digest, (env / "f").c_str()), 0);
  EXPECT_EQ(Hex(digest), "7aaa7dec709fa4fa82f3746abfd80bdb");
  EXPECT_EQ(mmfile_md5_file(digest, (env / "missing").c_str()), 1);
  EXPECT_EQ(Hex(digest), std::string(32, '0'));
}

TEST(LineEndings, FirstLineWithinItsFirst1023BytesDecidesADosFile) {
  mmfile_test::FileTestEnv env;
  const struct { std::string contents; int status; } cases[] = {
      {"one\r\ntwo\n", 0}, {"one\ntwo\r\n", -1}, {"", -1},
      {std::string(1022, 'a') + "\r\n", 0}, {std::string(1023, 'a') + "\r\n", -1}};
  for (const auto& c : cases) {
    WriteFile(env / "f", c.contents);
    EXPECT_EQ(mmfile_is_dosfile((env / "f").c_str()), c.status) << c.contents.size();
  }
}

TEST(LineEndings, EveryCrLfBecomesLfThroughATmpSibling) {
  mmfile_test::FileTestEnv env;
  const std::string x(3000, 'x'), y(1022, 'y'), z(1023, 'z');  // y's CR is the 1023rd byte of a piece
  const struct { std::string before, after; } cases[] = {
      {"one\r\ntwo\r\n\r\nlast", "one\ntwo\n\nlast"}, {"a\rb\r\nc\r\n", "a\rb\nc\n"},
      {"one\ntwo\r\n", "one\ntwo\r\n"},  // not a DOS file
      {"h\r\n" + x + "\r\n" + y + "\r\n" + z + "\r\nend\r\n", "h\n" + x + "\n" + y + "\n" + z + "\nend\n"}};
  for (const auto& c : cases) {
    WriteFile(env / "f.txt", c.before);
    EXPECT_EQ(mmfile_dos_to_unix((env / "f.txt").c_str()), 0);
    EXPECT_TRUE(ReadFile(env / "f.txt") == c.after) << c.before.substr(0, 20);
    EXPECT_FALSE(mmfs_test::PathExists(env / "f.txt.tmp"));
  }
  WriteFile(env / "f.txt", "one\r\n");
  mkdir((env / "f.txt.tmp").c_str(), 0755);  // the sibling cannot be opened for writing
  mmfile_test::FileMessages messages;
  EXPECT_EQ(mmfile_dos_to_unix((env / "f.txt").c_str()), -1);
  EXPECT_EQ(messages.getMessages(), "FATAL mmfile_dos_to_unix():Failed to open '" + env / "f.txt.tmp" + "' for writing.\n");
  EXPECT_EQ(ReadFile(env / "f.txt"), "one\r\n");
}

TEST(Releases, PastListRunsQuarterlyFromTheCurrentReleaseToTheBareYear2013) {
  const auto& names = mmfile_get_past_release_names();
  ASSERT_EQ(names.size(), 52u);
  EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), 52u);
  for (const auto& [index, release] : std::initializer_list<std::pair<int, const char*>>{
           {0, "2025-4"}, {1, "2025-3"}, {4, "2024-4"}, {47, "2014-1"}, {48, "2013-3"}, {50, "2013-1"}, {51, "2013"}})
    EXPECT_EQ(names[index], release) << index;
}

TEST(Releases, CompareOrdersByPositionAndRanksUnknownNamesLowest) {
  const struct { const char *a, *b; int order; } cases[] = {
      {"2025-4", "2013-1", 1}, {"2013-1", "2025-4", -1}, {"2013-1", "2013", 1},  {"2024-1", "2023-4", 1},
      {"2020-2", "2020-2", 0}, {"2013-4", "2013-1", -1}, {"2013", "2026-1", 1}, {"2026-1", "1999-1", 0},
      {"", "2013", -1}};
  for (const auto& c : cases) EXPECT_EQ(compare_releases(c.a, c.b), c.order) << c.a << " vs " << c.b;
}

}  // namespace
