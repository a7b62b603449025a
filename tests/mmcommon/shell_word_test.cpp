// Quoting for the shell: results, every refusal (text left unchanged), and
// the bounds of the caller's buffer and of the work buffer. Buffers are
// allocated at exactly the size passed so that the sanitizer build catches
// any write beyond it.
#include "mmcommon/shell_word.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

namespace {

// A heap buffer of exactly `size` bytes (or just the text, when size is
// smaller) holding text, prepared with mmcommon_prepare_str_for_shell.
struct Prepared {
  int result;
  std::string text;  // what the buffer holds, up to its NUL or its end
};

Prepared Prepare(const std::string& text, int size) {
  const size_t capacity = std::max(static_cast<size_t>(std::max(size, 0)), text.size() + 1);
  std::unique_ptr<char[]> buffer(new char[capacity]);
  std::memset(buffer.get(), 0, capacity);
  std::memcpy(buffer.get(), text.c_str(), std::min(text.size() + 1, capacity));
  const int result = mmcommon_prepare_str_for_shell(buffer.get(), size);
  return {result, std::string(buffer.get(), strnlen(buffer.get(), capacity))};
}

void ExpectRefused(const std::string& text, int size) {
  Prepared prepared = Prepare(text, size);
  EXPECT_EQ(prepared.result, -1) << text << " in " << size;
  EXPECT_EQ(prepared.text, text) << "changed on refusal";
}

TEST(ShellWord, WrapsTextWithoutWildcardsInOnePairOfQuotes) {
  Prepared prepared = Prepare("my file.txt", 64);
  EXPECT_EQ(prepared.result, 0);
  EXPECT_EQ(prepared.text, "\"my file.txt\"");
}

TEST(ShellWord, LeavesWildcardsBareBetweenQuotedRuns) {
  EXPECT_EQ(Prepare("my file*.txt", 64).text, "\"my file\"*\".txt\"");
  EXPECT_EQ(Prepare("*.log", 64).text, "*\".log\"");
  EXPECT_EQ(Prepare("run?", 64).text, "\"run\"?");
  EXPECT_EQ(Prepare("a*?b", 64).text, "\"a\"*?\"b\"");
}

TEST(ShellWord, KeepsATextOfOnlyWildcards) {
  Prepared prepared = Prepare("*", 3);
  EXPECT_EQ(prepared.result, 0);
  EXPECT_EQ(prepared.text, "*");
  EXPECT_EQ(Prepare("*?**", 64).text, "*?**");
}

TEST(ShellWord, EscapesDoubleQuotes) {
  Prepared prepared = Prepare("say \"hi\"*", 64);
  EXPECT_EQ(prepared.result, 0);
  EXPECT_EQ(prepared.text, "\"say \\\"hi\\\"\"*");
}

TEST(ShellWord, RefusesNullAndEmptyText) {
  EXPECT_EQ(mmcommon_prepare_str_for_shell(nullptr, 64), -1);
  ExpectRefused("", 64);
}

TEST(ShellWord, RefusesATrailingSlashOrBackslashWhateverTheSize) {
  for (int size : {3, 64, 1024, 100000}) {
    ExpectRefused("dir/", size);
    ExpectRefused("dir\\", size);
  }
  ExpectRefused("/", 64);
}

TEST(ShellWord, NeedsRoomForOnePairOfQuotes) {
  ExpectRefused("abc", 4);
  Prepared fits = Prepare("abc", 5);
  EXPECT_EQ(fits.result, 0);
  EXPECT_EQ(fits.text, "\"abc\"");  // fills the five bytes; no room for a NUL
  Prepared terminated = Prepare("abc", 6);
  EXPECT_EQ(terminated.text, "\"abc\"");
  ExpectRefused("abc", 0);
  ExpectRefused("abc", -5);
}

TEST(ShellWord, NeedsRoomForTheEscapedQuotes) {
  // Five characters, two quotes to escape: step one passes from 7 on, the
  // escaped text with one more needs 8, and the result needs 9.
  ExpectRefused("a\"b\"c", 7);
  ExpectRefused("a\"b\"c", 8);
  Prepared prepared = Prepare("a\"b\"c", 9);
  EXPECT_EQ(prepared.result, 0);
  EXPECT_EQ(prepared.text, "\"a\\\"b\\\"c\"");
}

TEST(ShellWord, RefusesSeveralRunsThatWouldNotFitTheBuffer) {
  // Three runs grow the text by six characters: 5 + 6 = 11.
  for (int size = 7; size < 11; ++size) ExpectRefused("a*b*c", size);
  Prepared prepared = Prepare("a*b*c", 11);
  EXPECT_EQ(prepared.result, 0);
  EXPECT_EQ(prepared.text, "\"a\"*\"b\"*\"c\"");
  std::string many;
  for (int i = 0; i < 40; ++i) many += "x?";
  ExpectRefused(many, static_cast<int>(many.size()) + 2);
  ExpectRefused(many, static_cast<int>(many.size()) * 2 - 1);
  EXPECT_EQ(Prepare(many, static_cast<int>(many.size()) * 2 + 1).result, 0);
}

TEST(ShellWord, RefusesResultsBeyondTheWorkBuffer) {
  const int large = 4096;
  // One run: the result is the text plus two quotes, and with its NUL it must
  // fit the 1024-byte work buffer.
  Prepared longest = Prepare(std::string(1021, 'a'), large);
  EXPECT_EQ(longest.result, 0);
  EXPECT_EQ(longest.text, "\"" + std::string(1021, 'a') + "\"");
  ExpectRefused(std::string(1022, 'a'), large);
  ExpectRefused(std::string(3000, 'a'), large);
  // Many runs of one character each: 400 characters become 800.
  std::string runs;
  for (int i = 0; i < 200; ++i) runs += "b*";
  EXPECT_EQ(Prepare(runs, large).result, 0);
  for (int i = 0; i < 200; ++i) runs += "b*";
  ExpectRefused(runs, large);
  // Escaped quotes count too.
  ExpectRefused(std::string(600, '"'), large);
}

}  // namespace
