// Wildcard patterns of token lists: the translation of each wildcard, the
// start-only anchor, the translation buffer's bound, and the messages of
// mmtoken_regex_compile and mmtoken_regex_index.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mmtoken/mmtoken.h"
#include "token_test_util.h"

namespace {

using mmtoken_test::MessagesOf;

// A new list of the given tokens, compiled; returns the compile's messages.
std::string Compile(int* handle, const std::vector<std::string>& tokens) {
  mmtoken_new(handle, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  for (const std::string& token : tokens) mmtoken_add(*handle, token.c_str());
  return MessagesOf([&] { EXPECT_EQ(mmtoken_regex_compile(*handle), 0); });
}

TEST(WildcardTranslation, EachWildcardAndTheStartOnlyAnchor) {
  // A backslash keeps # ( ) + [ ] literal and is itself matched before other
  // characters; other characters keep their regular-expression meaning.
  const struct { const char *token, *subject; bool matches; } cases[] = {
      {"ab", "abc", true},         {"ab", "xab", false},    {"a*   b", "aXYZb", true}, {"a*   b", "ab", true},
      {"a*   b", "a", false},      {"a b", "ab", false},    {"#.?", "7.xyz", true},    {"#.?", "7x", false},
      {"a?c", "ac", false},        {"a\\#", "a#", true},    {"a\\#", "a1", false},     {"f\\(x\\)", "f(x)", true},
      {"\\[1\\]\\+", "[1]+", true}, {"a\\?", "a\\z", true},  {"a\\", "a", false},       {"a+c", "aaac", true},
      {"(ab|cd)x", "cdx", true},   {"x$", "x", true},       {"x$", "xy", false}};
  for (const auto& c : cases) {
    int h;
    EXPECT_EQ(Compile(&h, {c.token}), "") << c.token;
    EXPECT_EQ(mmtoken_regex_index(h, c.subject), c.matches ? 0 : -1) << c.token << " on " << c.subject;
    mmtoken_delete(h);
  }
}

TEST(WildcardTranslation, LongTranslationsAreCutBetweenPiecesAtTheBufferBound) {
  // Each # takes five bytes; after "^" 1999 of them fit 10000 bytes with the
  // terminator. Escapes are never cut in half; stars stay within the program limit.
  int h;
  EXPECT_EQ(Compile(&h, {std::string(5000, '#'), std::string(4998, 'a') + std::string(3000, '.'),
                         std::string(20000, '*')}), "");
  EXPECT_EQ(mmtoken_regex_index(h, std::string(1999, '7').c_str()), 0);
  EXPECT_EQ(mmtoken_regex_index(h, (std::string(1998, '7') + "x").c_str()), 2);
  EXPECT_EQ(mmtoken_regex_index(h, (std::string(4998, 'a') + std::string(2500, '.')).c_str()), 1);
}

TEST(WildcardIndex, ReturnsTheFirstMatchUntilTheListChanges) {
  int h;
  EXPECT_EQ(Compile(&h, {"a(", "lig*", "*"}), "FATAL Error in regular expression: unmatched () \n");
  EXPECT_EQ(MessagesOf([&] { EXPECT_EQ(mmtoken_regex_index(h, "ligand.sdf"), 1); }),
            "FATAL Error in regular expression: NULL parameter \n");  // a bad token never matches
  mmtoken_replace(h, 1, "new*");  // keeps the old pattern until compiled again
  MessagesOf([&] { EXPECT_EQ(mmtoken_regex_index(h, "ligand.sdf"), 1); });
  mmtoken_add(h, "c");
  EXPECT_EQ(MessagesOf([&] { EXPECT_EQ(mmtoken_regex_index(h, "a"), -1); }),
            "WARNING mmtoken_regex_index(): not enough regular expressions\n"
            "WARNING                       : call mmtoken_regex_compile() first\n");
  MessagesOf([&] { EXPECT_EQ(mmtoken_regex_compile(h), 0); });
  MessagesOf([&] { EXPECT_EQ(mmtoken_regex_index(h, "ligand.sdf"), 2); });
  EXPECT_EQ(MessagesOf([] { EXPECT_EQ(mmtoken_regex_index(9999, "x"), -1); }),
            "WARNING mmtoken_regex_index():bad tok index = 9999\n");
}

}  // namespace
