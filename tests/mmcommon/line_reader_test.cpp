// fgets_safe: lines as fgets gives them, and reads that go on after being
// interrupted (EINTR) but not after other errors.
#include "mmcommon/line_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "support/test_support.h"

namespace {

TEST(FgetsSafe, ReadsLinesLikeFgets) {
  mmfs_test::TempDir dir;
  mmfs_test::WriteFile(dir / "lines.txt", "first line\nsecond\nlast without newline");
  FILE* file = fopen((dir / "lines.txt").c_str(), "r");
  ASSERT_NE(file, nullptr);
  char line[64];
  ASSERT_EQ(fgets_safe(line, sizeof line, file), line);
  EXPECT_STREQ(line, "first line\n");
  ASSERT_NE(fgets_safe(line, 5, file), nullptr);
  EXPECT_STREQ(line, "seco");  // cut at the buffer size as fgets does
  ASSERT_NE(fgets_safe(line, sizeof line, file), nullptr);
  EXPECT_STREQ(line, "nd\n");
  ASSERT_NE(fgets_safe(line, sizeof line, file), nullptr);
  EXPECT_STREQ(line, "last without newline");
  errno = EBADF;
  EXPECT_EQ(fgets_safe(line, sizeof line, file), nullptr);
  EXPECT_EQ(errno, 0) << "errno is cleared before each attempt";
  fclose(file);
}

// A stream whose first reads fail with a chosen errno, as a read interrupted
// by a signal does, before it yields its text.
struct FailingSource {
  int failures_left;
  int error;
  std::string text;
  size_t offset = 0;
  int reads = 0;
};

ssize_t ReadFailingSource(void* cookie, char* buffer, size_t size) {
  auto* source = static_cast<FailingSource*>(cookie);
  ++source->reads;
  if (source->failures_left > 0) {
    --source->failures_left;
    errno = source->error;
    return -1;
  }
  const size_t count = std::min(size, source->text.size() - source->offset);
  std::memcpy(buffer, source->text.data() + source->offset, count);
  source->offset += count;
  return static_cast<ssize_t>(count);
}

FILE* OpenFailingSource(FailingSource* source) {
  cookie_io_functions_t functions = {ReadFailingSource, nullptr, nullptr, nullptr};
  return fopencookie(source, "r", functions);
}

TEST(FgetsSafe, GoesOnAfterInterruptedReads) {
  FailingSource source{3, EINTR, "line after three interruptions\n"};
  FILE* stream = OpenFailingSource(&source);
  ASSERT_NE(stream, nullptr);
  char line[64];
  EXPECT_EQ(fgets_safe(line, sizeof line, stream), line);
  EXPECT_STREQ(line, "line after three interruptions\n");
  EXPECT_EQ(source.reads, 4);
  fclose(stream);
}

TEST(FgetsSafe, PlainFgetsGivesUpInTheSameSituation) {
  // Shows that the stream above does fail as an interrupted read does.
  FailingSource source{3, EINTR, "text\n"};
  FILE* stream = OpenFailingSource(&source);
  char line[64];
  EXPECT_EQ(fgets(line, sizeof line, stream), nullptr);
  EXPECT_EQ(errno, EINTR);
  fclose(stream);
}

TEST(FgetsSafe, StopsAtOtherErrors) {
  FailingSource source{1, EIO, "text\n"};
  FILE* stream = OpenFailingSource(&source);
  char line[64];
  EXPECT_EQ(fgets_safe(line, sizeof line, stream), nullptr);
  EXPECT_EQ(errno, EIO);
  EXPECT_EQ(source.reads, 1);
  fclose(stream);
}

}  // namespace
