// Base64 with AVX-512 VBMI: 48 bytes become 64 characters per step and back,
// through byte permutations that act as 64- and 128-entry lookup tables. The
// table codec finishes what is left, so results match it byte for byte.
// Compiled with -mavx512f -mavx512bw -mavx512vbmi and only called when the
// processor has all three.
#include "mmcommon/base64_internal.h"

#ifdef MMCOMMON_BASE64_X86

// GCC 12 takes the deliberately undefined pass-through operand of the
// unmasked VBMI permutations for an uninitialised variable.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include <cstddef>
#include <cstdint>

namespace morvellanth::base64 {

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr uint64_t kLow48Bytes = (uint64_t{1} << 48) - 1;
constexpr uint8_t kInvalid = 0x80;

struct Tables {
  // Group i of three input bytes (a b c) goes to 32-bit word i as b a c b.
  alignas(64) uint8_t spread[64];
  // Byte i of the decoded output: the bytes of word i / 3, high to low.
  alignas(64) uint8_t pack[64];
  // Six-bit value of each character below 128, kInvalid for the others.
  alignas(64) uint8_t decode[128];
};

constexpr Tables MakeTables() {
  Tables t{};
  for (int group = 0; group < 16; ++group) {
    t.spread[4 * group + 0] = static_cast<uint8_t>(3 * group + 1);
    t.spread[4 * group + 1] = static_cast<uint8_t>(3 * group + 0);
    t.spread[4 * group + 2] = static_cast<uint8_t>(3 * group + 2);
    t.spread[4 * group + 3] = static_cast<uint8_t>(3 * group + 1);
  }
  for (int i = 0; i < 64; ++i) t.pack[i] = i < 48 ? static_cast<uint8_t>(4 * (i / 3) + 2 - i % 3) : 0;
  for (int c = 0; c < 128; ++c) t.decode[c] = kInvalid;
  for (int v = 0; v < 64; ++v) t.decode[static_cast<int>(kAlphabet[v])] = static_cast<uint8_t>(v);
  return t;
}
constexpr Tables kTables = MakeTables();

inline __m512i Load(const void* p) { return _mm512_loadu_si512(p); }

}  // namespace

int encode_avx512vbmi(char* dest, const char* src, int len) {
  const size_t length = len > 0 ? static_cast<size_t>(len) : 0;
  const __m512i spread = Load(kTables.spread);
  const __m512i alphabet = Load(kAlphabet);
  // In a word b a c b the four six-bit fields start at bits 10, 4, 22 and 16;
  // multishift pulls out one byte per field, and the alphabet lookup ignores
  // its top two bits.
  const __m512i field_shifts = _mm512_set1_epi64(0x3036242a1016040a);
  size_t in = 0, out = 0;
  for (; length - in >= 48; in += 48, out += 64) {
    const __m512i bytes = _mm512_maskz_loadu_epi8(kLow48Bytes, src + in);
    const __m512i fields = _mm512_multishift_epi64_epi8(field_shifts,
                                                        _mm512_permutexvar_epi8(spread, bytes));
    _mm512_storeu_si512(dest + out, _mm512_permutexvar_epi8(fields, alphabet));
  }
  return static_cast<int>(out) + encode_table(dest + out, src + in, static_cast<int>(length - in));
}

int decode_avx512vbmi(char* dest, const char* src, int len) {
  if (len < 4 || len % 4 != 0) return decode_table(dest, src, len);
  const size_t length = static_cast<size_t>(len);
  const __m512i decode_low = Load(kTables.decode);
  const __m512i decode_high = Load(kTables.decode + 64);
  const __m512i pack = Load(kTables.pack);
  const __m512i pair_weights = _mm512_set1_epi32(0x01400140);
  const __m512i word_weights = _mm512_set1_epi32(0x00011000);
  size_t in = 0, out = 0;
  // Two steps at a time while they fit: one check for both, and the first
  // step's store may be a full register since the second overwrites its tail.
  // The last group may be padded, which the vector check refuses: it is
  // always left to the table codec.
  for (; length - in > 128; in += 128, out += 96) {
    const __m512i chars0 = Load(src + in);
    const __m512i chars1 = Load(src + in + 64);
    const __m512i values0 = _mm512_permutex2var_epi8(decode_low, chars0, decode_high);
    const __m512i values1 = _mm512_permutex2var_epi8(decode_low, chars1, decode_high);
    const __m512i check = _mm512_or_si512(_mm512_or_si512(values0, chars0),
                                          _mm512_or_si512(values1, chars1));
    if (_mm512_movepi8_mask(check) != 0) break;
    const __m512i words0 = _mm512_madd_epi16(_mm512_maddubs_epi16(values0, pair_weights), word_weights);
    const __m512i words1 = _mm512_madd_epi16(_mm512_maddubs_epi16(values1, pair_weights), word_weights);
    _mm512_storeu_si512(dest + out, _mm512_permutexvar_epi8(pack, words0));
    _mm512_mask_storeu_epi8(dest + out + 48, kLow48Bytes, _mm512_permutexvar_epi8(pack, words1));
  }
  for (; length - in > 64; in += 64, out += 48) {
    const __m512i chars = Load(src + in);
    // The lookup uses the low seven bits; characters from 128 up keep their
    // top bit in the check below.
    const __m512i values = _mm512_permutex2var_epi8(decode_low, chars, decode_high);
    if (_mm512_movepi8_mask(_mm512_or_si512(values, chars)) != 0) break;
    const __m512i words = _mm512_madd_epi16(_mm512_maddubs_epi16(values, pair_weights), word_weights);
    // Exactly 48 bytes: a wider store would leave bytes the table codec does
    // not write when an error follows.
    _mm512_mask_storeu_epi8(dest + out, kLow48Bytes, _mm512_permutexvar_epi8(pack, words));
  }
  return decode_tail_table(dest, src, length, in, out);
}

}  // namespace morvellanth::base64

#endif  // MMCOMMON_BASE64_X86
