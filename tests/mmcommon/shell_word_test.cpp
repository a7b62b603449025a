// Quoting for the shell: results, every refusal (text left unchanged), and
// the bounds of the caller's buffer and of the work buffer. Buffers are
// allocated at exactly the size passed (or the text's own length when that is
// larger), so the sanitizer build catches any write beyond them.
#include "mmcommon/shell_word.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

static std::string Repeat(const std::string& unit, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += unit;
  return text;
}

TEST(ShellWord, QuotesRunsBetweenWildcardsAndRefusesWhatWouldNotFit) {
  // An empty expectation means refused.
  const struct { std::string text; int size; std::string expected; } kCases[] = {
      {"my file.txt", 64, "\"my file.txt\""}, {"my file*.txt", 64, "\"my file\"*\".txt\""},
      {"*.log", 64, "*\".log\""}, {"a*?b", 64, "\"a\"*?\"b\""}, {"*", 3, "*"}, {"*?**", 64, "*?**"},
      {"say \"hi\"*", 64, "\"say \\\"hi\\\"\"*"}, {"a\"b\"c", 9, "\"a\\\"b\\\"c\""},
      {"abc", 5, "\"abc\""},  // fills the five bytes: no room for a NUL
      {"a*b*c", 11, "\"a\"*\"b\"*\"c\""}, {Repeat("b*", 200), 4096, Repeat("\"b\"*", 200)},
      {std::string(1021, 'a'), 4096, "\"" + std::string(1021, 'a') + "\""},
      // Step one: empty, a trailing slash or backslash whatever the size, and
      // no room for one pair of quotes.
      {"", 64, ""}, {"dir/", 3, ""}, {"dir/", 100000, ""}, {"dir\\", 1024, ""}, {"/", 64, ""},
      {"abc", 4, ""}, {"abc", 0, ""}, {"abc", -5, ""},
      // Step two: no room for the escaped quotes.
      {"a\"b\"c", 7, ""}, {"a\"b\"c", 8, ""}, {std::string(600, '"'), 4096, ""},
      // Several runs: two more characters each, beyond `size` or the work buffer.
      {"a*b*c", 10, ""}, {Repeat("x?", 40), 159, ""}, {std::string(1022, 'a'), 4096, ""},
      {Repeat("b*", 400), 4096, ""}};
  for (const auto& c : kCases) {
    std::vector<char> buffer(std::max<size_t>(std::max(c.size, 0), c.text.size() + 1), '\0');
    std::memcpy(buffer.data(), c.text.c_str(), c.text.size());
    const int result = mmcommon_prepare_str_for_shell(buffer.data(), c.size);
    EXPECT_EQ(result, c.expected.empty() ? -1 : 0) << c.text << " in " << c.size;
    EXPECT_EQ(std::string(buffer.data(), strnlen(buffer.data(), buffer.size())),
              c.expected.empty() ? c.text : c.expected) << c.text << " in " << c.size;
  }
  EXPECT_EQ(mmcommon_prepare_str_for_shell(nullptr, 64), -1);
}
