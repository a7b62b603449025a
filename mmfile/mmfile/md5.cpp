// MD5 digests through OpenSSL's digest interface.
#include "mmfile/md5.h"

#include <openssl/evp.h>

#include <cstdio>
#include <cstring>
#include <memory>

namespace {

struct ContextDeleter {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
using Context = std::unique_ptr<EVP_MD_CTX, ContextDeleter>;

Context start_md5() {
  Context context(EVP_MD_CTX_new());
  if (context && EVP_DigestInit_ex(context.get(), EVP_md5(), nullptr) != 1) context.reset();
  return context;
}

// Feeds the stream to the digest in blocks of `block` bytes; true when the
// whole stream was read and the digest finished.
bool digest_stream(unsigned char* digest, FILE* stream, std::size_t block) {
  Context context = start_md5();
  if (!context) return false;
  unsigned char buffer[1 << 16];
  std::size_t count;
  while ((count = fread(buffer, 1, block, stream)) > 0)
    if (EVP_DigestUpdate(context.get(), buffer, count) != 1) return false;
  if (ferror(stream)) return false;
  return EVP_DigestFinal_ex(context.get(), digest, nullptr) == 1;
}

}  // namespace

int mmfile_md5_string(unsigned char* digest, const char* text) {
  unsigned char computed[MMFILE_MD5_DIGEST_LENGTH] = {};
  Context context = start_md5();
  const bool ok = text && context && EVP_DigestUpdate(context.get(), text, strlen(text)) == 1 &&
                  EVP_DigestFinal_ex(context.get(), computed, nullptr) == 1;
  memcpy(digest, computed, MMFILE_MD5_DIGEST_LENGTH);
  return ok ? 0 : -1;
}

int mmfile_md5_file(unsigned char* digest, const char* path) {
  memset(digest, 0, MMFILE_MD5_DIGEST_LENGTH);
  FILE* stream = path ? fopen(path, "rb") : nullptr;
  if (!stream) return 1;
  // Large reads: the digest, not the copying, should set the pace.
  const bool ok = digest_stream(digest, stream, 1 << 16);
  fclose(stream);
  if (!ok) memset(digest, 0, MMFILE_MD5_DIGEST_LENGTH);
  return ok ? 0 : 1;
}

int mmfile_md5_filter(unsigned char* digest) {
  memset(digest, 0, MMFILE_MD5_DIGEST_LENGTH);
  if (!digest_stream(digest, stdin, 16)) memset(digest, 0, MMFILE_MD5_DIGEST_LENGTH);
  return 0;
}
