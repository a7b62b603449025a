// The base64 codecs behind modp_b64_encode and modp_b64_decode, one per
// instruction set, each with the public contract. Exposed so that tests and
// benchmarks can compare them; callers use the public functions.
#ifndef MMFILESHARED_MMCOMMON_BASE64_INTERNAL_H
#define MMFILESHARED_MMCOMMON_BASE64_INTERNAL_H

#if defined(__x86_64__) || defined(__i386__)
#define MMCOMMON_BASE64_X86 1
#endif

#include <cstddef>

namespace morvellanth::base64 {

// Table codec: any processor; the vector codecs finish their tails with it.
int encode_table(char* dest, const char* src, int len);
int decode_table(char* dest, const char* src, int len);

// Finishes a vector decode that stopped after `in` characters and `out`
// bytes: the table codec decodes the rest, starting one group back, because
// it stores a whole word per group and so always writes the byte after the
// last group; going back makes it leave dest exactly as it would alone, at an
// error as well. Returns the decoder's result.
int decode_tail_table(char* dest, const char* src, std::size_t length, std::size_t in, std::size_t out);

#ifdef MMCOMMON_BASE64_X86
// 24 bytes (32 characters) per step; need AVX2.
int encode_avx2(char* dest, const char* src, int len);
int decode_avx2(char* dest, const char* src, int len);
// 48 bytes (64 characters) per step; need AVX-512 F, BW and VBMI.
int encode_avx512vbmi(char* dest, const char* src, int len);
int decode_avx512vbmi(char* dest, const char* src, int len);
#endif

// What the running processor supports (false off x86).
bool cpu_has_avx2();
bool cpu_has_avx512vbmi();

// Name of the codec the public functions use: "avx512vbmi", "avx2" or "table".
const char* active_codec_name();

}  // namespace morvellanth::base64

#endif  // MMFILESHARED_MMCOMMON_BASE64_INTERNAL_H
