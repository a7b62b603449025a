// Wildcard patterns of a token list: every token translated to a regular
// expression anchored at the start, compiled, and matched in order.
#include <cstdlib>
#include <cstring>

#include "mmerr/mmerr.h"
#include "mmtoken/mmtoken.h"
#include "mmtoken/mmtoken_internal.h"
#include "mmtoken/regexp.h"

namespace {

// Room for one translated pattern, its terminator included.
constexpr std::size_t kPatternBuffer = 10000;

// Characters that keep a preceding backslash as an escape.
constexpr char kEscapable[] = "#()+[]";

// How each wildcard character is written as a regular expression.
const char* Translation(char c) {
  switch (c) {
    case '*': return ".*";
    case '?': return ".";
    case '#': return "[0-9]";
    case '.': return "\\.";
    default: return nullptr;  // itself
  }
}

// Appends text when the whole of it fits with the terminator; a pattern too
// long for the buffer is cut before the first piece that does not fit.
bool Put(char* buffer, std::size_t* used, const char* text, std::size_t length) {
  if (*used + length >= kPatternBuffer) return false;
  std::memcpy(buffer + *used, text, length);
  *used += length;
  return true;
}

// Writes the expression for one token, NUL-terminated, into buffer
// (kPatternBuffer bytes).
void TranslateWildcards(const char* token, char* buffer) {
  std::size_t used = 0;
  Put(buffer, &used, "^", 1);
  for (const char* p = token; *p != '\0'; p++) {
    bool fits;
    if (*p == '\\' && p[1] != '\0' && std::strchr(kEscapable, p[1]) != nullptr) {
      fits = Put(buffer, &used, p, 2);
      p++;
    } else if (*p == '\\') {
      fits = Put(buffer, &used, "\\\\", 2);
    } else if (const char* translated = Translation(*p)) {
      fits = Put(buffer, &used, translated, std::strlen(translated));
      if (*p == '*')
        while (p[1] == ' ') p++;
    } else {
      fits = Put(buffer, &used, p, 1);
    }
    if (!fits) break;
  }
  buffer[used] = '\0';
}

}  // namespace

extern "C" int mmtoken_regex_compile(int handle) {
  token_tag* list = morvellanth::mmtoken::FindList(handle);
  if (list == nullptr) {
    mmerr_throw(-1, MMERR_LEVEL_WARNING, "mmtoken_regex_compile(): bad tok index = %d \n", handle);
    return -1;
  }
  morvellanth::mmtoken::FreePatterns(list);
  if (list->count == 0) return 0;

  list->regexes = static_cast<regexp**>(std::calloc(static_cast<std::size_t>(list->count),
                                                    sizeof(regexp*)));
  if (list->regexes == nullptr) return -1;
  char* buffer = static_cast<char*>(std::malloc(kPatternBuffer));
  if (buffer == nullptr) return -1;
  for (int i = 0; i < list->count; i++) {
    TranslateWildcards(list->tokens[i], buffer);
    list->regexes[i] = mm_regcomp(buffer);
  }
  std::free(buffer);
  list->regex_count = list->count;
  return 0;
}

extern "C" int mmtoken_regex_index(int handle, const char* subject) {
  token_tag* list = morvellanth::mmtoken::FindList(handle);
  if (list == nullptr) {
    mmerr_throw(-1, MMERR_LEVEL_WARNING, "mmtoken_regex_index():bad tok index = %d\n", handle);
    return -1;
  }
  if (list->regex_count != list->count) {
    mmerr_throw(-1, MMERR_LEVEL_WARNING, "mmtoken_regex_index(): not enough regular expressions\n");
    mmerr_throw(-1, MMERR_LEVEL_WARNING,
                "                      : call mmtoken_regex_compile() first\n");
    return -1;
  }
  for (int i = 0; i < list->regex_count; i++)
    if (mm_regexec(list->regexes[i], subject)) return i;
  return -1;
}
