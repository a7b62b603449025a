// Capture of a handle's messages into strings, and its restoring rules.
#include "mmerr/capture.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <utility>

#include "mmerr/mmerr.h"
#include "support/test_support.h"

namespace {

using morvellanth::mmlibs::CaptureMMErr;

class CaptureTest : public ::testing::Test {
 protected:
  void SetUp() override {
    stream_ = open_memstream(&data_, &size_);
    ASSERT_EQ(mmerr_new(&handle_), 1);
    mmerr_file(handle_, stream_);
  }
  void TearDown() override {
    mmerr_delete(handle_);
    fclose(stream_);
    free(data_);
  }
  std::string printed() {
    fflush(stream_);
    return std::string(data_, size_);
  }
  bool printing() {
    int state = -1;
    mmerr_print_state(handle_, &state);
    return state == 1;
  }
  int handle_ = -1;
  FILE* stream_ = nullptr;
  char* data_ = nullptr;
  size_t size_ = 0;
};

TEST_F(CaptureTest, CollectsInsteadOfPrintingAndClearsOnRead) {
  CaptureMMErr capture(handle_);
  mmerr_throw(handle_, 4, "first %d\n", 1);
  mmerr_throw(handle_, 5, "second\n");
  mmerr_throw(handle_, 2, "below threshold\n");
  EXPECT_EQ(capture.getMessages(), "WARNING first 1\nFATAL second\n");
  int maxlevel = 0;
  mmerr_maxlevel(handle_, &maxlevel);
  EXPECT_EQ(maxlevel, 1);
  EXPECT_EQ(capture.getMessages(), "");
  EXPECT_EQ(printed(), "");
}

TEST_F(CaptureTest, RestorePrintsAgainAndKeepsTheMessages) {
  CaptureMMErr capture(handle_);
  mmerr_throw(handle_, 4, "kept\n");
  capture.restore();
  capture.restore();
  EXPECT_TRUE(printing());
  mmerr_throw(handle_, 4, "printed\n");
  EXPECT_EQ(printed(), "WARNING printed\n");
  EXPECT_EQ(capture.getMessages(), "WARNING kept\n");
  EXPECT_EQ(capture.getMessages(), "WARNING kept\n");
}

TEST_F(CaptureTest, SuppressedHandleStaysSuppressed) {
  mmerr_suppress_print(handle_);
  {
    CaptureMMErr capture(handle_);
    mmerr_throw(handle_, 4, "x\n");
  }
  EXPECT_FALSE(printing());
}

TEST_F(CaptureTest, OuterCaptureGetsItsBufferBack) {
  CaptureMMErr outer(handle_);
  mmerr_throw(handle_, 4, "outer\n");
  {
    CaptureMMErr inner(handle_);
    mmerr_throw(handle_, 4, "inner\n");
    EXPECT_EQ(inner.getMessages(), "WARNING inner\n");
  }
  mmerr_throw(handle_, 4, "outer again\n");
  EXPECT_EQ(outer.getMessages(), "WARNING outer\nWARNING outer again\n");
}

TEST_F(CaptureTest, DetailsAndDefaults) {
  CaptureMMErr capture(handle_);
  EXPECT_EQ(capture.addMessagesAsDetails("Open failed"), "Open failed");
  EXPECT_EQ(capture.getMessagesOrDefault("nothing said"), "nothing said");
  mmerr_throw(handle_, 4, "no such file\n");
  EXPECT_EQ(capture.addMessagesAsDetails("Open failed"),
            "Open failed:\n WARNING no such file\n");
}

TEST_F(CaptureTest, MovedFromCaptureRestoresNothing) {
  CaptureMMErr* original = new CaptureMMErr(handle_);
  CaptureMMErr moved(std::move(*original));
  delete original;  // bound to no handle: must not restore printing
  EXPECT_FALSE(printing());
  mmerr_throw(handle_, 4, "still captured\n");
  moved.restore();
  EXPECT_TRUE(printing());
  EXPECT_EQ(moved.getMessages(), "WARNING still captured\n");
  EXPECT_EQ(printed(), "");
}

TEST_F(CaptureTest, MoveAssignmentAbandonsTheTargetsCapture) {
  int other;
  ASSERT_EQ(mmerr_new(&other), 1);
  {
    CaptureMMErr target(other);
    CaptureMMErr source(handle_);
    target = std::move(source);
    target.restore();
    EXPECT_TRUE(printing());
  }
  int state = -1;
  mmerr_print_state(other, &state);
  EXPECT_EQ(state, 0) << "the abandoned capture is never restored";
  mmerr_delete(other);
}

TEST(CaptureErrors, InvalidHandleThrowsItsNumber) {
  int top;
  ASSERT_EQ(mmerr_new(&top), 1);
  try {
    CaptureMMErr capture(top + 1);
    FAIL() << "no exception";
  } catch (const std::out_of_range& error) {
    EXPECT_EQ(std::string(error.what()), "Invalid mmerr handle: " + std::to_string(top + 1));
  }
  mmerr_delete(top);
}

}  // namespace
