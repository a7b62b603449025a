// Quotes random text for the shell with mmcommon_prepare_str_for_shell, in a
// block of exactly `size` bytes (the capacity the caller declares), so that
// any write past the capacity is caught. Input: two bytes giving how much
// room beyond the text `size` leaves, then the text.
// Checks: a refusal leaves the text as it was; a result fits the capacity (a
// result of exactly `size` characters has no room for, and gets no, NUL) and
// differs from the text only by added double quotes and backslashes.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz_support.h"
#include "mmcommon/shell_word.h"

namespace {

// The text without the characters quoting may add.
std::string Unquoted(const std::string& text) {
  std::string kept;
  for (char c : text) {
    if (c != '"' && c != '\\') kept.push_back(c);
  }
  return kept;
}

// The quoting rules: a backslash before every double quote, a double quote
// before each run of characters other than * and ?, one after it.
std::string Quoted(const std::string& text) {
  std::string out;
  bool inside = false;
  for (char c : text) {
    const bool wildcard = c == '*' || c == '?';
    if (wildcard == inside) {
      out.push_back('"');
      inside = !inside;
    }
    if (c == '"') out.push_back('\\');
    out.push_back(c);
  }
  if (inside) out.push_back('"');
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const std::size_t slack = (data[0] | (data[1] << 8)) % 2400;
  const std::string text = fuzz::SplitFields(data + 2, size - 2, 1)[0];
  const std::size_t capacity = text.size() + 1 + slack;

  char* buffer = static_cast<char*>(std::malloc(capacity));
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  const int rc = mmcommon_prepare_str_for_shell(buffer, static_cast<int>(capacity));
  fuzz::Check(rc == 0 || rc == -1, "the result is 0 or -1");
  const std::string expected = Quoted(text);
  const bool acceptable = !text.empty() && text.back() != '/' && text.back() != '\\' &&
                          expected.size() <= capacity &&
                          expected.size() < MMCOMMON_SHELL_WORD_BUFFER_SIZE;
  if (rc == -1) {
    fuzz::Check(text == buffer, "a refused text is left as it was");
    fuzz::Check(!acceptable || text.size() + 2 > capacity,
                "a text whose quoted form fits is not refused");
  } else {
    fuzz::Check(!text.empty() && text.back() != '/' && text.back() != '\\',
                "empty texts and texts ending in a separator are refused");
    const std::size_t length = strnlen(buffer, capacity);
    fuzz::Check(length < MMCOMMON_SHELL_WORD_BUFFER_SIZE, "the result fits the work buffer");
    fuzz::Check(Unquoted(std::string(buffer, length)) == Unquoted(text),
                "quoting only adds double quotes and backslashes");
    fuzz::Check(std::string(buffer, length) == expected, "the result follows the quoting rules");
  }
  std::free(buffer);
  return 0;
}
