// Formatting used by the fatal-signal handlers: exact texts, and the rounding
// and sign rules of the fixed-point overload.
#include "mmerr/safe_format.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

// Formats into a buffer of sentinel bytes, so that a write past the returned
// end (a stray NUL, for instance) shows.
template <typename... Args>
static std::string Format(Args... args) {
  char buffer[64];
  std::memset(buffer, '#', sizeof buffer);
  char* end = morvellanth::safe_format(buffer, args...);
  EXPECT_EQ(*end, '#') << "wrote past the returned end";
  return std::string(buffer, end);
}

TEST(SafeFormat, CopiesTextAndWritesZeroPaddedIntegers) {
  EXPECT_EQ(Format("Stack trace:"), "Stack trace:");
  EXPECT_EQ(Format(""), "");
  const struct { long long value; int digits; const char* text; } kCases[] = {
      {0, 0, "0"}, {7, 1, "7"}, {-15, 1, "-15"}, {-7, 3, "-007"}, {0, 4, "0000"},
      {12345, 3, "12345"}, {LLONG_MAX, 0, "9223372036854775807"},
      {LLONG_MIN, 0, "-9223372036854775808"}, {LLONG_MIN, 21, "-009223372036854775808"}};
  for (const auto& c : kCases) EXPECT_EQ(Format(c.value, c.digits), c.text) << c.value;
}

TEST(SafeFormat, WritesFixedPointRoundedHalfAwayFromZero) {
  const struct { double value; int precision; const char* text; } kCases[] = {
      {3.14159, 2, "3.14"}, {3.14159, 4, "3.1416"}, {-1.5, 1, "-1.5"}, {1.05, 3, "1.050"},
      {0.001, 3, "0.001"}, {2.5, 0, "3.0"}, {9.9999, 2, "10.00"}, {0.125, 2, "0.13"},
      {0.49999999999999994, 0, "0.0"},  // the largest double below one half
      {2.005, 2, "2.01"}, {1.005, 2, "1.00"},  // the binary product decides, not the decimal
      {12.7, 0, "13.0"}, {0.4, 0, "0.0"}, {-2.6, 0, "-3.0"},  // precision 0: a point and a 0
      // No sign between -1 and 0, until rounding reaches -1.
      {-0.5, 1, "0.5"}, {-0.25, 2, "0.25"}, {-0.0, 2, "0.00"}, {-0.96, 1, "-1.0"},
      {-0.5, 0, "-1.0"}};
  for (const auto& c : kCases) EXPECT_EQ(Format(c.value, c.precision), c.text) << c.value;
}
