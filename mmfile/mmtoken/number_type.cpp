// mm_number_type: whether a text is an integer, a real or neither.
#include <charconv>
#include <cstring>
#include <system_error>

#include "absl/strings/charconv.h"
#include "mmtoken/mmtoken.h"

extern "C" int mm_number_type(const char* text) {
  if (text == nullptr) return MMTOKEN_NOT_A_NUMBER;
  const char* first = text[0] == '+' ? text + 1 : text;  // one plus sign only
  const char* last = first + std::strlen(first);
  if (first == last) return MMTOKEN_NOT_A_NUMBER;

  // Integers that do not fit 32 bits fail here with a range error and are
  // then taken as reals.
  int integer;
  std::from_chars_result as_int = std::from_chars(first, last, integer);
  if (as_int.ec == std::errc() && as_int.ptr == last) return MMTOKEN_INTEGER;

  // The general format has no hexadecimal form: after "0" an x ends the
  // number, so such a text is never consumed whole.
  const char* digits = first[0] == '-' ? first + 1 : first;
  if (digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) return MMTOKEN_NOT_A_NUMBER;

  double real;
  absl::from_chars_result as_real =
      absl::from_chars(first, last, real, absl::chars_format::general);
  if (as_real.ec == std::errc() && as_real.ptr == last) return MMTOKEN_REAL;
  return MMTOKEN_NOT_A_NUMBER;
}
