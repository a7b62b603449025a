// Error handles and the dispatcher: numbering, thresholds, decoration,
// destinations and every bound of the fixed buffers.
#include "mmerr/mmerr.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "support/test_support.h"

namespace {

using mmfs_test::RunInChild;

// A handle writing to an in-memory stream, read back as a string.
class StreamHandle {
 public:
  StreamHandle() {
    stream_ = open_memstream(&data_, &size_);
    EXPECT_EQ(mmerr_new(&handle_), 1);
    EXPECT_EQ(mmerr_file(handle_, stream_), 1);
  }
  ~StreamHandle() {
    mmerr_delete(handle_);
    fclose(stream_);
    free(data_);
  }
  int handle() const { return handle_; }
  std::string text() {
    fflush(stream_);
    return std::string(data_, size_);
  }

 private:
  int handle_ = -1;
  FILE* stream_ = nullptr;
  char* data_ = nullptr;
  size_t size_ = 0;
};

TEST(MmerrHandles, ReusesLowestFreeHandle) {
  std::vector<int> handles(5);
  for (int& h : handles) ASSERT_EQ(mmerr_new(&h), 1);
  for (size_t i = 1; i < handles.size(); ++i) EXPECT_EQ(handles[i], handles[i - 1] + 1);
  mmerr_delete(handles[3]);
  mmerr_delete(handles[1]);
  int reused = 0;
  ASSERT_EQ(mmerr_new(&reused), 1);
  EXPECT_EQ(reused, handles[1]);
  ASSERT_EQ(mmerr_new(&reused), 1);
  EXPECT_EQ(reused, handles[3]);
  for (int h : handles) mmerr_delete(h);
}

TEST(MmerrHandles, FreshHandlePrintsNowhereButCountsLevels) {
  int handle;
  ASSERT_EQ(mmerr_new(&handle), 1);
  ASSERT_GE(handle, 1);
  int level = 0, maxlevel = 0, printing = 0;
  EXPECT_EQ(mmerr_get_level(handle, &level), 1);
  EXPECT_EQ(level, 4);
  EXPECT_EQ(mmerr_maxlevel(handle, &maxlevel), 1);
  EXPECT_EQ(maxlevel, 1);
  EXPECT_EQ(mmerr_print_state(handle, &printing), 1);
  EXPECT_EQ(printing, 1);
  EXPECT_EQ(mmerr_throw(handle, 5, "nowhere\n"), 1);
  EXPECT_EQ(mmerr_maxlevel(handle, &maxlevel), 1);
  EXPECT_EQ(maxlevel, 5);
  mmerr_delete(handle);
}

TEST(MmerrHandles, InvalidHandlesFailSilently) {
  auto child = RunInChild([] {
    int value = 0;
    int failures = 0;
    for (int handle : {-2, 999, 1}) {  // handle 1 was never made in this child
      failures += mmerr_level(handle, 3) == 0;
      failures += mmerr_get_level(handle, &value) == 0;
      failures += mmerr_maxlevel(handle, &value) == 0;
      failures += mmerr_errclear(handle) == 0;
      failures += mmerr_file(handle, stderr) == 0;
      failures += mmerr_window(handle, nullptr) == 0;
      failures += mmerr_prefix(handle, "P") == 0;
      failures += mmerr_suppress_print(handle) == 0;
      failures += mmerr_restore_print(handle) == 0;
      failures += mmerr_print_state(handle, &value) == 0;
      failures += mmerr_throw(handle, 5, "lost\n") == 0;
      mmerr_delete(handle);
    }
    return failures == 33 ? 0 : 1;
  });
  EXPECT_TRUE(child.exited);
  EXPECT_EQ(child.exit_code, 0);
  EXPECT_EQ(child.err, "");
  EXPECT_EQ(child.out, "");
}

TEST(MmerrHandles, BuiltInHandlesCannotBeDeleted) {
  auto child = RunInChild([] {
    mmerr_delete(0);
    mmerr_delete(-1);
    int level = 0;
    return mmerr_get_level(0, &level) == 1 && mmerr_get_level(-1, &level) == 1 ? 0 : 1;
  });
  EXPECT_EQ(child.exit_code, 0);
  EXPECT_EQ(child.err,
            "WARNING Default handler can not be deleted.\n"
            "WARNING Default handler can not be deleted.\n");
}

TEST(MmerrDispatch, DecoratesWithPrefixAndLevelWord) {
  StreamHandle h;
  ASSERT_EQ(mmerr_prefix(h.handle(), "MYPROG: "), 1);
  EXPECT_EQ(mmerr_throw(h.handle(), 4, "cannot open %s (%d)\n", "x.mae", 2), 1);
  EXPECT_EQ(mmerr_throw(h.handle(), 5, "no newline"), 1);
  EXPECT_EQ(h.text(), "MYPROG: WARNING cannot open x.mae (2)\nMYPROG: FATAL no newline");
}

TEST(MmerrDispatch, ThresholdDropsButRecordsLevel) {
  StreamHandle h;
  EXPECT_EQ(mmerr_throw(h.handle(), 2, "debug\n"), 1);
  int maxlevel = 0;
  mmerr_maxlevel(h.handle(), &maxlevel);
  EXPECT_EQ(maxlevel, 2);
  EXPECT_EQ(h.text(), "");
  EXPECT_EQ(mmerr_level(h.handle(), 6), 1);
  EXPECT_EQ(mmerr_throw(h.handle(), 5, "silenced by OFF\n"), 1);
  EXPECT_EQ(h.text(), "");
  mmerr_maxlevel(h.handle(), &maxlevel);
  EXPECT_EQ(maxlevel, 5);
  EXPECT_EQ(mmerr_errclear(h.handle()), 1);
  mmerr_maxlevel(h.handle(), &maxlevel);
  EXPECT_EQ(maxlevel, 1);
}

TEST(MmerrDispatch, UndefinedLevelsPrintButNeverRaiseMaxlevel) {
  StreamHandle h;
  mmerr_throw(h.handle(), 7, "seven\n");
  mmerr_throw(h.handle(), 8, "eight\n");
  mmerr_throw(h.handle(), -1, "negative\n");  // unsigned: above every threshold
  int maxlevel = 0;
  mmerr_maxlevel(h.handle(), &maxlevel);
  EXPECT_EQ(maxlevel, 1);
  EXPECT_EQ(h.text(),
            "LEVEL UNDEFINED seven\nLEVEL UNDEFINED eight\nLEVEL UNDEFINED negative\n");
}

TEST(MmerrDispatch, CutsMessagesAtBufferSize) {
  StreamHandle h;
  ASSERT_EQ(mmerr_prefix(h.handle(), std::string(511, 'p').c_str()), 1);
  std::string huge(3 * MMERR_MESSAGE_BUFFER_SIZE, 'm');
  EXPECT_EQ(mmerr_throw(h.handle(), 4, "%s", huge.c_str()), 1);
  std::string text = h.text();
  ASSERT_EQ(text.size(), static_cast<size_t>(MMERR_MESSAGE_BUFFER_SIZE - 1));
  EXPECT_EQ(text.substr(0, 511 + 8), std::string(511, 'p') + "WARNING ");
  EXPECT_EQ(text.find_first_not_of('m', 511 + 8), std::string::npos);
}

TEST(MmerrDispatch, OverlongPrefixIsRefusedAndLeavesNone) {
  StreamHandle h;
  ASSERT_EQ(mmerr_prefix(h.handle(), "OLD: "), 1);
  EXPECT_EQ(mmerr_prefix(h.handle(), std::string(512, 'x').c_str()), 0);
  EXPECT_EQ(mmerr_prefix(h.handle(), nullptr), 0);
  mmerr_throw(h.handle(), 4, "plain\n");
  EXPECT_EQ(h.text(), "WARNING plain\n");
}

std::vector<std::string> window_calls;
int record_window(const char* text) {
  window_calls.push_back(text);
  return 0;
}
int failing_window(const char*) { return -1; }

TEST(MmerrDispatch, WindowSeesPrintedMessagesOnly) {
  StreamHandle h;
  window_calls.clear();
  mmerr_window(h.handle(), record_window);
  mmerr_throw(h.handle(), 4, "one\n");
  mmerr_suppress_print(h.handle());
  int printing = 1;
  mmerr_print_state(h.handle(), &printing);
  EXPECT_EQ(printing, 0);
  mmerr_throw(h.handle(), 4, "two\n");
  mmerr_restore_print(h.handle());
  EXPECT_EQ(window_calls, std::vector<std::string>{"WARNING one\n"});
  EXPECT_EQ(h.text(), "WARNING one\n");
  mmerr_window(h.handle(), failing_window);
  EXPECT_EQ(mmerr_throw(h.handle(), 4, "three\n"), 0);
  mmerr_window(h.handle(), nullptr);
  EXPECT_EQ(mmerr_throw(h.handle(), 4, "four\n"), 1);
}

TEST(MmerrDispatch, NullFileTurnsPrintingOff) {
  StreamHandle h;
  mmerr_file(h.handle(), nullptr);
  EXPECT_EQ(mmerr_throw(h.handle(), 5, "gone\n"), 1);
  EXPECT_EQ(h.text(), "");
}

TEST(MmerrDispatch, DefaultHandleWritesToStandardError) {
  auto child = RunInChild([] {
    mmerr_throw(-1, 3, "below threshold\n");
    mmerr_throw(-1, 4, "warned %d\n", 1);
    return 0;
  });
  EXPECT_EQ(child.err, "WARNING warned 1\n");
}

TEST(MmerrReturnCode, NamesEveryLevel) {
  const char* expected[] = {"MMERR_BUMMER", "MMERR_OK",    "MMERR_DEBUG",
                            "MMERR_INFO",   "MMERR_WARNING", "MMERR_FATAL",
                            "MMERR_OFF",    "MMERR_LEVEL UNDEFINED"};
  for (int level = 0; level < 8; ++level)
    EXPECT_STREQ(mmerr_return_code(level), expected[level]);
  EXPECT_STREQ(mmerr_return_code(8), "(bogus MMERR level)");
  EXPECT_STREQ(mmerr_return_code(-1), "(bogus MMERR level)");
}

TEST(MmerrReturnCode, KeepsTenResultsInRotation) {
  char* first = mmerr_return_code(4);
  std::vector<char*> held;
  for (int i = 0; i < 9; ++i) held.push_back(mmerr_return_code(1));
  EXPECT_STREQ(first, "MMERR_WARNING");
  char* eleventh = mmerr_return_code(5);
  EXPECT_EQ(eleventh, first);
  EXPECT_STREQ(first, "MMERR_FATAL");
}

TEST(MmerrAssert, ReportsOnlyFalseConditions) {
  auto child = RunInChild([] {
    mmerr_assert(1, "kept.c", 1);
    mmerr_assert(0, "file.c", 42);
    return 0;
  });
  EXPECT_EQ(child.exit_code, 0);
  EXPECT_EQ(child.err, "Assert failed.  File: file.c  Line: 42\n");
}

}  // namespace
