// Fills a token list with random wildcard patterns, compiles them with
// mmtoken_regex_compile and searches a random subject with
// mmtoken_regex_index. Input: NUL-separated fields, the subject first, then
// up to 16 tokens.
// Checks: the answer is the first token whose translated pattern (^, then
// * as .*, ? as ., # as [0-9], . as \., backslash rules) matches, compiled
// and run directly with mm_regcomp and mm_regexec; a list changed after
// compiling is refused; the list is released every run.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "mmtoken/mmtoken.h"
#include "mmtoken/regexp.h"

namespace {

constexpr std::size_t kMaxTokens = 16;
// Translations that do not fit the compiler's work area are left to the
// implementation; the model compares only the ones that fit.
constexpr std::size_t kWorkArea = 10000;

std::string Translate(const std::string& token) {
  std::string re = "^";
  for (std::size_t i = 0; i < token.size(); ++i) {
    const char c = token[i];
    switch (c) {
      case '*':
        re += ".*";
        while (i + 1 < token.size() && token[i + 1] == ' ') ++i;
        break;
      case '?':
        re += '.';
        break;
      case '#':
        re += "[0-9]";
        break;
      case '.':
        re += "\\.";
        break;
      case '\\':
        if (i + 1 < token.size() && std::string("#()+[]").find(token[i + 1]) != std::string::npos) {
          re += '\\';
          re += token[++i];
        } else {
          re += "\\\\";
        }
        break;
      default:
        re += c;
    }
  }
  return re;
}

// The position of the first token whose translation matches, -1 for none;
// false when some translation is too long to predict.
bool ModelIndex(const std::vector<std::string>& tokens, const std::string& subject, int* index) {
  *index = -1;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const std::string pattern = Translate(tokens[i]);
    if (pattern.size() >= kWorkArea) return false;
    regexp* re = mm_regcomp(pattern.c_str());
    const bool matched = re != nullptr && mm_regexec(re, subject.c_str()) == 1;
    std::free(re);
    if (matched) {
      *index = static_cast<int>(i);
      return true;
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::SilenceHandle(-1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::vector<std::string> fields = fuzz::SplitFields(data, size, kMaxTokens + 1);
  const std::string& subject = fields[0];
  const std::vector<std::string> tokens(fields.begin() + 1, fields.end());

  int handle = -1;
  mmtoken_new(&handle, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  fuzz::Check(handle == 0, "a released record is reused");
  for (const std::string& token : tokens) mmtoken_add(handle, token.c_str());

  fuzz::Check(mmtoken_regex_index(handle, subject.c_str()) == -1,
              "a list never compiled is refused");
  fuzz::Check(mmtoken_regex_compile(handle) == 0, "compiling a live list succeeds");
  const int found = mmtoken_regex_index(handle, subject.c_str());
  fuzz::Check(found >= -1 && found < static_cast<int>(tokens.size()), "the answer is a position or -1");
  int expected = -1;
  if (ModelIndex(tokens, subject, &expected)) {
    fuzz::Check(found == expected, "the answer is the first token whose pattern matches");
  }

  // Compiling again replaces the patterns (the old ones are freed), and a
  // token added afterwards makes the patterns stale.
  fuzz::Check(mmtoken_regex_compile(handle) == 0, "recompiling succeeds");
  fuzz::Check(mmtoken_regex_index(handle, subject.c_str()) == found, "recompiling keeps the answer");
  mmtoken_add(handle, "*");
  fuzz::Check(mmtoken_regex_index(handle, subject.c_str()) == -1, "stale patterns are refused");

  mmtoken_delete(handle);
  return 0;
}
