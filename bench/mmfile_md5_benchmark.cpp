// mmfile_md5_file on a 64 MiB file against one OpenSSL digest of the same
// bytes already in memory: the file form should cost little more than the
// digest itself.
#include <benchmark/benchmark.h>
#include <openssl/evp.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "mmfile/mmfile.h"

namespace {

constexpr std::size_t kFileBytes = 64u << 20;

// The bytes and the file holding them, made once per run.
struct Sample {
  std::vector<unsigned char> bytes;
  std::string path;
  Sample() : bytes(kFileBytes) {
    unsigned state = 12345;
    for (unsigned char& b : bytes) {
      state = state * 1103515245u + 12345u;
      b = static_cast<unsigned char>(state >> 24);
    }
    char model[] = "/tmp/mmfile_md5_bench.XXXXXX";
    const int fd = mkstemp(model);
    path = model;
    FILE* out = fdopen(fd, "wb");
    fwrite(bytes.data(), 1, bytes.size(), out);
    fclose(out);
  }
  ~Sample() { unlink(path.c_str()); }
};

Sample& sample() {
  static Sample instance;
  return instance;
}

void BM_Md5File_Mmfile(benchmark::State& state) {
  const std::string& path = sample().path;
  unsigned char digest[MMFILE_MD5_DIGEST_LENGTH];
  for (auto _ : state) {
    mmfile_md5_file(digest, path.c_str());
    benchmark::DoNotOptimize(digest);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kFileBytes);
}
BENCHMARK(BM_Md5File_Mmfile)->Unit(benchmark::kMillisecond);

void BM_Md5InMemory_OpenSslDigest(benchmark::State& state) {
  const std::vector<unsigned char>& bytes = sample().bytes;
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  for (auto _ : state) {
    EVP_Digest(bytes.data(), bytes.size(), digest, &length, EVP_md5(), nullptr);
    benchmark::DoNotOptimize(digest);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kFileBytes);
}
BENCHMARK(BM_Md5InMemory_OpenSslDigest)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
