// Compiles a random pattern with mm_regcomp and matches it against a random
// subject with mm_regexec. Input: the pattern, a NUL, the subject.
// Checks: a match is 0 or 1; the recorded positions lie inside the subject in
// order; an anchored pattern matches only at the subject's start.
// Patterns written only with a b c . ( ) | * + ? ^ $ [ ] mean the same to the
// C library's extended syntax when no repetition operator stands where that
// syntax leaves its meaning open; for those the answer must agree with
// regexec on short subjects of a b c.
// A subject that begins with a tripled character is also tried behind a run
// of 2048 of that character: the mutator reaches such lengths only slowly,
// and long runs are what make backtracking patterns blow up (the runner's
// -timeout bounds each input). Only some subjects are stretched, as a long
// match costs a hundred short ones.
#include <regex.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "mmtoken/regexp.h"

namespace {

bool Inside(const char* p, const std::string& subject) {
  return p >= subject.c_str() && p <= subject.c_str() + subject.size();
}

void CheckMatch(const regexp* re, const std::string& subject) {
  fuzz::Check(re->startp[0] != nullptr && re->endp[0] != nullptr,
              "a match records where it starts and ends");
  fuzz::Check(Inside(re->startp[0], subject) && Inside(re->endp[0], subject) &&
                  re->startp[0] <= re->endp[0],
              "the whole match lies inside the subject");
  if (re->reganch) {
    fuzz::Check(re->startp[0] == subject.c_str(), "an anchored match begins at the start");
  }
  for (int i = 1; i < NSUBEXP; ++i) {
    if (re->startp[i] != nullptr) {
      fuzz::Check(Inside(re->startp[i], subject), "a group starts inside the subject");
    }
    if (re->endp[i] != nullptr) {
      fuzz::Check(Inside(re->endp[i], subject), "a group ends inside the subject");
    }
  }
}

// Whether the pattern is in the part of the syntax both engines read alike.
bool ComparableWithLibc(const std::string& pattern) {
  if (pattern.size() > 64 || pattern.find_first_not_of("abc.()|*+?^$[]") != std::string::npos ||
      pattern.find("[.") != std::string::npos) {
    return false;
  }
  char previous = '(';  // the start of the pattern behaves like an opening group
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char c = pattern[i];
    if (c == '[') {
      std::size_t end = i + 1;
      if (end < pattern.size() && pattern[end] == '^') ++end;
      if (end < pattern.size() && pattern[end] == ']') ++end;
      end = pattern.find(']', end);
      if (end == std::string::npos) return true;  // unbalanced: one of the two refuses it
      i = end;
      previous = 'a';
      continue;
    }
    const bool repeat = c == '*' || c == '+' || c == '?';
    if (repeat && std::string("(|^$*+?").find(previous) != std::string::npos) return false;
    previous = c;
  }
  return true;
}

void CompareWithLibc(const regexp* re, const std::string& pattern, const std::string& subject) {
  if (subject.size() > 256 || subject.find_first_not_of("abc") != std::string::npos) return;
  if (!ComparableWithLibc(pattern)) return;
  regex_t posix;
  if (regcomp(&posix, pattern.c_str(), REG_EXTENDED | REG_NOSUB) != 0) return;
  const bool libc_matched = regexec(&posix, subject.c_str(), 0, nullptr, 0) == 0;
  regfree(&posix);
  regexp* copy = const_cast<regexp*>(re);
  fuzz::Check((mm_regexec(copy, subject.c_str()) == 1) == libc_matched,
              "the answer agrees with the C library's regexec");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::SilenceHandle(-1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<std::string> fields = fuzz::SplitFields(data, size, 2);
  const std::string& pattern = fields[0];
  const std::string subject = fields.size() > 1 ? fields[1] : std::string();

  regexp* re = mm_regcomp(pattern.c_str());
  if (re == nullptr) return 0;

  int matched = mm_regexec(re, subject.c_str());
  fuzz::Check(matched == 0 || matched == 1, "mm_regexec answers 0 or 1");
  if (matched) CheckMatch(re, subject);
  CompareWithLibc(re, pattern, subject);

  // A second run on the same compiled block must give the same answer: the
  // matcher's process-wide state may not leak from one match into the next.
  fuzz::Check(mm_regexec(re, subject.c_str()) == matched, "matching is repeatable");

  // Matching is unanchored: a pattern that matches the subject also matches
  // it with a prefix the pattern cannot see, unless it is anchored.
  if (matched && !re->reganch && pattern.find('^') == std::string::npos) {
    std::string longer = "\x01" + subject;
    fuzz::Check(mm_regexec(re, longer.c_str()) == 1,
                "an unanchored match survives a prefix");
  }
  if (subject.size() >= 3 && subject[0] == subject[1] && subject[1] == subject[2]) {
    const std::string stretched = std::string(2048, subject[0]) + subject;
    const int long_match = mm_regexec(re, stretched.c_str());
    fuzz::Check(long_match == 0 || long_match == 1, "mm_regexec answers 0 or 1");
    if (long_match) CheckMatch(re, stretched);
  }
  std::free(re);
  return 0;
}
