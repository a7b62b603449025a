// Base64: the contract of the public functions and the table codec, and every
// vector codec the processor runs compared with the table codec byte for
// byte, the bytes around the output and the errors included.
#include "mmcommon/base64.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "mmcommon/base64_internal.h"

namespace b64 = morvellanth::base64;
using Codec = int (*)(char*, const char*, int);
using Outcome = std::pair<int, std::string>;  // a call's result and its whole output buffer

// Runs a codec on a buffer of the room the header names followed by sentinel
// bytes, which must stay as they are.
static Outcome Run(Codec codec, const std::string& in, size_t room) {
  std::string buffer(room + 16, '\x5a');
  const int result = codec(&buffer[0], in.data(), static_cast<int>(in.size()));
  EXPECT_EQ(buffer.find_first_not_of('\x5a', room), std::string::npos) << "wrote past the room";
  return {result, buffer};
}
static Outcome Encode(Codec encode, const std::string& data) {
  return Run(encode, data, modp_b64_encode_len(data.size()));
}
static Outcome Decode(Codec decode, const std::string& text) {
  return Run(decode, text, modp_b64_decode_len(text.size()));
}
static std::string Text(const Outcome& out) { return out.second.substr(0, std::max(out.first, 0)); }

static const std::string kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// The vector codecs this processor runs.
static std::vector<std::pair<Codec, Codec>> VectorCodecs() {
  std::vector<std::pair<Codec, Codec>> codecs;
#ifdef MMCOMMON_BASE64_X86
  if (b64::cpu_has_avx2()) codecs.push_back({b64::encode_avx2, b64::decode_avx2});
  if (b64::cpu_has_avx512vbmi())
    codecs.push_back({b64::encode_avx512vbmi, b64::decode_avx512vbmi});
#endif
  return codecs;
}

// The public functions: through the vector codecs the differential tests
// compare with the table codec, these vectors check that one too.
TEST(Base64Contract, EncodesAndDecodesTheStandardVectorsKeepingBytesBeforeAnError) {
  const std::pair<std::string, std::string> kVectors[] = {
      {"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"Man", "TWFu"}, {"Ma", "TWE="},
      {"M", "TQ=="}, {"foobar", "Zm9vYmFy"}, {"fooba", "Zm9vYmE="}, {"\xfb\xff\xbf", "+/+/"}};
  for (const auto& [data, text] : kVectors) {
    const Outcome encoded = Encode(modp_b64_encode, data);
    EXPECT_EQ(encoded.second.substr(0, encoded.first + 1), text + '\0') << text;
    EXPECT_EQ(Text(Decode(modp_b64_decode, text)), data) << text;
  }
  std::string text = Text(Encode(modp_b64_encode, std::string(150, 'x')));
  text[180] = '*';
  const Outcome refused = Decode(modp_b64_decode, text);
  EXPECT_EQ(refused.first, -1);
  EXPECT_EQ(refused.second.substr(0, 135), std::string(135, 'x'));
  // Lengths whose encoding would not fit an int are refused before any read.
  char untouched[1] = {'u'};
  EXPECT_EQ(modp_b64_encode(untouched, nullptr, -1), -1);
  EXPECT_EQ(modp_b64_encode(untouched, nullptr, 1610612734), -1);
  EXPECT_EQ(untouched[0], 'u');
}

// Every length up to 300 and a few of several MiB, alphabet characters of
// every text length, and each character outside the alphabet at every place.
TEST(Base64Differential, VectorCodecsMatchTheTableCodecInResultsBytesAndErrors) {
  if (VectorCodecs().empty()) GTEST_SKIP() << "this processor runs no vector codec";
  std::vector<size_t> lengths(301);
  std::iota(lengths.begin(), lengths.end(), 0);
  lengths.insert(lengths.end(), {size_t{3} << 20, (size_t{5} << 20) + 1, (size_t{2} << 20) + 2});
  std::mt19937 random(300);
  for (auto [encode, decode] : VectorCodecs()) {
    for (size_t length : lengths) {
      std::string data(length, '\0');
      std::generate(data.begin(), data.end(), std::ref(random));
      const std::string text = Text(Encode(b64::encode_table, data));
      ASSERT_TRUE(Encode(encode, data) == Encode(b64::encode_table, data)) << length;
      ASSERT_TRUE(Decode(decode, text) == Decode(b64::decode_table, text)) << length;
      ASSERT_TRUE(Text(Decode(b64::decode_table, text)) == data) << length;
      if (length > 300) continue;
      // Most of these lengths are not a multiple of four; the bits before the
      // padding are arbitrary.
      std::string chars(length, 'A');
      for (char& c : chars) c = kAlphabet[random() % 64];
      for (size_t padding = 0; padding <= 2 && padding < length; ++padding) {
        if (padding > 0) chars[length - padding] = '=';
        const Outcome table = Decode(b64::decode_table, chars);
        ASSERT_TRUE(length % 4 == 0 || table.first == -1) << chars;
        ASSERT_EQ(Decode(decode, chars), table) << chars;
      }
      // 300 characters ending in "==", "=" and no padding (several vector
      // steps and a tail): "=" at every place of all three, every other
      // character outside the alphabet at every place of the last.
      if (length < 223 || length > 225) continue;
      for (int bad = 0; bad < 256; ++bad) {
        if (kAlphabet.find(static_cast<char>(bad)) != std::string::npos) continue;
        if (length != 225 && bad != '=') continue;
        for (size_t position = 0; position < text.size(); ++position) {
          std::string corrupt = text;
          corrupt[position] = static_cast<char>(bad);
          // "=" is padding in the last place, or in the last two.
          const bool padding = bad == '=' && position + 2 >= text.size() && corrupt.back() == '=';
          const Outcome table = Decode(b64::decode_table, corrupt);
          ASSERT_TRUE(padding || table.first == -1) << bad << " at " << position;
          ASSERT_EQ(Decode(decode, corrupt), table) << bad << " at " << position;
        }
      }
    }
  }
}
