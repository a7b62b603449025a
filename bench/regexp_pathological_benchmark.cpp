// Patterns that make a naive backtracking matcher exponential in the subject
// length: alternations and nested repetitions that can split a run of one
// character in many ways, then fail at its end. Each case is timed for
// mm_regexec, the C library's regexec and RE2 on the same subjects; compare
// the rows of one pattern and length (mm / libc, mm / re2).
#include <regex.h>

#include <cstdlib>
#include <iterator>
#include <string>

#include "benchmark/benchmark.h"
#include "mmerr/mmerr.h"
#include "mmtoken/regexp.h"
#include "re2/re2.h"

namespace {

struct Case {
  const char* pattern;
  char filler;      // the subject is a run of this character ...
  const char* end;  // ... followed by this text
};

// Each run is followed by a character that stops every match inside the run,
// then by the literal that every match needs, so that no engine can rule the
// subject out by looking for that literal alone and every start position in
// the run must be tried and every way of splitting it ruled out.
const Case kCases[] = {
    {"(a|aa)*b", 'a', "!b"},           // alternation under a star
    {"(a+)+b", 'a', "!b"},             // nested quantifiers
    {"((a+)+)+c", 'a', "!c"},          // three levels of nesting
    {"(a|a)*b", 'a', "!b"},            // identical alternatives
    {"(.*)(.*)(.*)=x$", 'y', "=x!"},   // several greedy stars, failing at the end
    {"(x+x+)+y", 'x', "!y"},           // two pluses splitting one run
};

std::string Subject(const Case& c, int length) { return std::string(length, c.filler) + c.end; }

void SetLabel(benchmark::State& state, const Case& c) {
  state.SetLabel(c.pattern);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(1));
}

void BM_MmRegexec(benchmark::State& state) {
  const Case& c = kCases[state.range(0)];
  const std::string subject = Subject(c, static_cast<int>(state.range(1)));
  regexp* re = mm_regcomp(c.pattern);
  if (re == nullptr) {
    state.SkipWithError("mm_regcomp refused the pattern");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(mm_regexec(re, subject.c_str()));
  std::free(re);
  SetLabel(state, c);
}

void BM_LibcRegexec(benchmark::State& state) {
  const Case& c = kCases[state.range(0)];
  const std::string subject = Subject(c, static_cast<int>(state.range(1)));
  regex_t re;
  if (regcomp(&re, c.pattern, REG_EXTENDED | REG_NOSUB) != 0) {
    state.SkipWithError("regcomp refused the pattern");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(regexec(&re, subject.c_str(), 0, nullptr, 0));
  regfree(&re);
  SetLabel(state, c);
}

void BM_Re2PartialMatch(benchmark::State& state) {
  const Case& c = kCases[state.range(0)];
  const std::string subject = Subject(c, static_cast<int>(state.range(1)));
  RE2 re(c.pattern);
  if (!re.ok()) {
    state.SkipWithError("RE2 refused the pattern");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(RE2::PartialMatch(subject, re));
  SetLabel(state, c);
}

// Case index × run length: 32 characters already take a naive matcher
// billions of steps; 4096 is the size of subject the fuzzer feeds.
void Arguments(benchmark::internal::Benchmark* b) {
  for (int c = 0; c < static_cast<int>(std::size(kCases)); ++c)
    for (int length : {32, 256, 4096}) b->Args({c, length});
}

BENCHMARK(BM_MmRegexec)->Apply(Arguments);
BENCHMARK(BM_LibcRegexec)->Apply(Arguments);
BENCHMARK(BM_Re2PartialMatch)->Apply(Arguments);

}  // namespace

int main(int argc, char** argv) {
  mmerr_suppress_print(-1);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
