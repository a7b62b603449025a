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

// A list holding the given tokens as patterns, compiled.
class Patterns {
 public:
  explicit Patterns(const std::vector<std::string>& tokens) {
    mmtoken_new(&handle_, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    for (const std::string& token : tokens) mmtoken_add(handle_, token.c_str());
    compile_messages_ = MessagesOf([&] { EXPECT_EQ(mmtoken_regex_compile(handle_), 0); });
  }
  ~Patterns() { mmtoken_delete(handle_); }
  int handle() const { return handle_; }
  int Index(const std::string& subject) const {
    return mmtoken_regex_index(handle_, subject.c_str());
  }
  const std::string& compile_messages() const { return compile_messages_; }

 private:
  int handle_ = -1;
  std::string compile_messages_;
};

bool WildcardMatches(const std::string& token, const std::string& subject) {
  Patterns patterns({token});
  return patterns.Index(subject) == 0;
}

TEST(WildcardTranslation, AnchoredAtTheStartOnly) {
  EXPECT_TRUE(WildcardMatches("ab", "ab"));
  EXPECT_TRUE(WildcardMatches("ab", "abc"));
  EXPECT_FALSE(WildcardMatches("ab", "xab"));
}

TEST(WildcardTranslation, StarIsAnyRunAndDropsTheBlanksAfterIt) {
  EXPECT_TRUE(WildcardMatches("a*b", "aXYZb"));
  EXPECT_TRUE(WildcardMatches("a*   b", "aXYZb"));
  EXPECT_TRUE(WildcardMatches("a*   b", "ab"));
  EXPECT_FALSE(WildcardMatches("a*   b", "a"));
  // Blanks elsewhere stay.
  EXPECT_FALSE(WildcardMatches("a b", "ab"));
  EXPECT_TRUE(WildcardMatches("a b", "a b"));
}

TEST(WildcardTranslation, QuestionMarkHashAndDot) {
  EXPECT_TRUE(WildcardMatches("#.?", "7.x"));
  EXPECT_TRUE(WildcardMatches("#.?", "7.xyz"));
  EXPECT_FALSE(WildcardMatches("#.?", "7x"));
  EXPECT_FALSE(WildcardMatches("#", "x7"));
  EXPECT_FALSE(WildcardMatches("a.b", "axb"));
  EXPECT_FALSE(WildcardMatches("a?c", "ac"));
}

TEST(WildcardTranslation, BackslashKeepsSomeEscapesAndDoublesOthers) {
  EXPECT_TRUE(WildcardMatches("a\\#", "a#"));
  EXPECT_FALSE(WildcardMatches("a\\#", "a1"));
  EXPECT_TRUE(WildcardMatches("f\\(x\\)", "f(x)"));
  EXPECT_TRUE(WildcardMatches("\\[1\\]\\+", "[1]+"));
  // Before any other character the backslash itself is matched, and the
  // character is translated on its own.
  EXPECT_TRUE(WildcardMatches("a\\b", "a\\b"));
  EXPECT_TRUE(WildcardMatches("a\\?", "a\\z"));
  EXPECT_TRUE(WildcardMatches("a\\", "a\\"));
  EXPECT_FALSE(WildcardMatches("a\\", "a"));
}

TEST(WildcardTranslation, OtherCharactersKeepTheirRegularExpressionMeaning) {
  EXPECT_TRUE(WildcardMatches("a+c", "aaac"));
  EXPECT_TRUE(WildcardMatches("(ab|cd)x", "cdx"));
  EXPECT_TRUE(WildcardMatches("x$", "x"));
  EXPECT_FALSE(WildcardMatches("x$", "xy"));
  EXPECT_TRUE(WildcardMatches("[A-C]*.mae", "B_ligand.mae"));
}

TEST(WildcardTranslation, ABadTokenLeavesANullPatternThatNeverMatches) {
  Patterns patterns({"a(", "a"});
  EXPECT_EQ(patterns.compile_messages(),
            "FATAL Error in regular expression: unmatched () \n");
  std::string messages = MessagesOf([&] { EXPECT_EQ(patterns.Index("a"), 1); });
  EXPECT_EQ(messages, "FATAL Error in regular expression: NULL parameter \n");
}

TEST(WildcardTranslation, TheBufferBoundCutsLongTranslationsBetweenPieces) {
  // Each # takes five bytes; after "^" only 1999 of them fit 10000 bytes
  // with the terminator.
  std::string hashes(5000, '#');
  Patterns patterns({hashes});
  EXPECT_EQ(patterns.compile_messages(), "");
  EXPECT_EQ(patterns.Index(std::string(1999, '7')), 0);
  EXPECT_EQ(patterns.Index(std::string(1998, '7') + "x"), -1);

  // Escapes are never cut in half.
  std::string dots = std::string(4998, 'a') + std::string(3000, '.');
  Patterns cut({dots});
  EXPECT_EQ(cut.compile_messages(), "");
  EXPECT_EQ(cut.Index(std::string(4998, 'a') + std::string(2500, '.')), 0);
}

TEST(WildcardTranslation, ManyStarsStayWithinTheProgramLimit) {
  Patterns stars({std::string(20000, '*')});
  EXPECT_EQ(stars.compile_messages(), "");
  EXPECT_EQ(stars.Index(""), 0);
}

TEST(WildcardIndex, ReturnsTheFirstMatchingPattern) {
  Patterns patterns({"*.mae", "lig*", "*"});
  EXPECT_EQ(patterns.Index("x.mae"), 0);
  EXPECT_EQ(patterns.Index("ligand.sdf"), 1);
  EXPECT_EQ(patterns.Index("other"), 2);
}

TEST(WildcardIndex, ReportsWhenTheListChangedSinceCompiling) {
  Patterns patterns({"a", "b"});
  mmtoken_add(patterns.handle(), "c");
  std::string messages = MessagesOf([&] { EXPECT_EQ(patterns.Index("a"), -1); });
  EXPECT_EQ(messages,
            "WARNING mmtoken_regex_index(): not enough regular expressions\n"
            "WARNING                       : call mmtoken_regex_compile() first\n");
  EXPECT_EQ(mmtoken_regex_compile(patterns.handle()), 0);
  EXPECT_EQ(patterns.Index("c"), 2);

  mmtoken_delete_token(patterns.handle(), 0);
  messages = MessagesOf([&] { EXPECT_EQ(patterns.Index("b"), -1); });
  EXPECT_NE(messages.find("not enough regular expressions"), std::string::npos);
}

TEST(WildcardIndex, ReplacedTokensKeepTheirOldPatternUntilRecompiled) {
  Patterns patterns({"old*"});
  mmtoken_replace(patterns.handle(), 0, "new*");
  EXPECT_EQ(patterns.Index("oldest"), 0);
  EXPECT_EQ(patterns.Index("newest"), -1);
  mmtoken_regex_compile(patterns.handle());
  EXPECT_EQ(patterns.Index("newest"), 0);
}

TEST(WildcardIndex, NeverCompiledAndEmptyLists) {
  int handle;
  mmtoken_new(&handle, "a", nullptr, nullptr, nullptr, nullptr, nullptr);
  std::string messages =
      MessagesOf([&] { EXPECT_EQ(mmtoken_regex_index(handle, "a"), -1); });
  EXPECT_NE(messages.find("not enough regular expressions"), std::string::npos);
  mmtoken_clear(handle);
  messages = MessagesOf([&] {
    EXPECT_EQ(mmtoken_regex_compile(handle), 0);
    EXPECT_EQ(mmtoken_regex_index(handle, "a"), -1);
  });
  EXPECT_EQ(messages, "");
  mmtoken_delete(handle);
}

TEST(WildcardMessages, BadHandles) {
  std::string messages = MessagesOf([] {
    EXPECT_EQ(mmtoken_regex_compile(9999), -1);
    EXPECT_EQ(mmtoken_regex_index(9999, "x"), -1);
  });
  EXPECT_EQ(messages,
            "WARNING mmtoken_regex_compile(): bad tok index = 9999 \n"
            "WARNING mmtoken_regex_index():bad tok index = 9999\n");
}

}  // namespace
