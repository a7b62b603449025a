// Quoting for the shell; see shell_word.h.
#include "mmcommon/shell_word.h"

#include <cstddef>
#include <cstring>

namespace {

bool is_wildcard(char c) { return c == '*' || c == '?'; }

// Characters the quoted text will have: escaped quotes, plus a pair of quotes
// for every run of characters that are not wildcards.
struct QuotedSize {
  size_t escaped;  // text with its added backslashes
  size_t result;   // escaped text with the quotes around each run
};

QuotedSize measure(const char* text) {
  QuotedSize size{0, 0};
  bool inside = false;
  size_t runs = 0;
  for (const char* c = text; *c != '\0'; ++c) {
    size.escaped += *c == '"' ? 2 : 1;
    if (is_wildcard(*c)) {
      inside = false;
    } else if (!inside) {
      inside = true;
      ++runs;
    }
  }
  size.result = size.escaped + 2 * runs;
  return size;
}

}  // namespace

extern "C" int mmcommon_prepare_str_for_shell(char* text, int size) {
  if (text == nullptr || text[0] == '\0') return -1;
  const size_t length = std::strlen(text);
  if (text[length - 1] == '/' || text[length - 1] == '\\') return -1;
  if (size < 0 || length + 2 > static_cast<size_t>(size)) return -1;

  const QuotedSize needed = measure(text);
  if (needed.escaped + 1 > static_cast<size_t>(size)) return -1;
  // The quotes around runs beyond the first are not covered by the tests
  // above; the whole result must fit text and the work buffer with its NUL.
  if (needed.result > static_cast<size_t>(size)) return -1;
  if (needed.result + 1 > MMCOMMON_SHELL_WORD_BUFFER_SIZE) return -1;

  char work[MMCOMMON_SHELL_WORD_BUFFER_SIZE] = {};
  char* out = work;
  bool inside = false;
  for (const char* c = text; *c != '\0'; ++c) {
    if (!is_wildcard(*c) && !inside) {
      *out++ = '"';
      inside = true;
    } else if (is_wildcard(*c) && inside) {
      *out++ = '"';
      inside = false;
    }
    if (*c == '"') *out++ = '\\';
    *out++ = *c;
  }
  if (inside) *out++ = '"';

  const size_t written = static_cast<size_t>(out - work);
  std::memcpy(text, work, written < static_cast<size_t>(size) ? written + 1 : written);
  return 0;
}
