// Line splitting: the five character sets, their precedence and the
// splitter's messages, through mmtoken_new and through mystrtok itself.
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "mmtoken/mmtoken.h"
#include "token_test_util.h"

namespace {

using mmtoken_test::MessagesOf;
using mmtoken_test::Tokens;

const char* kSep = " ,\t";

// The tokens of a line as mmtoken_new cuts them, checked against successive
// mystrtok calls (so each message comes twice).
Tokens Split(const char* line, const char* separators = kSep, const char* pairs = "",
             const char* comments = "", const char* escapes = "", const char* singles = "") {
  int handle;
  mmtoken_new(&handle, line, separators, pairs, comments, escapes, singles);
  Tokens tokens = mmtoken_test::ListTokens(handle), again;
  mmtoken_delete(handle);
  for (char* token = mystrtok(line, separators, pairs, comments, escapes, singles); token != nullptr;
       token = mystrtok(nullptr, separators, pairs, comments, escapes, singles)) {
    again.push_back(token);
    std::free(token);
  }
  EXPECT_EQ(again, tokens) << "mystrtok on " << line;
  return tokens;
}

TEST(SplitExamples, YieldTheDocumentedTokens) {
  const char* const q = "\"\"";  // a double quote opens and closes
  const struct { const char *line, *separators, *pairs, *comments, *escapes, *singles; Tokens tokens; } cases[] = {
      {"  a, b,,c\td ", kSep, "", "", "", "", {"a", "b", "c", "d"}}, {" , ,,\t ", kSep, "", "", "", "", {}},
      {"f(a b) c", kSep, "()", "", "", "", {"fa b", "c"}},
      {"a \"x y\" b", kSep, q, "", "", "", {"a", "x y", "b"}}, {"\"ab\"cd", kSep, q, "", "", "", {"ab", "cd"}},
      {"ab\"cd\"", kSep, q, "", "", "", {"abcd"}},          {"\"\"", kSep, q, "", "", "", {""}},
      // Inside a pair the other sets are ordinary; an opener's first pair decides its closer.
      {"'a#b\\=c, d' e", kSep, "''", "#", "\\", "=", {"a#b\\=c, d", "e"}},
      {"(a>b] c", kSep, "(](>", "", "", "", {"a>b", "c"}},   {"a\\ b", kSep, "", "", "\\", "", {"a b"}},
      {"ab\\", kSep, "", "", "\\", "", {"ab"}},             {"a = b", kSep, "", "", "", "=", {"a", "=", "b"}},
      {"a=b", kSep, "", "", "", "=", {"a", "=", "b"}},       {"a b#c", kSep, "", "#", "", "", {"a"}},
      {"ab#", kSep, "", "#", "", "", {}},
      // Overlaps: comment > escape > pair > separator > single.
      {"a b%c d", " ", "", "%", "%", "", {"a"}},             {"a\\#b c", kSep, "", "#", "\\", "", {"a#b", "c"}},
      {"a 'b' c", " ", "''", "", "'", "", {"a", "b c"}},     {"a|b c|d", " |", "||", "", "", "", {"ab c", "d"}},
      {"a=b", " =", "", "", "", "=", {"a", "b"}},            {"a\xc3\xa9" "b", "\xc3", "", "", "", "", {"a", "\xa9" "b"}}};
  for (const auto& c : cases)
    EXPECT_EQ(Split(c.line, c.separators, c.pairs, c.comments, c.escapes, c.singles), c.tokens) << c.line;
}

TEST(SplitMessages, UnmatchedOpenersWarnAndOddPairSetsAreFatal) {
  const std::string quote = "WARNING  mmtoken_new(), unmatched separator pair \" <-> \" in input: a \"b c \n",
                    paren = "WARNING  mmtoken_new(), unmatched separator pair ( <-> ) in input: ab( \n",
                    odd = "FATAL mmtoken_new(): an even number of pair separators must supplied\n";
  EXPECT_EQ(MessagesOf([] { EXPECT_EQ(Split("a \"b c", kSep, "\"\""), (Tokens{"a", "b c"})); }), quote + quote);
  // An opener as the last character of the line.
  EXPECT_EQ(MessagesOf([] { EXPECT_EQ(Split("ab(", kSep, "()"), Tokens{"ab"}); }), paren + paren);
  MessagesOf([] { EXPECT_EQ(Split("ab (", kSep, "()"), (Tokens{"ab", ""})); });
  EXPECT_EQ(MessagesOf([] { EXPECT_EQ(Split("a \"b\" c", kSep, "\""), Tokens{}); }), odd + odd);
  EXPECT_EQ(MessagesOf([] { EXPECT_EQ(Split("", kSep, "\""), Tokens{}); }), "");
}

TEST(Mystrtok, ANewLineOrMmtokenNewReplacesTheStoredLine) {
  std::free(mystrtok("a b c", " ", "", "", "", ""));
  char* token = mystrtok("x,y z", ",", "", "", "", "");
  EXPECT_STREQ(token, "x");
  std::free(token);
  int handle;  // mmtoken_new reads the shared line to its end
  mmtoken_new(&handle, "p q", nullptr, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(mystrtok(nullptr, " ", "", "", "", ""), nullptr);
}

TEST(SplitLimits, HugePairSetsAndEveryByteValue) {
  std::string pairs, all;
  for (int i = 0; i < 15000; i++) pairs += "<>";
  pairs += "[]";  // beyond the first 9999 pairs: ignored
  EXPECT_EQ(Split("<a b> [c d]", kSep, pairs.c_str()), (Tokens{"a b", "[c", "d]"}));
  for (int c = 1; c < 256; c++) all += static_cast<char>(c);
  EXPECT_EQ(Split(all.c_str(), ""), (Tokens{all}));
  EXPECT_EQ(Split(all.c_str(), "", "", "", "", all.c_str()).size(), 255u);
}

}  // namespace
