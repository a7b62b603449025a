// safe_format: text and number formatting that may be used inside a signal
// handler: no allocation, no locale, no library call, no global state.
//
// Each overload appends to a caller's buffer and returns the position after the
// last character written, so calls chain; none writes a terminating NUL:
//   char line[64];
//   char* end = morvellanth::safe_format(line, "pid ");
//   end = morvellanth::safe_format(end, static_cast<long long>(getpid()), 0);
//   write(1, line, end - line);
// The caller provides a buffer large enough; no bound is checked.
#ifndef MMFILESHARED_MMERR_SAFE_FORMAT_H
#define MMFILESHARED_MMERR_SAFE_FORMAT_H

namespace morvellanth {

// Copies text up to (not including) its NUL; returns out plus that length.
char* safe_format(char* out, const char* text);

// Writes value in decimal, zero-padded on the left to at least min_digits
// digits; a minus sign stands before the zeros. Any 64-bit value works.
char* safe_format(char* out, long long value, int min_digits);

// Writes value in fixed point with exactly precision digits after the point
// (at least one digit), rounded half away from zero. Only the integer part
// carries a sign, so values between -1 and 0 print without one. Precision
// is 0 to 9 (larger values are taken as 9); NaN prints as nan, infinities as
// inf and -inf, and finite values beyond 64 bits once scaled saturate.
char* safe_format(char* out, double value, int precision);

}  // namespace morvellanth

#endif  // MMFILESHARED_MMERR_SAFE_FORMAT_H
