// Base64 (standard alphabet A-Z a-z 0-9 + /, "=" padding) on caller-provided
// buffers; nothing is allocated. The fastest codec the processor supports is
// chosen once; every codec gives the same bytes and the same errors.
//
//   std::vector<char> text(modp_b64_encode_len(n));
//   int length = modp_b64_encode(text.data(), data, n);
#ifndef MMFILESHARED_MMCOMMON_BASE64_H
#define MMFILESHARED_MMCOMMON_BASE64_H

// Room encoding len bytes needs, terminating NUL included.
#define modp_b64_encode_len(len) (4 * (((len) + 2) / 3) + 1)
// Room decoding len characters may need: the decoder stores whole 32-bit
// words, so it can write one byte beyond the decoded data.
#define modp_b64_decode_len(len) (3 * ((len) / 4) + 1)

#ifdef __cplusplus
extern "C" {
#endif

// Encodes len bytes of src as 4 * ceil(len / 3) characters followed by a NUL;
// returns the number of characters (NUL excluded). dest must hold
// modp_b64_encode_len(len) characters. -1, with nothing written, for a
// negative len or one over 1,610,612,733 (its length would not fit an int).
int modp_b64_encode(char* dest, const char* src, int len);

// Decodes len characters; returns the number of bytes written, or -1 when len
// is not a multiple of 4 or a character is outside the alphabet ("=" counts
// only as one of the last two characters; line breaks are errors). len 0
// gives 0. The output is not NUL-terminated; dest must hold
// modp_b64_decode_len(len) bytes. After an error, the bytes decoded before
// the bad group stay in dest.
int modp_b64_decode(char* dest, const char* src, int len);

#ifdef __cplusplus
}
#endif

#endif  // MMFILESHARED_MMCOMMON_BASE64_H
