// The regular-expression engine: compile errors, the program limit, the
// facts kept for fast rejection, match answers and recorded positions, long
// subjects, costly patterns, and agreement with a plain recursive matcher and
// with the C library's matcher on random patterns.
#include <regex.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mmtoken/regexp.h"
#include "token_test_util.h"

namespace {

using mmtoken_test::MessagesOf;

// A compiled pattern, freed at the end of the scope.
struct Compiled {
  explicit Compiled(const char* pattern) : re(mm_regcomp(pattern)) {}
  ~Compiled() { std::free(re); }
  Compiled(const Compiled&) = delete;
  Compiled& operator=(const Compiled&) = delete;
  regexp* re;
};

std::string CompileMessage(const char* pattern) {
  return MessagesOf([&] {
    regexp* re = mm_regcomp(pattern);
    EXPECT_EQ(re, nullptr) << pattern;
    std::free(re);
  });
}

std::string Fatal(const std::string& what) {
  return "FATAL Error in regular expression: " + what + " \n";
}

// Offsets of slot i in the subject, or {-1, -1} when the slot is empty.
std::pair<long, long> Slot(const regexp* re, const char* subject, int i) {
  if (re->startp[i] == nullptr) return {-1, -1};
  return {re->startp[i] - subject, re->endp[i] - subject};
}

bool Matches(const char* pattern, const char* subject) {
  Compiled c(pattern);
  EXPECT_NE(c.re, nullptr) << pattern;
  return c.re != nullptr && mm_regexec(c.re, subject) == 1;
}

TEST(RegexCompileErrors, EachSyntaxErrorHasItsMessage) {
  EXPECT_EQ(CompileMessage("a|b(c"), Fatal("unmatched ()"));
  EXPECT_EQ(CompileMessage("ab)"), Fatal("unmatched ()"));
  EXPECT_EQ(CompileMessage("(a*)*"), Fatal("*+ operand could be empty"));
  EXPECT_EQ(CompileMessage("(a|)+"), Fatal("*+ operand could be empty"));
  EXPECT_EQ(CompileMessage("(^)*"), Fatal("*+ operand could be empty"));
  EXPECT_EQ(CompileMessage("a**"), Fatal("nested *?+"));
  EXPECT_EQ(CompileMessage("a?+"), Fatal("nested *?+"));
  EXPECT_EQ(CompileMessage("[z-a]"), Fatal("invalid [] range"));
  EXPECT_EQ(CompileMessage("[abc"), Fatal("unmatched []"));
  EXPECT_EQ(CompileMessage("[]"), Fatal("unmatched []"));
  EXPECT_EQ(CompileMessage("*a"), Fatal("?+* follows nothing"));
  EXPECT_EQ(CompileMessage("a|+b"), Fatal("?+* follows nothing"));
  EXPECT_EQ(CompileMessage("(?a)"), Fatal("?+* follows nothing"));
  EXPECT_EQ(CompileMessage("a\\"), Fatal("trailing \\"));
  EXPECT_EQ(CompileMessage(nullptr), Fatal("NULL argument"));
}

TEST(RegexCompileErrors, NineGroupsCompileAndATenthFails) {
  EXPECT_EQ(CompileMessage("(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)"), Fatal("too many ()"));
  EXPECT_EQ(CompileMessage("((((((((((a))))))))))"), Fatal("too many ()"));
  Compiled nine("(((((((((a)))))))))");
  ASSERT_NE(nine.re, nullptr);
  const char* subject = "xa";
  EXPECT_EQ(mm_regexec(nine.re, subject), 1);
  for (int i = 0; i < NSUBEXP; i++) EXPECT_EQ(Slot(nine.re, subject, i), std::make_pair(1L, 2L));
}

TEST(RegexCompileErrors, ProgramSizeLimit) {
  // A literal of n characters needs n + 11 bytes: magic, BRANCH, EXACTLY with
  // its terminator, END. 32767 bytes and more are refused.
  std::string fits(32755, 'q');
  Compiled largest(fits.c_str());
  ASSERT_NE(largest.re, nullptr);
  EXPECT_EQ(mm_regexec(largest.re, ("x" + fits).c_str()), 1);
  EXPECT_EQ(mm_regexec(largest.re, fits.substr(1).c_str()), 0);

  std::string over(32756, 'q');
  EXPECT_EQ(CompileMessage(over.c_str()), Fatal("regexp too big"));
  std::string far_over(1 << 20, 'q');
  EXPECT_EQ(CompileMessage(far_over.c_str()), Fatal("regexp too big"));
  // Ranges expand to one byte per member.
  std::string ranges;
  for (int i = 0; i < 130; i++) ranges += "[\x01-\xff]";
  EXPECT_EQ(CompileMessage(ranges.c_str()), Fatal("regexp too big"));
}

TEST(RegexCompile, KeepsStartAnchorAndMustFacts) {
  Compiled literal("abc*");
  EXPECT_EQ(literal.re->regstart, 'a');
  EXPECT_EQ(literal.re->reganch, 0);
  EXPECT_EQ(literal.re->regmust, nullptr);

  Compiled anchored("^ab");
  EXPECT_EQ(anchored.re->reganch, 1);
  EXPECT_EQ(anchored.re->regstart, 0);

  // A starred start makes the longest literal on the main chain a must; of
  // equally long ones the last.
  Compiled starred("x*ab.*cde[0-9]fgh");
  ASSERT_NE(starred.re->regmust, nullptr);
  EXPECT_EQ(std::string(starred.re->regmust, starred.re->regmlen), "fgh");
  EXPECT_EQ(starred.re->regmlen, 3);
  EXPECT_EQ(mm_regexec(starred.re, "abzcde1fg"), 0);
  EXPECT_EQ(mm_regexec(starred.re, "xxabzcde1fgh"), 1);

  Compiled alternatives("a|b");
  EXPECT_EQ(alternatives.re->regstart, 0);
  EXPECT_EQ(alternatives.re->reganch, 0);
  EXPECT_EQ(alternatives.re->regmust, nullptr);
}

TEST(RegexMatch, SyntaxElements) {
  EXPECT_TRUE(Matches("", ""));
  EXPECT_TRUE(Matches("", "anything"));
  EXPECT_TRUE(Matches("b", "abc"));
  EXPECT_FALSE(Matches("^b", "abc"));
  EXPECT_TRUE(Matches("c$", "abc"));
  EXPECT_FALSE(Matches("b$", "abc"));
  EXPECT_TRUE(Matches("a.c", "abc"));
  EXPECT_FALSE(Matches("a.c", "ac"));
  EXPECT_TRUE(Matches("[]x-]", "-"));
  EXPECT_TRUE(Matches("[^]x]", "a"));
  EXPECT_FALSE(Matches("^[^]x]$", "]"));
  EXPECT_TRUE(Matches("[a-c-]", "-"));
  EXPECT_TRUE(Matches("^[0-9]+$", "2025"));
  EXPECT_FALSE(Matches("^[0-9]+$", "20x5"));
  EXPECT_TRUE(Matches("^a\\.b\\*$", "a.b*"));
  EXPECT_FALSE(Matches("^a\\.b$", "axb"));
  EXPECT_TRUE(Matches("colou?r", "color"));
  EXPECT_TRUE(Matches("(ab)+c", "xababc"));
  EXPECT_FALSE(Matches("^(ab)+c", "c"));
  EXPECT_TRUE(Matches("^(cat|dog)s?$", "dogs"));
  EXPECT_FALSE(Matches("^(cat|dog)s?$", "cow"));
  EXPECT_TRUE(Matches("^kitbase-v[0-9]+(.[0-9]+)?$", "kitbase-v7.2"));
  EXPECT_TRUE(Matches("^kitbase-v[0-9]+(.[0-9]+)?$", "kitbase-v12"));
  EXPECT_FALSE(Matches("^kitbase-v[0-9]+(.[0-9]+)?$", "kitbase-v7.2x"));
  EXPECT_FALSE(Matches("^kitbase-v[0-9]+(.[0-9]+)?$", "panoply-v7"));
  EXPECT_TRUE(Matches("\xc3\xa9+", "caf\xc3\xa9"));
  EXPECT_TRUE(Matches("[\x80-\xff]", "caf\xc3\xa9"));
}

TEST(RegexMatch, RecordsTheFirstMatchAndItsGroups) {
  const char* subject = "xabcbd";
  Compiled c("a(b|c)*d");
  ASSERT_EQ(mm_regexec(c.re, subject), 1);
  EXPECT_EQ(Slot(c.re, subject, 0), std::make_pair(1L, 6L));
  EXPECT_EQ(Slot(c.re, subject, 1), std::make_pair(4L, 5L));  // the last repetition
  EXPECT_EQ(Slot(c.re, subject, 2), std::make_pair(-1L, -1L));

  const char* greedy = "abc";
  Compiled first_alternative("(ab|a)(bc|c)");
  ASSERT_EQ(mm_regexec(first_alternative.re, greedy), 1);
  EXPECT_EQ(Slot(first_alternative.re, greedy, 1), std::make_pair(0L, 2L));
  EXPECT_EQ(Slot(first_alternative.re, greedy, 2), std::make_pair(2L, 3L));

  // A group left out of the match keeps no position.
  const char* other = "yb";
  Compiled unused("(a)|b");
  ASSERT_EQ(mm_regexec(unused.re, other), 1);
  EXPECT_EQ(Slot(unused.re, other, 0), std::make_pair(1L, 2L));
  EXPECT_EQ(Slot(unused.re, other, 1), std::make_pair(-1L, -1L));
}

TEST(RegexMatch, AFailedMatchLeavesNoPositions) {
  Compiled c("(a)(b)c");
  const char* subject = "abx";
  EXPECT_EQ(mm_regexec(c.re, subject), 0);
  for (int i = 0; i < NSUBEXP; i++) EXPECT_EQ(c.re->startp[i], nullptr);
}

TEST(RegexMatchErrors, BadArgumentsAndDamagedProgramsFailWithTheirMessage) {
  Compiled c("ab");
  EXPECT_EQ(MessagesOf([&] { EXPECT_EQ(mm_regexec(nullptr, "ab"), 0); }),
            Fatal("NULL parameter"));
  EXPECT_EQ(MessagesOf([&] { EXPECT_EQ(mm_regexec(c.re, nullptr), 0); }),
            Fatal("NULL parameter"));

  c.re->program[0] = 0;
  EXPECT_EQ(MessagesOf([&] { EXPECT_EQ(mm_regexec(c.re, "ab"), 0); }),
            Fatal("corrupted program"));

  // Program of "q": magic, BRANCH at 1, EXACTLY at 4, END at 9.
  Compiled unknown("q");
  unknown.re->program[4] = 99;
  EXPECT_EQ(MessagesOf([&] { EXPECT_EQ(mm_regexec(unknown.re, "q"), 0); }),
            Fatal("memory corruption"));

  Compiled dangling("q");
  dangling.re->program[5] = 0;  // EXACTLY's next offset
  dangling.re->program[6] = 0;
  EXPECT_EQ(MessagesOf([&] { EXPECT_EQ(mm_regexec(dangling.re, "q"), 0); }),
            Fatal("corrupted pointers"));

  // Program of "q*": magic, BRANCH at 1, STAR at 4 with its operand at 7.
  Compiled repeated("q*");
  repeated.re->program[7] = 1;  // BOL is no node a STAR can repeat
  std::string messages = MessagesOf([&] { EXPECT_EQ(mm_regexec(repeated.re, "q"), 1); });
  EXPECT_EQ(messages.substr(0, Fatal("internal foulup").size()), Fatal("internal foulup"));
}

TEST(RegexLongSubjects, ALoopedGroupOverOneMebibyteNeedsNoDeepStack) {
  std::string subject;
  for (int i = 0; i < (1 << 19); i++) subject += "ab";
  std::string matching = subject + "c";
  Compiled c("^(ab)*c");
  ASSERT_EQ(mm_regexec(c.re, matching.c_str()), 1);
  EXPECT_EQ(Slot(c.re, matching.c_str(), 0), std::make_pair(0L, 1L + (1L << 20)));
  EXPECT_EQ(Slot(c.re, matching.c_str(), 1), std::make_pair((1L << 20) - 2, 1L << 20));

  std::string failing = subject + "d";
  Compiled alternatives("(a|b)+c");
  EXPECT_EQ(mm_regexec(alternatives.re, failing.c_str()), 0);
  Compiled whole("^(a|b)*$");
  EXPECT_EQ(mm_regexec(whole.re, subject.c_str()), 1);
  EXPECT_EQ(Slot(whole.re, subject.c_str(), 1), std::make_pair((1L << 20) - 1, 1L << 20));
}

TEST(RegexLongSubjects, StarsOverLongRunsAnswerCorrectly) {
  std::string as(1 << 20, 'a');
  EXPECT_FALSE(Matches("a.*d", as.c_str()));
  EXPECT_FALSE(Matches("[ab]*d", as.c_str()));
  EXPECT_TRUE(Matches("^a*$", as.c_str()));
  EXPECT_TRUE(Matches("a+a+a$", as.c_str()));
}

// Patterns that take exponential or high polynomial time in a plain
// backtracking matcher; the answers must still come, and be right.
TEST(RegexCostlyPatterns, AnswerOnSubjectsOfSomeKilobytes) {
  std::string as(4096, 'a');
  const char* failing[] = {
      "(a|aa)*b",          "(a+a+)+b",          "^.*a.*a.*a.*a.*b", "(.*a)(.*a)(.*a)(.*a)b",
      "a*a*a*a*a*a*a*a*b", "((a|a)(a|a)*)*b",   "(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)b",
      "(.+.+)+b",          "(a?)(a?)(a?)(a?)(a?)(a?)(a?)(a?)b"};
  for (const char* pattern : failing) EXPECT_FALSE(Matches(pattern, as.c_str())) << pattern;
  std::string tail = as + "b";
  for (const char* pattern : failing) EXPECT_TRUE(Matches(pattern, tail.c_str())) << pattern;
}

// ---------------------------------------------------------------------------
// A plain recursive matcher over the node program, in the classic form, to
// check the answers and positions of the library's matcher.

enum : unsigned char { END = 0, BOL, EOL, ANY, ANYOF, ANYBUT, BRANCH, BACK, EXACTLY, NOTHING,
                       STAR, PLUS, OPEN = 20, CLOSE = 30 };

struct Reference {
  const char* bol;
  const char* input;
  const char* startp[NSUBEXP];
  const char* endp[NSUBEXP];
  long steps;

