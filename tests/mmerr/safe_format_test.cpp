// Formatting used by the fatal-signal handlers: exact texts, chaining, and the
// rounding and sign rules of the fixed-point overload.
#include "mmerr/safe_format.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

namespace {

using morvellanth::safe_format;

// Formats into a buffer filled with a sentinel so that writing past the
// returned end (a stray NUL, for instance) is caught.
template <typename... Args>
std::string Format(Args... args) {
  char buffer[128];
  std::memset(buffer, '#', sizeof buffer);
  char* end = safe_format(buffer, args...);
  EXPECT_GE(end, buffer);
  EXPECT_LT(end, buffer + sizeof buffer);
  EXPECT_EQ(*end, '#') << "wrote past the returned end";
  return std::string(buffer, end);
}

TEST(SafeFormatText, CopiesTextWithoutItsNul) {
  EXPECT_EQ(Format("Stack trace:"), "Stack trace:");
  EXPECT_EQ(Format(""), "");
}

TEST(SafeFormatText, ChainsFromTheReturnedPosition) {
  char buffer[64];
  char* end = safe_format(buffer, "Process ");
  end = safe_format(end, 4242LL, 0);
  end = safe_format(end, " at ");
  end = safe_format(end, 1.25, 2);
  EXPECT_EQ(std::string(buffer, end), "Process 4242 at 1.25");
}

TEST(SafeFormatInteger, WritesPlainDecimal) {
  EXPECT_EQ(Format(0LL, 0), "0");
  EXPECT_EQ(Format(0LL, 1), "0");
  EXPECT_EQ(Format(7LL, 0), "7");
  EXPECT_EQ(Format(1234567890LL, 0), "1234567890");
  EXPECT_EQ(Format(-15LL, 1), "-15");
}

TEST(SafeFormatInteger, PadsWithZerosAfterTheSign) {
  EXPECT_EQ(Format(-7LL, 3), "-007");
  EXPECT_EQ(Format(7LL, 3), "007");
  EXPECT_EQ(Format(0LL, 4), "0000");
  EXPECT_EQ(Format(12345LL, 3), "12345");
  EXPECT_EQ(Format(5LL, -2), "5");
}

TEST(SafeFormatInteger, HandlesTheExtremes) {
  EXPECT_EQ(Format(LLONG_MIN, 0), "-9223372036854775808");
  EXPECT_EQ(Format(LLONG_MAX, 0), "9223372036854775807");
  EXPECT_EQ(Format(LLONG_MIN, 21), "-009223372036854775808");
}

TEST(SafeFormatDouble, WritesTheRequestedDigits) {
  EXPECT_EQ(Format(3.14159, 2), "3.14");
  EXPECT_EQ(Format(3.14159, 4), "3.1416");
  EXPECT_EQ(Format(-1.5, 1), "-1.5");
  EXPECT_EQ(Format(1.05, 3), "1.050");
  EXPECT_EQ(Format(100.0, 2), "100.00");
  EXPECT_EQ(Format(0.001, 3), "0.001");
  EXPECT_EQ(Format(123456.789, 9), "123456.789000000");
}

TEST(SafeFormatDouble, RoundsHalfAwayFromZero) {
  EXPECT_EQ(Format(0.5, 0), "1.0");
  EXPECT_EQ(Format(2.5, 0), "3.0");
  EXPECT_EQ(Format(-2.5, 0), "-3.0");
  EXPECT_EQ(Format(0.125, 2), "0.13");
  EXPECT_EQ(Format(9.995, 3), "9.995");
  EXPECT_EQ(Format(9.9999, 2), "10.00");
  // The largest double below one half must not round up.
  EXPECT_EQ(Format(0.49999999999999994, 0), "0.0");
}

TEST(SafeFormatDouble, FollowsTheBinaryValueOfTheProduct) {
  // 2.005 is stored a little below 2.005, but its product with 100 rounds to
  // exactly 200.5, which rounds up: no decimal correction is made.
  ASSERT_EQ(2.005 * 100.0, 200.5);
  EXPECT_EQ(Format(2.005, 2), "2.01");
  // 1.005 * 100 stays below 100.5 and rounds down.
  ASSERT_LT(1.005 * 100.0, 100.5);
  EXPECT_EQ(Format(1.005, 2), "1.00");
}

TEST(SafeFormatDouble, PrecisionZeroWritesAPointAndOneZero) {
  EXPECT_EQ(Format(12.7, 0), "13.0");
  EXPECT_EQ(Format(0.4, 0), "0.0");
  EXPECT_EQ(Format(-2.6, 0), "-3.0");
  EXPECT_EQ(Format(0.0, 0), "0.0");
}

TEST(SafeFormatDouble, DropsTheSignBetweenMinusOneAndZero) {
  EXPECT_EQ(Format(-0.5, 1), "0.5");
  EXPECT_EQ(Format(-0.25, 2), "0.25");
  EXPECT_EQ(Format(-0.001, 3), "0.001");
  EXPECT_EQ(Format(-0.0, 2), "0.00");
  // Once rounding reaches -1 the integer part carries the sign again.
  EXPECT_EQ(Format(-0.96, 1), "-1.0");
  EXPECT_EQ(Format(-0.5, 0), "-1.0");
}

TEST(SafeFormatDouble, KeepsNonFiniteAndHugeValuesInBounds) {
  EXPECT_EQ(Format(__builtin_nan(""), 2), "nan");
  EXPECT_EQ(Format(__builtin_inf(), 2), "inf");
  EXPECT_EQ(Format(-__builtin_inf(), 2), "-inf");
  EXPECT_EQ(Format(1e300, 0), "9223372036854775807.0");
  EXPECT_EQ(Format(-1e300, 0), "-9223372036854775808.0");
  EXPECT_EQ(Format(1.5, 12), "1.500000000");
}

}  // namespace
