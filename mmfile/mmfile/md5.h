// MD5 digests of a string, a file and standard input, delivered as the 16 raw
// bytes (not as text) into the caller's array.
//
//   unsigned char digest[MMFILE_MD5_DIGEST_LENGTH];
//   if (mmfile_md5_file(digest, path) == 0) compare(digest, expected);
#ifndef MMFILESHARED_MMFILE_MD5_H
#define MMFILESHARED_MMFILE_MD5_H

#define MMFILE_MD5_DIGEST_LENGTH 16

#ifdef __cplusplus
extern "C" {
#endif

// Digest of the text's bytes (without its NUL); 0, or -1 (zeros) for null.
int mmfile_md5_string(unsigned char* digest, const char* text);
// Digest of the file's bytes; 1 and 16 zero bytes when it cannot be opened.
int mmfile_md5_file(unsigned char* digest, const char* path);
// Digest of everything on standard input up to its end; 0.
int mmfile_md5_filter(unsigned char* digest);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // MMFILESHARED_MMFILE_MD5_H