  static unsigned char Op(const char* p) { return static_cast<unsigned char>(*p); }
  static const char* Next(const char* p) {
    int offset = (static_cast<unsigned char>(p[1]) << 8) | static_cast<unsigned char>(p[2]);
    if (offset == 0) return nullptr;
    return Op(p) == BACK ? p - offset : p + offset;
  }

  int Repeat(const char* p) {
    const char* s = input;
    const char* operand = p + 3;
    switch (Op(p)) {
      case ANY: s += std::strlen(s); break;
      case EXACTLY: while (*s == *operand) s++; break;
      case ANYOF: while (*s && std::strchr(operand, *s)) s++; break;
      case ANYBUT: while (*s && !std::strchr(operand, *s)) s++; break;
    }
    int count = static_cast<int>(s - input);
    input = s;
    return count;
  }

  bool Match(const char* scan) {
    while (scan != nullptr) {
      if (++steps > 20000000) throw std::runtime_error("too costly");
      const char* next = Next(scan);
      const char* operand = scan + 3;
      unsigned char op = Op(scan);
      switch (op) {
        case BOL: if (input != bol) return false; break;
        case EOL: if (*input) return false; break;
        case ANY: if (!*input) return false; input++; break;
        case EXACTLY: {
          size_t n = std::strlen(operand);
          if (std::strncmp(operand, input, n) != 0) return false;
          input += n;
          break;
        }
        case ANYOF: if (!*input || !std::strchr(operand, *input)) return false; input++; break;
        case ANYBUT: if (!*input || std::strchr(operand, *input)) return false; input++; break;
        case NOTHING: case BACK: break;
        case BRANCH:
          if (Op(next) != BRANCH) {
            next = operand;
          } else {
            do {
              const char* save = input;
              if (Match(scan + 3)) return true;
              input = save;
              scan = Next(scan);
            } while (scan != nullptr && Op(scan) == BRANCH);
            return false;
          }
          break;
        case STAR: case PLUS: {
          char nextch = Op(next) == EXACTLY ? next[3] : '\0';
          int min = op == STAR ? 0 : 1;
          const char* save = input;
          int count = Repeat(operand);
          while (count >= min) {
            if (nextch == '\0' || *input == nextch)
              if (Match(next)) return true;
            count--;
            input = save + count;
          }
          return false;
        }
        case END: return true;
        default:
          if (op > OPEN && op < OPEN + NSUBEXP) {
            const char* save = input;
            if (!Match(next)) return false;
            if (startp[op - OPEN] == nullptr) startp[op - OPEN] = save;
            return true;
          }
          if (op > CLOSE && op < CLOSE + NSUBEXP) {
            const char* save = input;
            if (!Match(next)) return false;
            if (endp[op - CLOSE] == nullptr) endp[op - CLOSE] = save;
            return true;
          }
          return false;
      }
      scan = next;
    }
    return false;
  }

