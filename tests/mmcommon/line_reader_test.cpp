// fgets_safe: reads go on after being interrupted (EINTR) but not after
// other errors.
#include "mmcommon/line_reader.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <string>

// A stream whose first three reads fail with failing_errno, as reads
// interrupted by a signal do, and whose later reads give one line.
static int failing_errno = 0, reads = 0;
static ssize_t ReadAfterThreeFailures(void*, char* buffer, size_t size) {
  errno = ++reads <= 3 ? failing_errno : 0;
  return errno != 0 ? -1 : static_cast<ssize_t>(std::string("line\n").copy(buffer, size));
}

TEST(FgetsSafe, RetriesInterruptedReadsOnly) {
  char line[16];
  for (int error : {EINTR, EIO}) {
    failing_errno = error;
    reads = 0;
    FILE* stream = fopencookie(nullptr, "r", {ReadAfterThreeFailures, nullptr, nullptr, nullptr});
    const char* result = fgets_safe(line, sizeof line, stream);
    EXPECT_EQ(errno, error == EINTR ? 0 : EIO);
    fclose(stream);
    EXPECT_STREQ(result, error == EINTR ? "line\n" : nullptr);
  }
}
