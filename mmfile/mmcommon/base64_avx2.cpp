// Base64 with AVX2: 24 bytes become 32 characters per step and back. The
// table codec finishes what is left, so results match it byte for byte.
// Compiled with -mavx2 and only called when the processor has AVX2.
#include "mmcommon/base64_internal.h"

#ifdef MMCOMMON_BASE64_X86

#include <immintrin.h>

#include <cstddef>

namespace morvellanth::base64 {

namespace {

// Twelve input bytes per 128-bit lane, each group of three (a b c) spread to
// b a c b so that each 16-bit half holds the bits of two output characters.
inline __m256i SpreadGroups(__m256i bytes) {
  const __m256i spread = _mm256_setr_epi8(
      1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10,
      1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10);
  return _mm256_shuffle_epi8(bytes, spread);
}

// Each byte receives its six-bit value: the shifts of the four fields are
// done as 16-bit multiplications (high half for two fields, low for two).
inline __m256i SplitSixBits(__m256i spread) {
  const __m256i high_fields = _mm256_and_si256(spread, _mm256_set1_epi32(0x0fc0fc00));
  const __m256i shifted_down = _mm256_mulhi_epu16(high_fields, _mm256_set1_epi32(0x04000040));
  const __m256i low_fields = _mm256_and_si256(spread, _mm256_set1_epi32(0x003f03f0));
  const __m256i shifted_up = _mm256_mullo_epi16(low_fields, _mm256_set1_epi32(0x01000010));
  return _mm256_or_si256(shifted_down, shifted_up);
}

// Six-bit values to characters by adding an offset per range:
// 0-25 "A", 26-51 "a", 52-61 "0", 62 "+", 63 "/". Values 52-63 select
// entries 1-12 by saturated subtraction, 0-25 entry 13, 26-51 entry 0.
inline __m256i SixBitsToAscii(__m256i values) {
  const __m256i offsets = _mm256_setr_epi8(
      'a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
      '0' - 52, '0' - 52, '0' - 52, '+' - 62, '/' - 63, 'A', 0, 0,
      'a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
      '0' - 52, '0' - 52, '0' - 52, '+' - 62, '/' - 63, 'A', 0, 0);
  __m256i entry = _mm256_subs_epu8(values, _mm256_set1_epi8(51));
  const __m256i upper = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), values);
  entry = _mm256_or_si256(entry, _mm256_and_si256(upper, _mm256_set1_epi8(13)));
  return _mm256_add_epi8(values, _mm256_shuffle_epi8(offsets, entry));
}

// Characters to six-bit values. Validity is looked up by low and high nibble:
// each high nibble has one class bit, and the low-nibble table sets the bits
// of the classes for which that low nibble is not in the alphabet (bit 0x10:
// nibbles 0, 1 and 8-F, never valid; 0x01: 2x, only + and /; 0x02: 3x,
// digits; 0x04: 4x and 6x, all but @ and `; 0x08: 5x and 7x, up to Z and z).
// *invalid is non-zero where a character is outside the alphabet.
inline __m256i AsciiToSixBits(__m256i chars, __m256i* invalid) {
  const __m256i invalid_by_low = _mm256_setr_epi8(
      0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11,
      0x11, 0x11, 0x13, 0x1a, 0x1b, 0x1b, 0x1b, 0x1a,
      0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11,
      0x11, 0x11, 0x13, 0x1a, 0x1b, 0x1b, 0x1b, 0x1a);
  const __m256i class_by_high = _mm256_setr_epi8(
      0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08,
      0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10,
      0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08,
      0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10);
  // Offset to add per high nibble; "/" shares 2x with "+" and takes entry 1.
  const __m256i offset_by_high = _mm256_setr_epi8(
      0, 16, 19, 4, -65, -65, -71, -71, 0, 0, 0, 0, 0, 0, 0, 0,
      0, 16, 19, 4, -65, -65, -71, -71, 0, 0, 0, 0, 0, 0, 0, 0);
  const __m256i nibble = _mm256_set1_epi8(0x0f);
  const __m256i high = _mm256_and_si256(_mm256_srli_epi32(chars, 4), nibble);
  const __m256i low = _mm256_and_si256(chars, nibble);
  *invalid = _mm256_and_si256(_mm256_shuffle_epi8(invalid_by_low, low),
                              _mm256_shuffle_epi8(class_by_high, high));
  const __m256i is_slash = _mm256_cmpeq_epi8(chars, _mm256_set1_epi8('/'));
  const __m256i offset = _mm256_shuffle_epi8(offset_by_high, _mm256_add_epi8(is_slash, high));
  return _mm256_add_epi8(chars, offset);
}

inline __m256i Load(const char* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }

// Stores the low 24 bytes of a register, exactly.
inline void Store24(char* p, __m256i bytes) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(bytes));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(p + 16), _mm256_extracti128_si256(bytes, 1));
}

// Four six-bit values per 32-bit word to three bytes, packed into the low 24
// bytes of the register.
inline __m256i PackSixBits(__m256i values) {
  const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
  const __m256i words = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
  const __m256i bytes = _mm256_shuffle_epi8(words, _mm256_setr_epi8(
      2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1,
      2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
  return _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
}

}  // namespace

int encode_avx2(char* dest, const char* src, int len) {
  const size_t length = len > 0 ? static_cast<size_t>(len) : 0;
  size_t in = 0, out = 0;
  // Each step reads 28 bytes (two overlapping 16-byte loads) and uses 24.
  for (; length - in >= 28; in += 24, out += 32) {
    const __m256i bytes = _mm256_loadu2_m128i(
        reinterpret_cast<const __m128i*>(src + in + 12), reinterpret_cast<const __m128i*>(src + in));
    const __m256i chars = SixBitsToAscii(SplitSixBits(SpreadGroups(bytes)));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dest + out), chars);
  }
  return static_cast<int>(out) + encode_table(dest + out, src + in, static_cast<int>(length - in));
}

int decode_avx2(char* dest, const char* src, int len) {
  if (len < 4 || len % 4 != 0) return decode_table(dest, src, len);
  const size_t length = static_cast<size_t>(len);
  size_t in = 0, out = 0;
  // The last group may be padded, which the vector check refuses: it is
  // always left to the table codec.
  for (; length - in > 32; in += 32, out += 24) {
    __m256i invalid;
    const __m256i values = AsciiToSixBits(Load(src + in), &invalid);
    if (!_mm256_testz_si256(invalid, invalid)) break;
    // Exactly 24 bytes: a wider store would leave bytes the table codec does
    // not write when an error follows.
    Store24(dest + out, PackSixBits(values));
  }
  return decode_tail_table(dest, src, length, in, out);
}

}  // namespace morvellanth::base64

#endif  // MMCOMMON_BASE64_X86
