// The regular-expression engine: compile errors, the program limit, long
// subjects, costly patterns, and answers and group positions checked against
// a plain recursive matcher and the C library's matcher.
#include <regex.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "mmtoken/regexp.h"
#include "token_test_util.h"

namespace {

// A compiled pattern, freed at the end of the scope.
struct Compiled {
  explicit Compiled(const char* pattern) : re(mm_regcomp(pattern)) {}
  ~Compiled() { std::free(re); }
  int Exec(const std::string& subject) { return re ? mm_regexec(re, subject.c_str()) : -1; }
  regexp* re;
};

std::string CompileMessage(const char* pattern) {
  return mmtoken_test::MessagesOf([&] { EXPECT_EQ(Compiled(pattern).re, nullptr) << pattern; });
}

TEST(RegexCompileErrors, EachErrorHasItsMessageAndTheProgramLimitHolds) {
  const std::pair<const char*, std::vector<const char*>> cases[] = {
      {"unmatched ()", {"a|b(c", "ab)"}},     {"*+ operand could be empty", {"(a*)*", "(a|)+", "(^)*"}},
      {"nested *?+", {"a**", "a?+"}},        {"?+* follows nothing", {"*a", "a|+b", "(?a)"}},
      {"unmatched []", {"[abc", "[]"}},      {"invalid [] range", {"[z-a]"}},
      {"trailing \\", {"a\\"}},             {"NULL argument", {nullptr}},
      {"too many ()", {"((((((((((a))))))))))", "(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)"}}};
  for (const auto& [message, patterns] : cases) {
    for (const char* pattern : patterns)
      EXPECT_EQ(CompileMessage(pattern), "FATAL Error in regular expression: " + std::string(message) + " \n");
  }
  // Programs of 32767 bytes and more are refused. A literal of n characters
  // needs n + 11 bytes: magic, BRANCH, EXACTLY with its terminator, END. A
  // range takes one byte per member.
  const std::string fits(32755, 'q'), too_big = "FATAL Error in regular expression: regexp too big \n";
  std::string ranges;
  for (int i = 0; i < 130; i++) ranges += "[\x01-\xff]";
  EXPECT_EQ(Compiled(fits.c_str()).Exec("x" + fits), 1);
  for (const std::string& pattern : {fits + "q", std::string(1 << 20, 'q'), ranges})
    EXPECT_EQ(CompileMessage(pattern.c_str()), too_big) << pattern.size();
}

TEST(RegexLongSubjects, ALoopedGroupOverOneMebibyteNeedsNoDeepStack) {
  std::string subject;
  for (int i = 0; i < (1 << 19); i++) subject += "ab";
  const std::string matching = subject + "c";
  Compiled looped("^(ab)*c");
  ASSERT_EQ(looped.Exec(matching), 1);
  EXPECT_EQ(looped.re->endp[0] - matching.c_str(), (1 << 20) + 1);
  EXPECT_EQ(looped.re->startp[1] - matching.c_str(), (1 << 20) - 2);  // the last turn
  EXPECT_EQ(Compiled("(a|b)+c").Exec(subject + "d"), 0);
}

// Exponential or high polynomial in a plain backtracking matcher.
TEST(RegexCostlyPatterns, AnswerOnSubjectsOfSomeKilobytes) {
  const std::string as(4096, 'a');
  for (const char* pattern : {"(a|aa)*b", "(a+a+)+b", "^.*a.*a.*a.*a.*b", "(.*a)(.*a)(.*a)(.*a)b",
                              "a*a*a*a*a*a*a*a*b", "((a|a)(a|a)*)*b", "(.+.+)+b",
                              "(a|a)(a|a)(a|a)(a|a)(a|a)(a|a)b", "(a?)(a?)(a?)(a?)(a?)(a?)(a?)(a?)b"}) {
    Compiled c(pattern);
    EXPECT_EQ(c.Exec(as), 0) << pattern;
    EXPECT_EQ(c.Exec(as + "b"), 1) << pattern;
  }
}

// A plain recursive matcher over the node program, in the classic form,
// without shortcuts or remembered failures; gives up past a budget of steps.
enum : unsigned char { END, BOL, EOL, ANY, ANYOF, ANYBUT, BRANCH, BACK, EXACTLY, NOTHING,
                       STAR, PLUS, OPEN = 20, CLOSE = 30 };

struct Reference {
  static constexpr long kBudget = 20000000;
  const char *bol, *input, *startp[NSUBEXP], *endp[NSUBEXP];
  long steps = 0;

