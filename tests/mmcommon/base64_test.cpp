// Base64 codec: the contract callers rely on (lengths, padding, errors, the
// bytes written around the output) for the public functions and every codec,
// and differential checks that the vector codecs match the table codec byte
// for byte, errors included.
#include "mmcommon/base64.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "mmcommon/base64_internal.h"

namespace {

namespace b64 = morvellanth::base64;
using CodecFunction = int (*)(char*, const char*, int);

struct Codec {
  const char* name;
  CodecFunction encode;
  CodecFunction decode;
  const char* cpu_flag;  // /proc/cpuinfo flag the codec needs, or null
};

std::vector<Codec> AllCodecs() {
  std::vector<Codec> codecs = {{"public", modp_b64_encode, modp_b64_decode, nullptr},
                               {"table", b64::encode_table, b64::decode_table, nullptr}};
#ifdef MMCOMMON_BASE64_X86
  codecs.push_back({"avx2", b64::encode_avx2, b64::decode_avx2, "avx2"});
  codecs.push_back({"avx512vbmi", b64::encode_avx512vbmi, b64::decode_avx512vbmi, "avx512vbmi"});
#endif
  return codecs;
}

std::vector<Codec> VectorCodecs() {
  std::vector<Codec> codecs;
  for (const Codec& codec : AllCodecs())
    if (codec.cpu_flag != nullptr) codecs.push_back(codec);
  return codecs;
}

std::string CodecName(const testing::TestParamInfo<Codec>& info) { return info.param.name; }

bool CpuHasFlag(const std::string& flag) {
  std::ifstream cpuinfo("/proc/cpuinfo");
  std::string line;
  while (std::getline(cpuinfo, line)) {
    if (line.compare(0, 5, "flags") != 0) continue;
    std::istringstream words(line.substr(line.find(':') + 1));
    std::string word;
    while (words >> word)
      if (word == flag) return true;
    return false;
  }
  return false;
}

#define SKIP_WITHOUT_CPU_SUPPORT(codec)                                      \
  if ((codec).cpu_flag != nullptr && !CpuHasFlag((codec).cpu_flag))          \
  GTEST_SKIP() << "this processor lacks " << (codec).cpu_flag

constexpr char kSentinel = '\x5a';
constexpr size_t kSlack = 80;  // sentinel bytes after the room the contract asks for

// Output of one call: the result and the whole buffer, sentinel bytes included.
struct Outcome {
  int result;
  std::string buffer;
  bool operator==(const Outcome& other) const {
    return result == other.result && buffer == other.buffer;
  }
};

void PrintTo(const Outcome& outcome, std::ostream* os) {
  *os << "result " << outcome.result << ", buffer";
  static const char kHex[] = "0123456789abcdef";
  for (unsigned char c : outcome.buffer) *os << ' ' << kHex[c >> 4] << kHex[c & 15];
}

void PrintTo(const Codec& codec, std::ostream* os) { *os << codec.name; }

Outcome Encode(CodecFunction encode, const std::string& data) {
  std::string buffer(modp_b64_encode_len(data.size()) + kSlack, kSentinel);
  int result = encode(&buffer[0], data.data(), static_cast<int>(data.size()));
  return {result, buffer};
}

Outcome Decode(CodecFunction decode, const std::string& text) {
  std::string buffer(modp_b64_decode_len(text.size()) + kSlack, kSentinel);
  int result = decode(&buffer[0], text.data(), static_cast<int>(text.size()));
  return {result, buffer};
}

std::string EncodedText(CodecFunction encode, const std::string& data) {
  Outcome out = Encode(encode, data);
  return out.buffer.substr(0, static_cast<size_t>(out.result));
}

std::string DecodedBytes(CodecFunction decode, const std::string& text) {
  Outcome out = Decode(decode, text);
  return out.result < 0 ? "<error>" : out.buffer.substr(0, static_cast<size_t>(out.result));
}

std::string RandomBytes(std::mt19937& random, size_t length) {
  std::string data(length, '\0');
  for (char& c : data) c = static_cast<char>(random() & 0xff);
  return data;
}

const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

bool InAlphabet(int c) { return c != 0 && std::strchr(kAlphabet, c) != nullptr; }

// ---- The contract, for the public functions and each codec ----

class Base64Contract : public testing::TestWithParam<Codec> {};

TEST_P(Base64Contract, EncodesTheStandardVectors) {
  SKIP_WITHOUT_CPU_SUPPORT(GetParam());
  const CodecFunction encode = GetParam().encode;
  EXPECT_EQ(EncodedText(encode, ""), "");
  EXPECT_EQ(EncodedText(encode, "f"), "Zg==");
  EXPECT_EQ(EncodedText(encode, "fo"), "Zm8=");
  EXPECT_EQ(EncodedText(encode, "foo"), "Zm9v");
  EXPECT_EQ(EncodedText(encode, "foob"), "Zm9vYg==");
  EXPECT_EQ(EncodedText(encode, "fooba"), "Zm9vYmE=");
  EXPECT_EQ(EncodedText(encode, "foobar"), "Zm9vYmFy");
  EXPECT_EQ(EncodedText(encode, std::string("\xfb\xff\xbf", 3)), "+/+/");
}

TEST_P(Base64Contract, EncodingReturnsTheLengthAndWritesOneNul) {
  SKIP_WITHOUT_CPU_SUPPORT(GetParam());
  for (size_t length : {0, 1, 2, 3, 4, 47, 48, 49, 100}) {
    Outcome out = Encode(GetParam().encode, std::string(length, 'M'));
    const size_t expected = 4 * ((length + 2) / 3);
    ASSERT_EQ(out.result, static_cast<int>(expected)) << length;
    EXPECT_EQ(out.buffer[expected], '\0');
    EXPECT_EQ(out.buffer.find_first_not_of(kSentinel, expected + 1), std::string::npos);
  }
}

TEST_P(Base64Contract, DecodesTheStandardVectors) {
  SKIP_WITHOUT_CPU_SUPPORT(GetParam());
  const CodecFunction decode = GetParam().decode;
  EXPECT_EQ(DecodedBytes(decode, ""), "");
  EXPECT_EQ(DecodedBytes(decode, "TWFu"), "Man");
  EXPECT_EQ(DecodedBytes(decode, "TWE="), "Ma");
  EXPECT_EQ(DecodedBytes(decode, "TQ=="), "M");
  EXPECT_EQ(DecodedBytes(decode, "Zm9vYmFy"), "foobar");
  EXPECT_EQ(DecodedBytes(decode, "+/+/"), std::string("\xfb\xff\xbf", 3));
  // Bits below the last character's share are ignored, as the tables do.
  EXPECT_EQ(DecodedBytes(decode, "TWF="), "Ma");
  EXPECT_EQ(DecodedBytes(decode, "TR=="), "M");
}

TEST_P(Base64Contract, RefusesLengthsThatAreNotMultiplesOfFour) {
  SKIP_WITHOUT_CPU_SUPPORT(GetParam());
  const CodecFunction decode = GetParam().decode;
  for (const char* text : {"T", "TW", "TWF", "TWFuT", "TWFuTW", "TWFuTWF"})
    EXPECT_EQ(Decode(decode, text).result, -1) << text;
  EXPECT_EQ(decode(nullptr, "TWFu", -4), -1);
}

TEST_P(Base64Contract, RefusesCharactersOutsideTheAlphabet) {
  SKIP_WITHOUT_CPU_SUPPORT(GetParam());
  const CodecFunction decode = GetParam().decode;
  for (const char* text : {"TW u", "TWFu\nTWFu", "TW-u", "TW_u", "TWF\xc3", "=WFu", "T=Fu",
                           "TW=u", "A===", "====", "TWFu====", "TWE=TWFu", "TQ==TWFu"})
    EXPECT_EQ(Decode(decode, text).result, -1) << text;
  EXPECT_EQ(Decode(decode, std::string("TW\0u", 4)).result, -1);
}

TEST_P(Base64Contract, DecodingWritesAtMostOneByteBeyondTheData) {
  SKIP_WITHOUT_CPU_SUPPORT(GetParam());
  std::mt19937 random(7);
  for (size_t length = 1; length <= 200; ++length) {
    const std::string data = RandomBytes(random, length);
    const std::string text = EncodedText(b64::encode_table, data);
    Outcome out = Decode(GetParam().decode, text);
    ASSERT_EQ(out.result, static_cast<int>(length));
    EXPECT_EQ(out.buffer.substr(0, length), data);
    // Padded input stores its last bytes singly: nothing, not even a NUL,
    // follows the data. Unpadded input may leave one more byte.
    const size_t untouched_from = text.back() == '=' ? length : length + 1;
    EXPECT_EQ(out.buffer.find_first_not_of(kSentinel, untouched_from), std::string::npos)
        << "length " << length;
  }
}

TEST_P(Base64Contract, KeepsTheBytesDecodedBeforeAnError) {
  SKIP_WITHOUT_CPU_SUPPORT(GetParam());
  std::string text = EncodedText(b64::encode_table, std::string(150, 'x'));  // 200 characters
  text[180] = '*';
  Outcome out = Decode(GetParam().decode, text);
  EXPECT_EQ(out.result, -1);
  EXPECT_EQ(out.buffer.substr(0, 135), std::string(135, 'x'));
}

TEST_P(Base64Contract, RoundTripsEveryByteValue) {
  SKIP_WITHOUT_CPU_SUPPORT(GetParam());
  std::string data;
  for (int repeat = 0; repeat < 3; ++repeat)
    for (int byte = 0; byte < 256; ++byte) data.push_back(static_cast<char>(byte));
  const std::string text = EncodedText(GetParam().encode, data);
  for (char c : text) ASSERT_TRUE(InAlphabet(c) || c == '=');
  EXPECT_EQ(DecodedBytes(GetParam().decode, text), data);
}

INSTANTIATE_TEST_SUITE_P(Codecs, Base64Contract, testing::ValuesIn(AllCodecs()), CodecName);

// ---- Run-time choice ----

TEST(Base64Dispatch, DetectsWhatTheProcessorReports) {
  EXPECT_EQ(b64::cpu_has_avx2(), CpuHasFlag("avx2"));
  EXPECT_EQ(b64::cpu_has_avx512vbmi(),
            CpuHasFlag("avx512f") && CpuHasFlag("avx512bw") && CpuHasFlag("avx512vbmi"));
}

TEST(Base64Dispatch, UsesTheWidestCodecAvailable) {
  const std::string name = b64::active_codec_name();
  if (b64::cpu_has_avx512vbmi())
    EXPECT_EQ(name, "avx512vbmi");
  else if (b64::cpu_has_avx2())
    EXPECT_EQ(name, "avx2");
  else
    EXPECT_EQ(name, "table");
}

// ---- Vector codecs against the table codec ----

class Base64Differential : public testing::TestWithParam<Codec> {};

TEST_P(Base64Differential, EncodesEveryLengthUpTo300Identically) {
  SKIP_WITHOUT_CPU_SUPPORT(GetParam());
  std::mt19937 random(300);
  for (size_t length = 0; length <= 300; ++length) {
    const std::string data = RandomBytes(random, length);
    ASSERT_EQ(Encode(GetParam().encode, data), Encode(b64::encode_table, data)) << length;
  }
}

TEST_P(Base64Differential, DecodesEveryLengthUpTo300Identically) {
  SKIP_WITHOUT_CPU_SUPPORT(GetParam());
  std::mt19937 random(301);
  for (size_t length = 0; length <= 300; ++length) {
    // Well-formed encodings of every data length...
    const std::string text = EncodedText(b64::encode_table, RandomBytes(random, length));
    ASSERT_EQ(Decode(GetParam().decode, text), Decode(b64::decode_table, text)) << length;
    // ...and alphabet characters of every text length, most not multiples of
    // four, with arbitrary bits in a padded group's last character.
    std::string chars(length, 'A');
    for (char& c : chars) c = kAlphabet[random() % 64];
    for (size_t padding = 0; padding <= 2 && padding < length; ++padding) {
      if (padding > 0) chars[length - padding] = '=';
      ASSERT_EQ(Decode(GetParam().decode, chars), Decode(b64::decode_table, chars))
          << length << " characters, " << padding << " padding";
    }
  }
}

TEST_P(Base64Differential, MatchesOnSeveralMebibytesOfRandomData) {
  SKIP_WITHOUT_CPU_SUPPORT(GetParam());
  std::mt19937 random(4);
  for (size_t length : {size_t{3} << 20, (size_t{5} << 20) + 1, (size_t{2} << 20) + 2}) {
    const std::string data = RandomBytes(random, length);
    const Outcome encoded = Encode(GetParam().encode, data);
    ASSERT_EQ(encoded, Encode(b64::encode_table, data)) << length;
    const std::string text = encoded.buffer.substr(0, static_cast<size_t>(encoded.result));
    const Outcome decoded = Decode(GetParam().decode, text);
    ASSERT_EQ(decoded, Decode(b64::decode_table, text)) << length;
    EXPECT_EQ(decoded.buffer.substr(0, length), data);
  }
}

TEST_P(Base64Differential, RefusesEveryInvalidCharacterAtEveryPositionIdentically) {
  SKIP_WITHOUT_CPU_SUPPORT(GetParam());
  std::mt19937 random(5);
  // 300 characters: several vector steps and a table-codec tail.
  const std::string text = EncodedText(b64::encode_table, RandomBytes(random, 225));
  ASSERT_EQ(text.size(), 300u);
  for (int bad = 0; bad < 256; ++bad) {
    if (InAlphabet(bad)) continue;
    for (size_t position = 0; position < text.size(); ++position) {
      std::string corrupt = text;
      corrupt[position] = static_cast<char>(bad);
      const Outcome vector = Decode(GetParam().decode, corrupt);
      const Outcome table = Decode(b64::decode_table, corrupt);
      // "=" in one of the last two places is padding, not corruption.
      if (bad != '=' || position < text.size() - 2) {
        ASSERT_EQ(table.result, -1) << bad << " at " << position;
      }
      ASSERT_EQ(vector, table) << "character " << bad << " at " << position;
    }
  }
}

TEST_P(Base64Differential, RefusesMisplacedPaddingIdentically) {
  SKIP_WITHOUT_CPU_SUPPORT(GetParam());
  std::mt19937 random(6);
  // Encodings ending in "==", "=" and no padding, each with a "=" put at
  // every place where padding may not stand.
  for (size_t length : {223, 224, 225}) {
    const std::string text = EncodedText(b64::encode_table, RandomBytes(random, length));
    const size_t padding_starts = text.find('=') == std::string::npos ? text.size() : text.find('=');
    for (size_t position = 0; position < padding_starts; ++position) {
      if (position >= text.size() - 2 && padding_starts != text.size()) continue;
      std::string corrupt = text;
      corrupt[position] = '=';
      if (position < text.size() - 2 || padding_starts < text.size()) {
        ASSERT_EQ(Decode(b64::decode_table, corrupt).result, -1) << length << " at " << position;
      }
      ASSERT_EQ(Decode(GetParam().decode, corrupt), Decode(b64::decode_table, corrupt))
          << length << " at " << position;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(VectorCodecs, Base64Differential, testing::ValuesIn(VectorCodecs()),
                         CodecName);

}  // namespace
