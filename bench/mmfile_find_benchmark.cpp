// mmfile_find of a name that only the 20th of 20 search-path directories
// holds, against a plain stat loop over the same 20 ready-made candidates.
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "mmfile/mmfile.h"

namespace {

constexpr int kDirectories = 20;
constexpr const char* kName = "target.dat";

// Twenty directories, the name in the last one, and the search path set to
// them in order.
struct Tree {
  std::string root;
  std::vector<std::string> candidates;
  Tree() {
    char model[] = "/tmp/mmfile_find_bench.XXXXXX";
    root = mkdtemp(model);
    std::string path;
    for (int i = 0; i < kDirectories; ++i) {
      const std::string dir = root + "/dir" + std::to_string(i);
      mkdir(dir.c_str(), 0755);
      candidates.push_back(dir + "/" + kName);
      path += (i ? ":" : "") + dir;
    }
    FILE* file = fopen(candidates.back().c_str(), "w");
    fclose(file);
    mmfile_path_set(path.c_str());
  }
  ~Tree() { std::filesystem::remove_all(root); }
};

Tree& tree() {
  static Tree instance;
  return instance;
}

void BM_FindInTwentiethDirectory_Mmfile(benchmark::State& state) {
  tree();
  for (auto _ : state) {
    char* path = nullptr;
    mmfile_find(kName, 0, &path);
    benchmark::DoNotOptimize(path);
    free(path);
  }
}
BENCHMARK(BM_FindInTwentiethDirectory_Mmfile);

void BM_FindInTwentiethDirectory_StatLoop(benchmark::State& state) {
  const std::vector<std::string>& candidates = tree().candidates;
  for (auto _ : state) {
    const std::string* found = nullptr;
    for (const std::string& candidate : candidates) {
      struct stat st;
      if (stat(candidate.c_str(), &st) == 0 && S_ISREG(st.st_mode)) {
        found = &candidate;
        break;
      }
    }
    benchmark::DoNotOptimize(found);
  }
}
BENCHMARK(BM_FindInTwentiethDirectory_StatLoop);

}  // namespace

BENCHMARK_MAIN();
