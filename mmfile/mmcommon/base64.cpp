// Table-driven base64 codec and the run-time choice of the vector codecs.
#include "mmcommon/base64.h"

#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "mmcommon/base64_internal.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "the decoding tables build little-endian words");

namespace morvellanth::base64 {

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kPad = '=';

// Encoding: the first character of a group from its first byte, and the
// character of any six-bit value (the table repeats four times, so the low
// bits of a byte index it directly).
constexpr std::array<char, 256> MakeFirstCharTable() {
  std::array<char, 256> table{};
  for (int byte = 0; byte < 256; ++byte) table[byte] = kAlphabet[byte >> 2];
  return table;
}
constexpr std::array<char, 256> MakeSixBitCharTable() {
  std::array<char, 256> table{};
  for (int byte = 0; byte < 256; ++byte) table[byte] = kAlphabet[byte & 0x3f];
  return table;
}
constexpr std::array<char, 256> kFirstChar = MakeFirstCharTable();
constexpr std::array<char, 256> kSixBitChar = MakeSixBitCharTable();

// Decoding: four characters give one little-endian word holding the three
// bytes. Each position has a table with its character's bits already in place;
// a character outside the alphabet carries bits above the 24 data bits, so
// one comparison of the combined word catches it.
constexpr uint32_t kBadChar = 0x01FFFFFF;
constexpr uint32_t kLargestGoodWord = 0x01FFFFFE;

constexpr int SixBitValue(int c) {
  for (int i = 0; i < 64; ++i)
    if (kAlphabet[i] == c) return i;
  return -1;
}

// position 0: bits 2-7 of byte 0; 1: bits 0-1 of byte 0 and 4-7 of byte 1;
// 2: bits 0-3 of byte 1 and 6-7 of byte 2; 3: bits 0-5 of byte 2.
constexpr uint32_t PlaceSixBits(int position, uint32_t v) {
  switch (position) {
    case 0: return v << 2;
    case 1: return (v >> 4) | ((v & 0x0f) << 12);
    case 2: return ((v >> 2) << 8) | ((v & 0x03) << 22);
    default: return v << 16;
  }
}

constexpr std::array<uint32_t, 256> MakeDecodeTable(int position) {
  std::array<uint32_t, 256> table{};
  for (int c = 0; c < 256; ++c) {
    const int value = SixBitValue(c);
    table[c] = value < 0 ? kBadChar : PlaceSixBits(position, static_cast<uint32_t>(value));
  }
  return table;
}
constexpr std::array<uint32_t, 256> kDecode0 = MakeDecodeTable(0);
constexpr std::array<uint32_t, 256> kDecode1 = MakeDecodeTable(1);
constexpr std::array<uint32_t, 256> kDecode2 = MakeDecodeTable(2);
constexpr std::array<uint32_t, 256> kDecode3 = MakeDecodeTable(3);

}  // namespace

int encode_table(char* dest, const char* src, int len) {
  const auto* in = reinterpret_cast<const unsigned char*>(src);
  char* out = dest;
  const size_t length = len > 0 ? static_cast<size_t>(len) : 0;
  size_t i = 0;
  for (; i + 3 <= length; i += 3, out += 4) {
    const unsigned char b0 = in[i], b1 = in[i + 1], b2 = in[i + 2];
    out[0] = kFirstChar[b0];
    out[1] = kSixBitChar[((b0 & 0x03) << 4) | (b1 >> 4)];
    out[2] = kSixBitChar[((b1 & 0x0f) << 2) | (b2 >> 6)];
    out[3] = kSixBitChar[b2];
  }
  if (length - i == 1) {
    const unsigned char b0 = in[i];
    out[0] = kFirstChar[b0];
    out[1] = kSixBitChar[(b0 & 0x03) << 4];
    out[2] = kPad;
    out[3] = kPad;
    out += 4;
  } else if (length - i == 2) {
    const unsigned char b0 = in[i], b1 = in[i + 1];
    out[0] = kFirstChar[b0];
    out[1] = kSixBitChar[((b0 & 0x03) << 4) | (b1 >> 4)];
    out[2] = kSixBitChar[(b1 & 0x0f) << 2];
    out[3] = kPad;
    out += 4;
  }
  *out = '\0';
  return static_cast<int>(out - dest);
}

int decode_table(char* dest, const char* src, int len) {
  if (len == 0) return 0;
  if (len < 4 || len % 4 != 0) return -1;
  const auto* in = reinterpret_cast<const unsigned char*>(src);
  int padding = 0;
  if (in[len - 1] == kPad) padding = in[len - 2] == kPad ? 2 : 1;
  const size_t full_groups = static_cast<size_t>(len / 4 - (padding != 0 ? 1 : 0));

  char* out = dest;
  for (size_t g = 0; g < full_groups; ++g, in += 4, out += 3) {
    const uint32_t word = kDecode0[in[0]] | kDecode1[in[1]] | kDecode2[in[2]] | kDecode3[in[3]];
    if (word > kLargestGoodWord) return -1;
    std::memcpy(out, &word, sizeof word);  // the fourth byte is overwritten next
  }
  if (padding == 1) {
    const uint32_t word = kDecode0[in[0]] | kDecode1[in[1]] | kDecode2[in[2]];
    if (word > kLargestGoodWord) return -1;
    out[0] = static_cast<char>(word);
    out[1] = static_cast<char>(word >> 8);
    out += 2;
  } else if (padding == 2) {
    const uint32_t word = kDecode0[in[0]] | kDecode1[in[1]];
    if (word > kLargestGoodWord) return -1;
    out[0] = static_cast<char>(word);
    out += 1;
  }
  return static_cast<int>(out - dest);
}

int decode_tail_table(char* dest, const char* src, std::size_t length, std::size_t in, std::size_t out) {
  if (in > 0) {
    in -= 4;
    out -= 3;
  }
  const int rest = decode_table(dest + out, src + in, static_cast<int>(length - in));
  return rest < 0 ? -1 : static_cast<int>(out) + rest;
}

// __builtin_cpu_init makes the checks valid even before the runtime's own
// initialisation has run (from another library's static constructors).
bool cpu_has_avx2() {
#ifdef MMCOMMON_BASE64_X86
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2");
#else
  return false;
#endif
}

bool cpu_has_avx512vbmi() {
#ifdef MMCOMMON_BASE64_X86
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
         __builtin_cpu_supports("avx512vbmi");
#else
  return false;
#endif
}

namespace {

struct Codec {
  const char* name;
  int (*encode)(char*, const char*, int);
  int (*decode)(char*, const char*, int);
};

// Chosen on first use and kept for the process.
const Codec& active_codec() {
  static const Codec codec = [] {
#ifdef MMCOMMON_BASE64_X86
    if (cpu_has_avx512vbmi()) return Codec{"avx512vbmi", encode_avx512vbmi, decode_avx512vbmi};
    if (cpu_has_avx2()) return Codec{"avx2", encode_avx2, decode_avx2};
#endif
    return Codec{"table", encode_table, decode_table};
  }();
  return codec;
}

}  // namespace

const char* active_codec_name() { return active_codec().name; }

}  // namespace morvellanth::base64

extern "C" int modp_b64_encode(char* dest, const char* src, int len) {
  // The result counts characters in an int: 4 for every 3 bytes.
  constexpr int kLongestInput = INT_MAX / 4 * 3;
  if (len < 0 || len > kLongestInput) return -1;
  return morvellanth::base64::active_codec().encode(dest, src, len);
}

extern "C" int modp_b64_decode(char* dest, const char* src, int len) {
  return morvellanth::base64::active_codec().decode(dest, src, len);
}