  static const char* Next(const char* p) {
    int offset = static_cast<unsigned char>(p[1]) << 8 | static_cast<unsigned char>(p[2]);
    return offset == 0 ? nullptr : *p == BACK ? p - offset : p + offset;
  }
  static bool One(const char* node, char c) {  // a one-character node against c
    if (c == '\0' || *node == ANY) return c != '\0';
    return *node == EXACTLY ? c == node[3] : (std::strchr(node + 3, c) != nullptr) == (*node == ANYOF);
  }
  bool Match(const char* scan) {
    for (; scan != nullptr; scan = Next(scan)) {
      if (++steps > kBudget) return false;
      const unsigned char op = *scan;
      const char* save = input;
      if (op == END) return true;
      if ((op == BOL && input != bol) || (op == EOL && *input)) return false;
      if (op == EXACTLY) {
        if (std::strncmp(scan + 3, input, std::strlen(scan + 3)) != 0) return false;
        input += std::strlen(scan + 3);
      } else if ((op == ANY || op == ANYOF || op == ANYBUT) && !One(scan, *input++)) {
        return false;
      } else if (op == BRANCH) {
        for (; scan != nullptr && *scan == BRANCH; scan = Next(scan), input = save)
          if (Match(scan + 3)) return true;
        return false;
      } else if (op == STAR || op == PLUS) {
        int count = 0;
        while (One(scan + 3, save[count])) count++;
        for (; count >= (op == PLUS ? 1 : 0); count--) {
          input = save + count;
          if (Match(Next(scan))) return true;
        }
        return false;
      } else if (op > OPEN && op < CLOSE + NSUBEXP && op != CLOSE) {
        if (!Match(Next(scan))) return false;
        const char** slot = op < CLOSE ? &startp[op - OPEN] : &endp[op - CLOSE];
        if (*slot == nullptr) *slot = save;
        return true;
      }
    }
    return false;
  }
  // 1 for a match, 0 for none, -1 when it gave up.
  int Exec(const regexp* re, const char* subject) {
    for (const char* s = subject; s <= subject + (re->reganch ? 0 : std::strlen(subject)); s++) {
      *this = Reference{subject, s, {}, {}, steps};
      if (Match(re->program + 1)) {
        startp[0] = s;
        endp[0] = input;
        return 1;
      }
    }
    return steps > kBudget ? -1 : 0;
  }
};

// A random pattern over a small alphabet, with nested groups and repetitions.
std::string RandomPattern(std::mt19937& random, int depth, int& groups) {
  static const char* const kAtoms[] = {"a", "b", "ab", ".", "[ab]", "[^a]", "c", "^", "$"};
  static const char* const kRepeats[] = {"*", "+", "?", "", "", "", "", ""};
  std::string out;
  do {
    out += out.empty() ? "" : "|";
    for (int pieces = 1 + random() % 4; pieces > 0; pieces--) {
      unsigned r = random() % (depth < 3 && groups < 9 ? 12 : 9);
      out += r < 9 ? kAtoms[r] : (groups++, "(" + RandomPattern(random, depth + 1, groups) + ")");
      out += kRepeats[random() % 8];
    }
  } while (random() % 4 == 0);
  return out;
}

// Bracket and escape syntax, nine groups, and patterns that need many steps on
// short subjects (where the matcher starts remembering failures); then random ones.
TEST(RegexAgreement, AnswersAndPositionsAgreeWithARecursiveMatcherAndTheCLibrary) {
  std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
      {"", {"", "x"}},       {"[]x-]", {"-", "]", "a"}}, {"^[^]x]$", {"]", "a"}},  {"[a-c-]", {"-", "d"}},
      {"^a\\.b\\*$", {"a.b*", "axb*"}}, {"[\x80-\xff]", {"caf\xc3\xa9", "cafe"}},
      {"x*ab.*cde[0-9]fgh", {"abzcde1fg", "xxabzcde1fgh"}}, {"(((((((((a)))))))))", {"xa"}}};
  for (const auto& c : cases) EXPECT_NE(Compiled(c.first.c_str()).re, nullptr) << c.first;
  for (const char* pattern : {"(a|ab|b)*(c|bc)", "(a|aa)+(b|ab)", "((a|b)(a|b)?)*c(a)?", "(a*b*)?(a+|b+)*c",
                              "(.+.+)+(c)", "((a|a)+(b|b)+)+c", "(a?b?a?)(a+)+$"}) {
    for (int n : {14, 18, 22}) {
      std::string body;
      for (int i = 0; i < n; i++) body += (i % 5 == 4) ? 'b' : 'a';
      cases.push_back({pattern, {body, body + "c", body + "cab", "x" + body + "ac"}});
    }
  }
  std::mt19937 random(20251121);
  for (int round = 0, groups = 0; round < 3000; round++, groups = 0) {
    cases.push_back({RandomPattern(random, 0, groups), {}});
    for (int max_length : {12, 12, 12, 60}) {
      std::string& subject = cases.back().second.emplace_back();
      for (int length = random() % (max_length + 1); length > 0; length--) subject += "aabbc"[random() % 5];
    }
  }
  int costly = 0;
  for (const auto& [pattern, subjects] : cases) {
    regexp* re = nullptr;
    regex_t posix;
    mmtoken_test::MessagesOf([&] { re = mm_regcomp(pattern.c_str()); });
    if (re != nullptr && regcomp(&posix, pattern.c_str(), REG_EXTENDED | REG_NOSUB) == 0) {
      for (const std::string& subject : subjects) {
        SCOPED_TRACE(pattern + " on " + subject);
        const int result = mm_regexec(re, subject.c_str());
        EXPECT_EQ(result, regexec(&posix, subject.c_str(), 0, nullptr, 0) == 0 ? 1 : 0);
        Reference reference;
        const int expected = reference.Exec(re, subject.c_str());
        if (expected < 0) continue;  // too costly for the reference
        EXPECT_EQ(result, expected);
        for (int i = 0; result == 1 && i < NSUBEXP; i++)
          EXPECT_TRUE(re->startp[i] == reference.startp[i] && re->endp[i] == reference.endp[i]) << "slot " << i;
        costly += reference.steps > 20000;
      }
      regfree(&posix);
    }
    std::free(re);
  }
  EXPECT_GT(costly, 10);  // enough ran long for the matcher to remember failures
}

}  // namespace
