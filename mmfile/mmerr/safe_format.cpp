// Allocation-free formatting for signal handlers; see safe_format.h.
#include "mmerr/safe_format.h"

#include <cstdint>

namespace morvellanth {

namespace {

// Largest double below one half: adding it rounds half away from zero without
// pushing values just below .5 over (which adding 0.5 would).
constexpr double kRoundingBias = 0.49999999999999994;
constexpr int kMaxPrecision = 9;
// 2^63 as a double: the first magnitude that no longer fits a 64-bit integer.
constexpr double kInt64Limit = 9223372036854775808.0;

void reverse(char* first, char* last) {
  while (first < last) {
    char c = *first;
    *first++ = *--last;
    *last = c;
  }
}

}  // namespace

char* safe_format(char* out, const char* text) {
  while (*text != '\0') *out++ = *text++;
  return out;
}

char* safe_format(char* out, long long value, int min_digits) {
  // Digits come from the non-positive magnitude so that the most negative
  // value, which has no positive counterpart, needs no special case.
  long long rest = value < 0 ? value : -value;
  char* start = out;
  int digits = 0;
  do {
    *out++ = static_cast<char>('0' - rest % 10);
    rest /= 10;
    ++digits;
  } while (rest != 0);
  for (; digits < min_digits; ++digits) *out++ = '0';
  if (value < 0) *out++ = '-';
  reverse(start, out);
  return out;
}

char* safe_format(char* out, double value, int precision) {
  if (value != value) return safe_format(out, "nan");
  if (value > 1.7976931348623157e308) return safe_format(out, "inf");
  if (value < -1.7976931348623157e308) return safe_format(out, "-inf");
  if (precision > kMaxPrecision) precision = kMaxPrecision;

  uint32_t scale_bits = 1;
  for (int i = 0; i < precision; ++i) scale_bits *= 10;
  const double scale = static_cast<double>(static_cast<int32_t>(scale_bits));

  const double scaled = value * scale;
  const double biased = scaled + (scaled < 0 ? -kRoundingBias : kRoundingBias);
  long long rounded;
  if (biased >= kInt64Limit)
    rounded = INT64_MAX;
  else if (biased <= -kInt64Limit)
    rounded = INT64_MIN;
  else
    rounded = static_cast<long long>(biased);

  const long long divisor = static_cast<long long>(scale_bits);
  const long long whole = rounded / divisor;
  long long fraction = rounded % divisor;
  if (fraction < 0) fraction = -fraction;

  out = safe_format(out, whole, 0);
  *out++ = '.';
  return safe_format(out, fraction, precision);
}

}  // namespace morvellanth