  // Tries every start position like the library, ignoring its shortcuts.
  bool Exec(const regexp* re, const char* subject) {
    bol = subject;
    steps = 0;
    const char* s = subject;
    do {
      if (re->reganch && s != subject) break;
      for (int i = 0; i < NSUBEXP; i++) startp[i] = endp[i] = nullptr;
      input = s;
      if (Match(re->program + 1)) {
        startp[0] = s;
        endp[0] = input;
        return true;
      }
    } while (*s++ != '\0');
    return false;
  }
};

// Random patterns over a small alphabet, with nested groups and repetitions.
class PatternMaker {
 public:
  explicit PatternMaker(unsigned seed) : random_(seed) {}

  std::string Pattern() {
    groups_ = 0;
    return Alternatives(0);
  }
  std::string Subject(int max_length) {
    std::string s;
    int length = Pick(max_length + 1);
    for (int i = 0; i < length; i++) s += "aabbc"[Pick(5)];
    return s;
  }

 private:
  int Pick(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

  std::string Alternatives(int depth) {
    std::string out = Branch(depth);
    while (Pick(4) == 0) out += "|" + Branch(depth);
    return out;
  }
  std::string Branch(int depth) {
    std::string out;
    int pieces = 1 + Pick(4);
    for (int i = 0; i < pieces; i++) {
      out += Atom(depth);
      int r = Pick(8);
      if (r == 0) out += "*";
      else if (r == 1) out += "+";
      else if (r == 2) out += "?";
    }
    return out;
  }
  std::string Atom(int depth) {
    static const char* const kAtoms[] = {"a", "b", "ab", ".", "[ab]", "[^a]", "c", "^", "$"};
    int r = Pick(depth < 3 && groups_ < 9 ? 12 : 9);
    if (r < 9) return kAtoms[r];
    groups_++;
    return "(" + Alternatives(depth + 1) + ")";
  }

  std::mt19937 random_;
  int groups_ = 0;
};

TEST(RegexAgreement, MatchesLikeARecursiveMatcherAndLikeTheCLibrary) {
  PatternMaker maker(20251121);
  int compared = 0;
  int costly = 0;
  for (int round = 0; round < 3000; round++) {
    std::string pattern = maker.Pattern();
    regexp* re = nullptr;
    std::string messages = MessagesOf([&] { re = mm_regcomp(pattern.c_str()); });
    if (re == nullptr) continue;
    regex_t posix;
    bool have_posix = regcomp(&posix, pattern.c_str(), REG_EXTENDED | REG_NOSUB) == 0;
    for (int i = 0; i < 6; i++) {
      std::string subject = maker.Subject(i < 5 ? 12 : 60);
      const char* s = subject.c_str();
      int result = mm_regexec(re, s);
      if (have_posix) {
        EXPECT_EQ(result == 1, regexec(&posix, s, 0, nullptr, 0) == 0)
            << "pattern " << pattern << " subject " << subject;
      }
      Reference reference;
      bool expected;
      try {
        expected = reference.Exec(re, s);
      } catch (const std::runtime_error&) {
        continue;
      }
      costly += reference.steps > 20000;
      compared++;
      ASSERT_EQ(result == 1, expected) << "pattern " << pattern << " subject " << subject;
      if (!expected) continue;
      for (int slot = 0; slot < NSUBEXP; slot++) {
        EXPECT_EQ(re->startp[slot], reference.startp[slot])
            << "slot " << slot << " pattern " << pattern << " subject " << subject;
        EXPECT_EQ(re->endp[slot], reference.endp[slot])
            << "slot " << slot << " pattern " << pattern << " subject " << subject;
      }
    }
    if (have_posix) regfree(&posix);
    std::free(re);
  }
  EXPECT_GT(compared, 5000);
  EXPECT_GT(costly, 0);  // some comparisons ran long enough to be remembered
}

// Patterns built to need many steps on short subjects, where the matcher
// starts remembering failures, compared with the recursive matcher.
TEST(RegexAgreement, RememberedFailuresChangeNoAnswerOrPosition) {
  const char* patterns[] = {"(a|ab|b)*(c|bc)", "(a|aa)+(b|ab)", "((a|b)(a|b)?)*c(a)?",
                            "(a*b*)?(a+|b+)*c", "(.+.+)+(c)", "((a|a)+(b|b)+)+c",
                            "(a?b?a?)(a+)+$"};
  for (const char* pattern : patterns) {
    for (int n : {14, 18, 22}) {
      std::string body;
      for (int i = 0; i < n; i++) body += (i % 5 == 4) ? 'b' : 'a';
      for (const std::string& subject : {body, body + "c", body + "cab", "x" + body + "ac"}) {
        Compiled c(pattern);
        ASSERT_NE(c.re, nullptr) << pattern;
        const char* s = subject.c_str();
        int result = mm_regexec(c.re, s);
        Reference reference;
        bool expected;
        try {
          expected = reference.Exec(c.re, s);
        } catch (const std::runtime_error&) {
          continue;
        }
        ASSERT_EQ(result == 1, expected) << pattern << " on " << subject;
        if (!expected) continue;
        for (int slot = 0; slot < NSUBEXP; slot++) {
          EXPECT_EQ(c.re->startp[slot], reference.startp[slot]) << pattern << " on " << subject;
          EXPECT_EQ(c.re->endp[slot], reference.endp[slot]) << pattern << " on " << subject;
        }
      }
    }
  }
}

}  // namespace
