// Helpers shared by the fuzz targets: splitting an input into NUL-separated
// text fields, silencing the library's reports (formatting still runs, only
// the printing is off) and failing loudly when a checked property breaks.
#ifndef MMFILESHARED_FUZZ_FUZZ_SUPPORT_H
#define MMFILESHARED_FUZZ_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "mmerr/mmerr.h"

namespace fuzz {

// The input cut at every NUL byte, at most `max_fields` fields; the last field
// keeps any further NULs cut off (C strings end there anyway).
inline std::vector<std::string> SplitFields(const uint8_t* data, size_t size,
                                            size_t max_fields) {
  std::vector<std::string> fields(1);
  for (size_t i = 0; i < size; ++i) {
    if (data[i] == '\0') {
      if (fields.size() == max_fields) break;
      fields.emplace_back();
    } else {
      fields.back().push_back(static_cast<char>(data[i]));
    }
  }
  return fields;
}

// Messages on the default handle are formatted as usual but not printed: a
// fuzzer that writes a warning per run spends its time in the terminal.
inline void SilenceHandle(int handle) { mmerr_suppress_print(handle); }

// Aborts with a message when a property that must hold for every input fails;
// libFuzzer keeps the input as a crash reproducer.
[[noreturn]] inline void Fail(const char* what) {
  std::fprintf(stderr, "fuzz check failed: %s\n", what);
  std::abort();
}

inline void Check(bool condition, const char* what) {
  if (!condition) Fail(what);
}

}  // namespace fuzz

#endif  // MMFILESHARED_FUZZ_FUZZ_SUPPORT_H
