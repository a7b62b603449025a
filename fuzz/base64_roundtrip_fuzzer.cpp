// Encodes random bytes with modp_b64_encode and decodes the text again with
// modp_b64_decode, each into a buffer of exactly the documented size.
// Input: the bytes. Checks: the text has 4 * ceil(n / 3) characters of the
// alphabet with padding only at its end, is NUL-terminated, and decodes to
// the input; every codec the processor supports encodes to the same text.
// Any difference aborts.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "fuzz_support.h"
#include "mmcommon/base64.h"
#include "mmcommon/base64_internal.h"

namespace {

using Encoder = int (*)(char*, const char*, int);

void CompareCodec(Encoder encode, const char* input, int len, const char* expected,
                  int expected_length) {
  char* text = static_cast<char*>(std::malloc(modp_b64_encode_len(len)));
  fuzz::Check(encode(text, input, len) == expected_length,
              "every codec gives the same encoded length");
  fuzz::Check(std::memcmp(text, expected, expected_length + 1) == 0,
              "every codec gives the same text");
  std::free(text);
}

bool InAlphabet(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
         c == '+' || c == '/';
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > (1u << 20)) return 0;
  const int len = static_cast<int>(size);
  char* input = static_cast<char*>(std::malloc(size ? size : 1));
  std::memcpy(input, data, size);

  char* text = static_cast<char*>(std::malloc(modp_b64_encode_len(len)));
  const int encoded = modp_b64_encode(text, input, len);
  fuzz::Check(encoded == 4 * ((len + 2) / 3), "encoded length is 4 * ceil(n / 3)");
  fuzz::Check(text[encoded] == '\0', "encoded text is NUL-terminated");
  const int padding = (3 - len % 3) % 3;
  for (int i = 0; i < encoded; ++i) {
    if (i >= encoded - padding) {
      fuzz::Check(text[i] == '=', "the last group is padded with '='");
    } else {
      fuzz::Check(InAlphabet(text[i]), "encoded characters are in the alphabet");
    }
  }

  namespace b64 = morvellanth::base64;
  CompareCodec(b64::encode_table, input, len, text, encoded);
#ifdef MMCOMMON_BASE64_X86
  if (b64::cpu_has_avx2()) CompareCodec(b64::encode_avx2, input, len, text, encoded);
  if (b64::cpu_has_avx512vbmi()) CompareCodec(b64::encode_avx512vbmi, input, len, text, encoded);
#endif

  char* output = static_cast<char*>(std::malloc(modp_b64_decode_len(encoded)));
  const int decoded = modp_b64_decode(output, text, encoded);
  fuzz::Check(decoded == len, "round trip keeps the length");
  fuzz::Check(std::memcmp(output, input, size) == 0, "round trip keeps the bytes");

  std::free(output);
  std::free(text);
  std::free(input);
  return 0;
}
