// Splitting lines into token lists, beside the usual C and Abseil ways of
// cutting a line into owned strings:
//   - structure-file lines (80 columns): mmtoken_new + reading every token +
//     mmtoken_delete, against strtok_r + strdup of each token, and against
//     absl::StrSplit into std::string;
//   - one long line of N bytes holding N/10 tokens, N from 1 KiB to 1 MiB,
//     to show that the cost per byte does not grow with the line.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "absl/strings/str_split.h"
#include "absl/strings/string_view.h"
#include "mmtoken/mmtoken.h"

namespace {

// Atom records of a protein file and atom-block lines of a connection-table
// file, as such files hold them.
std::vector<std::string> StructureLines() {
  static const char* const kResidues[] = {"ALA", "GLY", "SER", "LYS", "ASP", "PHE", "HOH"};
  static const char* const kAtoms[] = {"N", "CA", "C", "O", "CB", "OG", "NZ"};
  std::vector<std::string> lines;
  char line[128];
  for (int i = 0; i < 1000; i++) {
    if (i % 2 == 0) {
      std::snprintf(line, sizeof line,
                    "ATOM  %5d  %-3s %3s A%4d    %8.3f%8.3f%8.3f  1.00%6.2f           %c",
                    i + 1, kAtoms[i % 7], kResidues[(i / 7) % 7], 1 + i / 7,
                    -20.0 + (i * 7 % 400) / 10.0, 5.0 + (i * 13 % 300) / 10.0,
                    -3.0 + (i * 17 % 200) / 10.0, 10.0 + (i % 50), kAtoms[i % 7][0]);
    } else {
      std::snprintf(line, sizeof line,
                    "%10.4f%10.4f%10.4f %-3s 0  0  0  0  0  0  0  0  0  0  0  0",
                    -1.5 + (i % 30) * 0.1, 2.25 - (i % 17) * 0.2, (i % 11) * 0.05,
                    kAtoms[i % 7]);
    }
    lines.emplace_back(line);
  }
  return lines;
}

void BM_StructureLines_MmtokenNewReadDelete(benchmark::State& state) {
  std::vector<std::string> lines = StructureLines();
  for (auto _ : state) {
    for (const std::string& line : lines) {
      int handle;
      mmtoken_new(&handle, line.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr);
      std::size_t total = 0;
      int count = mmtoken_num(handle);
      for (int i = 0; i < count; i++) total += std::strlen(mmtoken_get_token(handle, i));
      benchmark::DoNotOptimize(total);
      mmtoken_delete(handle);
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(lines.size()));
}
BENCHMARK(BM_StructureLines_MmtokenNewReadDelete);

void BM_StructureLines_StrtokRStrdup(benchmark::State& state) {
  std::vector<std::string> lines = StructureLines();
  std::vector<char*> tokens;
  tokens.reserve(64);
  for (auto _ : state) {
    for (const std::string& line : lines) {
      char* copy = strdup(line.c_str());
      char* save = nullptr;
      for (char* t = strtok_r(copy, " ,\t", &save); t != nullptr; t = strtok_r(nullptr, " ,\t", &save))
        tokens.push_back(strdup(t));
      std::size_t total = 0;
      for (char* t : tokens) total += std::strlen(t);
      benchmark::DoNotOptimize(total);
      for (char* t : tokens) std::free(t);
      tokens.clear();
      std::free(copy);
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(lines.size()));
}
BENCHMARK(BM_StructureLines_StrtokRStrdup);

void BM_StructureLines_AbslStrSplit(benchmark::State& state) {
  std::vector<std::string> lines = StructureLines();
  for (auto _ : state) {
    for (const std::string& line : lines) {
      std::vector<std::string> tokens =
          absl::StrSplit(line, absl::ByAnyChar(" ,\t"), absl::SkipEmpty());
      std::size_t total = 0;
      for (const std::string& t : tokens) total += t.size();
      benchmark::DoNotOptimize(total);
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(lines.size()));
}
BENCHMARK(BM_StructureLines_AbslStrSplit);

// One line of `bytes` bytes: tokens of nine characters and a blank.
void BM_LongLine_MmtokenNewDelete(benchmark::State& state) {
  std::size_t bytes = static_cast<std::size_t>(state.range(0));
  std::string line;
  line.reserve(bytes);
  for (std::size_t i = 0; line.size() + 10 <= bytes; i++)
    line += "tok" + std::to_string(100000 + i % 900000).substr(0, 6) + " ";
  line.resize(bytes, ' ');
  for (auto _ : state) {
    int handle;
    mmtoken_new(&handle, line.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr);
    benchmark::DoNotOptimize(mmtoken_num(handle));
    mmtoken_delete(handle);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
}
BENCHMARK(BM_LongLine_MmtokenNewDelete)->RangeMultiplier(4)->Range(1 << 10, 1 << 20);

}  // namespace

BENCHMARK_MAIN();
