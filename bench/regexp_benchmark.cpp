// mm_regexec against the C library's regexec (REG_EXTENDED | REG_NOSUB), RE2
// and std::regex, each deciding yes or no for 100,000 generated file and
// directory names: the product-directory filter and wildcard patterns as
// mmtoken_regex_compile translates them.
#include <regex.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <re2/re2.h>

#include "mmtoken/regexp.h"

namespace {

// Names as an installation root and a project folder hold them.
const std::vector<std::string>& Names() {
  static const std::vector<std::string> names = [] {
    static const char* const kStems[] = {"kitbase", "panoply", "tess", "ravine", "ligand",
                                         "protein_prep", "receptor", "job", "glide_grid"};
    static const char* const kSuffixes[] = {".mae", ".maegz", ".sdf", ".log", ".pdb", ".out",
                                            "", ".csv"};
    std::mt19937 engine(7);
    auto random = [&engine] { return static_cast<unsigned>(engine()); };
    std::vector<std::string> out;
    out.reserve(100000);
    char name[96];
    for (int i = 0; i < 100000; i++) {
      const char* stem = kStems[random() % 9];
      switch (random() % 4) {
        case 0:
          std::snprintf(name, sizeof name, "%s-v%u.%u", stem, 1 + random() % 20,
                        random() % 10);
          break;
        case 1:
          std::snprintf(name, sizeof name, "%s-v%u", stem, 1 + random() % 20);
          break;
        default:
          std::snprintf(name, sizeof name, "%s_%05u%s", stem, random() % 100000,
                        kSuffixes[random() % 8]);
          break;
      }
      out.emplace_back(name);
    }
    return out;
  }();
  return names;
}

// Patterns every engine reads the same way.
const char* const kPatterns[] = {
    "^kitbase-v[0-9]+(.[0-9]+)?$",  // product-directory filter
    "^.*\\.mae",                    // wildcard *.mae
    "^lig.*_[0-9][0-9].*\\.sdf",    // wildcard lig*_##*.sdf
    "^.....-v[0-9]",                // wildcard ?????-v#
};

void BM_Names_MmRegexec(benchmark::State& state) {
  regexp* re = mm_regcomp(kPatterns[state.range(0)]);
  const std::vector<std::string>& names = Names();
  for (auto _ : state) {
    int matched = 0;
    for (const std::string& name : names) matched += mm_regexec(re, name.c_str());
    benchmark::DoNotOptimize(matched);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(names.size()));
  std::free(re);
}
BENCHMARK(BM_Names_MmRegexec)->DenseRange(0, 3);

void BM_Names_PosixRegexec(benchmark::State& state) {
  regex_t re;
  regcomp(&re, kPatterns[state.range(0)], REG_EXTENDED | REG_NOSUB);
  const std::vector<std::string>& names = Names();
  for (auto _ : state) {
    int matched = 0;
    for (const std::string& name : names) matched += regexec(&re, name.c_str(), 0, nullptr, 0) == 0;
    benchmark::DoNotOptimize(matched);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(names.size()));
  regfree(&re);
}
BENCHMARK(BM_Names_PosixRegexec)->DenseRange(0, 3);

void BM_Names_Re2PartialMatch(benchmark::State& state) {
  RE2 re(kPatterns[state.range(0)]);
  const std::vector<std::string>& names = Names();
  for (auto _ : state) {
    int matched = 0;
    for (const std::string& name : names) matched += RE2::PartialMatch(name, re);
    benchmark::DoNotOptimize(matched);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(names.size()));
}
BENCHMARK(BM_Names_Re2PartialMatch)->DenseRange(0, 3);

void BM_Names_StdRegexSearch(benchmark::State& state) {
  std::regex re(kPatterns[state.range(0)], std::regex::extended | std::regex::nosubs);
  const std::vector<std::string>& names = Names();
  for (auto _ : state) {
    int matched = 0;
    for (const std::string& name : names) matched += std::regex_search(name, re);
    benchmark::DoNotOptimize(matched);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(names.size()));
}
BENCHMARK(BM_Names_StdRegexSearch)->DenseRange(0, 3);

// All four engines must agree on every name, or the comparison means nothing.
bool EnginesAgree() {
  for (const char* pattern : kPatterns) {
    regexp* mine = mm_regcomp(pattern);
    regex_t posix;
    regcomp(&posix, pattern, REG_EXTENDED | REG_NOSUB);
    RE2 re2(pattern);
    std::regex standard(pattern, std::regex::extended | std::regex::nosubs);
    int counts[4] = {0, 0, 0, 0};
    for (const std::string& name : Names()) {
      counts[0] += mm_regexec(mine, name.c_str());
      counts[1] += regexec(&posix, name.c_str(), 0, nullptr, 0) == 0;
      counts[2] += RE2::PartialMatch(name, re2);
      counts[3] += std::regex_search(name, standard);
    }
    std::free(mine);
    regfree(&posix);
    std::fprintf(stderr, "%-30s matches %d / %d / %d / %d of %zu\n", pattern, counts[0],
                 counts[1], counts[2], counts[3], Names().size());
    if (counts[0] != counts[1] || counts[0] != counts[2] || counts[0] != counts[3]) return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (!EnginesAgree()) {
    std::fprintf(stderr, "the engines disagree\n");
    return 1;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
