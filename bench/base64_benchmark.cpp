// Base64 on 1 MiB of random data: the codec modp_b64_encode/decode chose for
// this processor, each codec on its own, OpenSSL's EVP_EncodeBlock and
// EVP_DecodeBlock, and memcpy of the same bytes, in one run. After the table
// the ratios of the chosen codec against its peers are printed.
#include <benchmark/benchmark.h>
#include <openssl/evp.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "mmcommon/base64.h"
#include "mmcommon/base64_internal.h"

namespace {

namespace b64 = morvellanth::base64;
using CodecFunction = int (*)(char*, const char*, int);

constexpr int kDataSize = 1 << 20;

struct Buffers {
  std::vector<char> data;     // kDataSize random bytes
  std::vector<char> text;     // their encoding, NUL excluded
  std::vector<char> output;   // room for either direction
};

const Buffers& SharedBuffers() {
  static const Buffers buffers = [] {
    Buffers b;
    std::mt19937 random(1);
    b.data.resize(kDataSize);
    for (char& c : b.data) c = static_cast<char>(random());
    b.text.resize(modp_b64_encode_len(kDataSize));
    b.text.resize(static_cast<size_t>(b64::encode_table(b.text.data(), b.data.data(), kDataSize)));
    b.output.resize(b.text.size() + 64);
    return b;
  }();
  return buffers;
}

void Encode(benchmark::State& state, CodecFunction encode) {
  const Buffers& b = SharedBuffers();
  std::vector<char> out(b.output.size());
  for (auto _ : state) {
    benchmark::DoNotOptimize(encode(out.data(), b.data.data(), kDataSize));
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * kDataSize);
}

void Decode(benchmark::State& state, CodecFunction decode) {
  const Buffers& b = SharedBuffers();
  std::vector<char> out(b.output.size());
  for (auto _ : state) {
    // OpenSSL counts padding as zero bytes, so its result may be larger.
    if (decode(out.data(), b.text.data(), static_cast<int>(b.text.size())) < kDataSize)
      state.SkipWithError("decoding failed");
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * kDataSize);
}

int OpenSslEncode(char* dest, const char* src, int len) {
  return EVP_EncodeBlock(reinterpret_cast<unsigned char*>(dest),
                         reinterpret_cast<const unsigned char*>(src), len);
}

int OpenSslDecode(char* dest, const char* src, int len) {
  return EVP_DecodeBlock(reinterpret_cast<unsigned char*>(dest),
                         reinterpret_cast<const unsigned char*>(src), len);
}

// memcpy of kDataSize bytes (the binary side) or of the encoded text.
void Memcpy(benchmark::State& state, bool text) {
  const Buffers& b = SharedBuffers();
  const std::vector<char>& from = text ? b.text : b.data;
  std::vector<char> out(b.output.size());
  for (auto _ : state) {
    std::memcpy(out.data(), from.data(), from.size());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * kDataSize);
}

// Keeps the CPU time per iteration of every run for the ratios printed last
// (CPU time, as the machine may be shared and wall time then varies more).
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs)
      if (!run.error_occurred) seconds_[run.benchmark_name()] = run.GetAdjustedCPUTime();
    ConsoleReporter::ReportRuns(runs);
  }

  // How many times faster `mine` is than `peer`.
  void PrintRatio(const std::string& mine, const std::string& peer) const {
    auto a = seconds_.find(mine), b = seconds_.find(peer);
    if (a == seconds_.end() || b == seconds_.end() || a->second <= 0) return;
    std::printf("  %-28s %6.2fx %s\n", mine.c_str(), b->second / a->second, peer.c_str());
  }

 private:
  std::map<std::string, double> seconds_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const std::string active = b64::active_codec_name();
  std::map<std::string, CodecFunction> encoders = {{"table", b64::encode_table},
                                                   {"openssl", OpenSslEncode}};
  std::map<std::string, CodecFunction> decoders = {{"table", b64::decode_table},
                                                   {"openssl", OpenSslDecode}};
#ifdef MMCOMMON_BASE64_X86
  if (b64::cpu_has_avx2()) {
    encoders["avx2"] = b64::encode_avx2;
    decoders["avx2"] = b64::decode_avx2;
  }
  if (b64::cpu_has_avx512vbmi()) {
    encoders["avx512vbmi"] = b64::encode_avx512vbmi;
    decoders["avx512vbmi"] = b64::decode_avx512vbmi;
  }
#endif
  benchmark::RegisterBenchmark("Encode/modp_b64_encode", Encode, modp_b64_encode);
  for (const auto& [name, function] : encoders)
    benchmark::RegisterBenchmark(("Encode/" + name).c_str(), Encode, function);
  benchmark::RegisterBenchmark("Decode/modp_b64_decode", Decode, modp_b64_decode);
  for (const auto& [name, function] : decoders)
    benchmark::RegisterBenchmark(("Decode/" + name).c_str(), Decode, function);
  benchmark::RegisterBenchmark("Memcpy/binary_1MiB", Memcpy, false);
  benchmark::RegisterBenchmark("Memcpy/encoded_text", Memcpy, true);

  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);

  std::printf("\nChosen codec: %s. Throughput ratios on 1 MiB of data:\n", active.c_str());
  for (const char* direction : {"Encode/", "Decode/"}) {
    const std::string mine = std::string(direction) + active;
    for (const char* peer : {"table", "avx2", "openssl"})
      if (active != peer) reporter.PrintRatio(mine, std::string(direction) + peer);
    reporter.PrintRatio(mine, "Memcpy/binary_1MiB");
    reporter.PrintRatio(mine, "Memcpy/encoded_text");
  }
  benchmark::Shutdown();
  return 0;
}
