// Decodes random text with modp_b64_decode into a buffer of exactly the
// documented size, so that any write beyond it is caught. Input: the text.
// Checks: the result is -1 or a length that the input can carry; decoded
// bytes encode back to text that decodes to the same bytes; every codec the
// processor supports gives the table codec's result and bytes.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "fuzz_support.h"
#include "mmcommon/base64.h"
#include "mmcommon/base64_internal.h"

namespace {

using Decoder = int (*)(char*, const char*, int);

// Decodes with one codec into its own exactly sized block and compares with
// what the public function gave.
void CompareCodec(Decoder decode, const char* text, int len, int expected,
                  const char* expected_bytes) {
  char* bytes = static_cast<char*>(std::malloc(modp_b64_decode_len(len)));
  int decoded = decode(bytes, text, len);
  fuzz::Check(decoded == expected, "every codec gives the same decoded length");
  if (decoded > 0) {
    fuzz::Check(std::memcmp(bytes, expected_bytes, decoded) == 0,
                "every codec gives the same bytes");
  }
  std::free(bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > (1u << 20)) return 0;
  const int len = static_cast<int>(size);
  // Exactly len bytes of input, exactly the documented room for the output:
  // heap blocks of those sizes put any overread or overwrite in a red zone.
  char* text = static_cast<char*>(std::malloc(size ? size : 1));
  std::memcpy(text, data, size);
  char* bytes = static_cast<char*>(std::malloc(modp_b64_decode_len(len)));

  int decoded = modp_b64_decode(bytes, text, len);
  if (len == 0) fuzz::Check(decoded == 0, "empty text decodes to nothing");
  if (len % 4 != 0) fuzz::Check(decoded == -1, "a length not a multiple of 4 is refused");
  namespace b64 = morvellanth::base64;
  CompareCodec(b64::decode_table, text, len, decoded, bytes);
#ifdef MMCOMMON_BASE64_X86
  if (b64::cpu_has_avx2()) CompareCodec(b64::decode_avx2, text, len, decoded, bytes);
  if (b64::cpu_has_avx512vbmi()) CompareCodec(b64::decode_avx512vbmi, text, len, decoded, bytes);
#endif
  if (decoded >= 0) {
    fuzz::Check(decoded <= 3 * (len / 4) && decoded >= 3 * (len / 4) - 2,
                "decoded length is 3 per group less the padding");
    // Encoding is canonical, decoding ignores the unused low bits of the last
    // group: re-encoding may differ from the text but must decode the same.
    char* again = static_cast<char*>(std::malloc(modp_b64_encode_len(decoded)));
    int encoded = modp_b64_encode(again, bytes, decoded);
    fuzz::Check(encoded == len, "re-encoding has the length of the text");
    char* round = static_cast<char*>(std::malloc(modp_b64_decode_len(encoded)));
    fuzz::Check(modp_b64_decode(round, again, encoded) == decoded, "re-decoding length");
    fuzz::Check(std::memcmp(round, bytes, decoded) == 0, "re-decoding gives the same bytes");
    std::free(round);
    std::free(again);
  }
  std::free(bytes);
  std::free(text);
  return 0;
}
