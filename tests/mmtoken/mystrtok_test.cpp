// Line splitting: the five character sets, their precedence and the
// splitter's messages, through mmtoken_new and through mystrtok itself.
#include <cstdlib>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "mmtoken/mmtoken.h"
#include "token_test_util.h"

namespace {

using mmtoken_test::MessagesOf;
using mmtoken_test::Split;
using mmtoken_test::Strtok;
using mmtoken_test::Tokens;

struct SplitCase {
  const char* line;
  const char* separators;
  const char* pairs;
  const char* comments;
  const char* escapes;
  const char* singles;
  Tokens expected;
};

void PrintTo(const SplitCase& c, std::ostream* os) { *os << '"' << c.line << '"'; }

// Each case is checked through mmtoken_new and through mystrtok.
class SplitExamples : public ::testing::TestWithParam<SplitCase> {};

TEST_P(SplitExamples, YieldsTheDocumentedTokens) {
  const SplitCase& c = GetParam();
  EXPECT_EQ(Split(c.line, c.separators, c.pairs, c.comments, c.escapes, c.singles), c.expected);
  EXPECT_EQ(Strtok(c.line, c.separators, c.pairs, c.comments, c.escapes, c.singles), c.expected);
}

const char* kDefault = " ,\t";

INSTANTIATE_TEST_SUITE_P(
    DefaultSeparators, SplitExamples,
    ::testing::Values(SplitCase{"a, b,,c", kDefault, "", "", "", "", {"a", "b", "c"}},
                      SplitCase{"   a   ", kDefault, "", "", "", "", {"a"}},
                      SplitCase{"", kDefault, "", "", "", "", {}},
                      SplitCase{" , ,,\t ", kDefault, "", "", "", "", {}},
                      SplitCase{"a\tb", kDefault, "", "", "", "", {"a", "b"}}));

INSTANTIATE_TEST_SUITE_P(
    QuotePairs, SplitExamples,
    ::testing::Values(
        SplitCase{"a \"x y\" b", kDefault, "\"\"", "", "", "", {"a", "x y", "b"}},
        SplitCase{"\"ab\"cd", kDefault, "\"\"", "", "", "", {"ab", "cd"}},
        SplitCase{"ab\"cd\"", kDefault, "\"\"", "", "", "", {"abcd"}},
        SplitCase{"\"\"", kDefault, "\"\"", "", "", "", {""}},
        SplitCase{"a \"\" b", kDefault, "\"\"", "", "", "", {"a", "", "b"}},
        SplitCase{"\"a\" ,  b", kDefault, "\"\"", "", "", "", {"a", "b"}},
        SplitCase{"f(a b) c", kDefault, "()", "", "", "", {"fa b", "c"}},
        SplitCase{"'x\"y' \"p'q\"", kDefault, "\"\"''", "", "", "", {"x\"y", "p'q"}},
        // Inside a pair every other set is ordinary.
        SplitCase{"'a#b\\=c, d' e", kDefault, "''", "#", "\\", "=", {"a#b\\=c, d", "e"}},
        // The first pair of an opener decides its closer.
        SplitCase{"(a>b] c", kDefault, "(](>", "", "", "", {"a>b", "c"}}));

INSTANTIATE_TEST_SUITE_P(
    EscapesSinglesComments, SplitExamples,
    ::testing::Values(
        SplitCase{"a\\ b", kDefault, "", "", "\\", "", {"a b"}},
        SplitCase{"ab\\", kDefault, "", "", "\\", "", {"ab"}},
        SplitCase{"\\", kDefault, "", "", "\\", "", {}},
        SplitCase{"a \\", kDefault, "", "", "\\", "", {"a"}},
        SplitCase{"a\\#b c", kDefault, "", "#", "\\", "", {"a#b", "c"}},
        SplitCase{"\\\"a b\\\"", kDefault, "\"\"", "", "\\", "", {"\"a", "b\""}},
        SplitCase{"a=b", kDefault, "", "", "", "=", {"a", "=", "b"}},
        SplitCase{"a = b", kDefault, "", "", "", "=", {"a", "=", "b"}},
        SplitCase{"==", kDefault, "", "", "", "=", {"=", "="}},
        SplitCase{"a b#c", kDefault, "", "#", "", "", {"a"}},
        SplitCase{"ab#", kDefault, "", "#", "", "", {}},
        SplitCase{"#", kDefault, "", "#", "", "", {}}));

// Where the sets overlap: comment > escape > pair > separator > single.
INSTANTIATE_TEST_SUITE_P(
    Precedence, SplitExamples,
    ::testing::Values(
        // A comment drops what was collected with the rest of the line.
        SplitCase{"a b;c d", " ;", "", ";", "", "", {"a"}},          // comment over separator
        SplitCase{"a b%c d", " ", "", "%", "%", "", {"a"}},          // comment over escape
        SplitCase{"a 'b' c", " ", "''", "", "'", "", {"a", "b c"}},  // escape over pair
        SplitCase{"a|b c|d", " |", "||", "", "", "", {"ab c", "d"}},  // pair over separator
        SplitCase{"a=b", " =", "", "", "", "=", {"a", "b"}},         // separator over single
        SplitCase{"a\xc3\xa9" "b", "\xc3", "", "", "", "", {"a", "\xa9" "b"}}));

TEST(SplitMessages, UnmatchedOpenerWarnsAndKeepsTheRestOfTheLine) {
  Tokens tokens;
  std::string messages = MessagesOf([&] { tokens = Split("a \"b c", nullptr, "\"\""); });
  EXPECT_EQ(tokens, (Tokens{"a", "b c"}));
  EXPECT_EQ(messages,
            "WARNING  mmtoken_new(), unmatched separator pair \" <-> \" in input: a \"b c \n");
}

TEST(SplitMessages, OpenerAsLastCharacterYieldsWhatWasCollected) {
  Tokens tokens;
  std::string messages = MessagesOf([&] { tokens = Split("ab(", nullptr, "()"); });
  EXPECT_EQ(tokens, (Tokens{"ab"}));
  EXPECT_EQ(messages, "WARNING  mmtoken_new(), unmatched separator pair ( <-> ) in input: ab( \n");

  messages = MessagesOf([&] { tokens = Split("ab (", nullptr, "()"); });
  EXPECT_EQ(tokens, (Tokens{"ab", ""}));
  EXPECT_NE(messages.find("unmatched separator pair ( <-> )"), std::string::npos);
}

TEST(SplitMessages, OddPairSeparatorsGiveAnEmptyListAndAFatalMessage) {
  Tokens tokens;
  std::string messages = MessagesOf([&] { tokens = Split("a \"b\" c", nullptr, "\""); });
  EXPECT_TRUE(tokens.empty());
  EXPECT_EQ(messages,
            "FATAL mmtoken_new(): an even number of pair separators must supplied\n");

  messages = MessagesOf([&] { tokens = Strtok("a b", " ", "\"\"'"); });
  EXPECT_TRUE(tokens.empty());
  EXPECT_EQ(messages,
            "FATAL mmtoken_new(): an even number of pair separators must supplied\n");
}

TEST(SplitMessages, OddPairsOnAnEmptyLineSayNothing) {
  std::string messages = MessagesOf([] { EXPECT_TRUE(Split("", nullptr, "\"").empty()); });
  EXPECT_EQ(messages, "");
}

TEST(Mystrtok, ContinuesTheStoredLineUntilItEnds) {
  char* first = mystrtok("x y", " ", "", "", "", "");
  ASSERT_NE(first, nullptr);
  EXPECT_STREQ(first, "x");
  std::free(first);
  char* second = mystrtok(nullptr, " ", "", "", "", "");
  ASSERT_NE(second, nullptr);
  EXPECT_STREQ(second, "y");
  std::free(second);
  EXPECT_EQ(mystrtok(nullptr, " ", "", "", "", ""), nullptr);
  EXPECT_EQ(mystrtok(nullptr, " ", "", "", "", ""), nullptr);
}

TEST(Mystrtok, ANewLineReplacesTheStoredOne) {
  char* token = mystrtok("a b c", " ", "", "", "", "");
  std::free(token);
  EXPECT_EQ(Strtok("p q", " "), (Tokens{"p", "q"}));
}

TEST(Mystrtok, TheSetsMayChangeBetweenCalls) {
  char* first = mystrtok("a,b c", ",", "", "", "", "");
  EXPECT_STREQ(first, "a");
  std::free(first);
  char* second = mystrtok(nullptr, " ", "", "", "", "");
  EXPECT_STREQ(second, "b");
  std::free(second);
}

TEST(Mystrtok, MmtokenNewReadsTheSharedLineToItsEnd) {
  char* first = mystrtok("a b c", " ", "", "", "", "");
  std::free(first);
  int handle;
  mmtoken_new(&handle, "p q", nullptr, nullptr, nullptr, nullptr, nullptr);
  mmtoken_delete(handle);
  EXPECT_EQ(mystrtok(nullptr, " ", "", "", "", ""), nullptr);
}

TEST(SplitLimits, ALongLineSplitsIntoEveryToken) {
  std::string line;
  for (int i = 0; i < 100000; i++) line += "tok" + std::to_string(i % 10) + " ";
  Tokens tokens = Split(line.c_str());
  ASSERT_EQ(tokens.size(), 100000u);
  EXPECT_EQ(tokens.front(), "tok0");
  EXPECT_EQ(tokens.back(), "tok9");
}

TEST(SplitLimits, ALongQuotedTokenAndEscapesAreKeptWhole) {
  std::string inner(300000, 'x');
  std::string line = "a \"" + inner + "\" b\\ c";
  EXPECT_EQ(Split(line.c_str(), nullptr, "\"\"", nullptr, "\\"),
            (Tokens{"a", inner, "b c"}));
}

TEST(SplitLimits, HugePairSetsAreSafe) {
  std::string pairs;
  for (int i = 0; i < 15000; i++) pairs += "<>";
  pairs += "[]";  // beyond the first 9999 pairs: ignored
  EXPECT_EQ(Split("<a b> [c d]", nullptr, pairs.c_str()), (Tokens{"a b", "[c", "d]"}));
}

TEST(SplitLimits, EveryByteValueIsAnOrdinaryCharacterOrASetMember) {
  std::string all;
  for (int c = 1; c < 256; c++) all += static_cast<char>(c);
  Tokens tokens = Split(all.c_str(), "", "");
  ASSERT_EQ(tokens.size(), 1u);
  EXPECT_EQ(tokens[0], all);
  // With every byte a single character, each one is a token.
  EXPECT_EQ(Split(all.c_str(), "", "", "", "", all.c_str()).size(), 255u);
}

}  // namespace
