// MD5 digests of strings, files and standard input.
#include "mmfile/md5.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "file_test_env.h"

namespace {

using mmfile_test::FileTestEnv;

std::string Hex(const unsigned char* digest) {
  static const char digits[] = "0123456789abcdef";
  std::string text;
  for (int i = 0; i < MMFILE_MD5_DIGEST_LENGTH; ++i) {
    text += digits[digest[i] >> 4];
    text += digits[digest[i] & 15];
  }
  return text;
}

TEST(Md5String, KnownDigestsAsRawBytes) {
  unsigned char digest[MMFILE_MD5_DIGEST_LENGTH];
  EXPECT_EQ(mmfile_md5_string(digest, "abc"), 0);
  EXPECT_EQ(Hex(digest), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(mmfile_md5_string(digest, ""), 0);
  EXPECT_EQ(Hex(digest), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(mmfile_md5_string(digest, "The quick brown fox jumps over the lazy dog"), 0);
  EXPECT_EQ(Hex(digest), "9e107d9d372bb6826bd81d3542a419d6");
}

TEST(Md5File, DigestOfTheFilesBytes) {
  FileTestEnv env;
  std::string contents;
  for (int i = 0; i < 5000; ++i) contents += static_cast<char>('a' + i % 26);
  mmfs_test::WriteFile(env / "f", contents);
  unsigned char from_file[MMFILE_MD5_DIGEST_LENGTH];
  unsigned char from_string[MMFILE_MD5_DIGEST_LENGTH];
  EXPECT_EQ(mmfile_md5_file(from_file, (env / "f").c_str()), 0);
  mmfile_md5_string(from_string, contents.c_str());
  EXPECT_EQ(Hex(from_file), Hex(from_string));
  mmfs_test::WriteFile(env / "empty", "");
  EXPECT_EQ(mmfile_md5_file(from_file, (env / "empty").c_str()), 0);
  EXPECT_EQ(Hex(from_file), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(Md5File, UnopenableFileGivesOneAndZeros) {
  FileTestEnv env;
  unsigned char digest[MMFILE_MD5_DIGEST_LENGTH];
  mmfile_md5_string(digest, "abc");
  EXPECT_EQ(mmfile_md5_file(digest, (env / "missing").c_str()), 1);
  EXPECT_EQ(Hex(digest), std::string(32, '0'));
}

TEST(Md5Filter, DigestOfStandardInputToItsEnd) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "in", std::string(1000, 'q') + "tail");
  const std::string input = env / "in";
  auto child = mmfs_test::RunInChild([&] {
    if (!freopen(input.c_str(), "rb", stdin)) return 2;
    unsigned char digest[MMFILE_MD5_DIGEST_LENGTH];
    if (mmfile_md5_filter(digest) != 0) return 3;
    printf("%s", Hex(digest).c_str());
    return 0;
  });
  ASSERT_EQ(child.exit_code, 0);
  unsigned char expected[MMFILE_MD5_DIGEST_LENGTH];
  mmfile_md5_string(expected, (std::string(1000, 'q') + "tail").c_str());
  EXPECT_EQ(child.out, Hex(expected));
}

}  // namespace
