// Scoped objects over the handles: capture of a handle's messages into
// strings, and deprecation reports (once per call site, silent inside a
// suppression scope). Deprecation cases run in fresh children because the
// environment is read once per process.
#include "mmerr/capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "memory_handle.h"
#include "support/test_support.h"

using morvellanth::mmlibs::CaptureMMErr;

TEST(Capture, CollectsInsteadOfPrintingAndClearsOnRead) {
  MemoryHandle h;
  CaptureMMErr capture(h.handle);
  EXPECT_EQ(capture.addMessagesAsDetails("Open failed"), "Open failed");
  mmerr_throw(h.handle, 4, "first %d\n", 1);
  mmerr_throw(h.handle, 5, "second\n");
  EXPECT_EQ(capture.getMessages(), "WARNING first 1\nFATAL second\n");
  int maxlevel = 0;
  mmerr_maxlevel(h.handle, &maxlevel);
  EXPECT_EQ(maxlevel, 1);
  EXPECT_EQ(capture.getMessages(), "");
  mmerr_throw(h.handle, 4, "no such file\n");
  EXPECT_EQ(capture.addMessagesAsDetails("Open failed"), "Open failed:\n WARNING no such file\n");
  EXPECT_EQ(h.text(), "");
}

TEST(Capture, RestoreGivesBackTheEarlierStateOnceAndKeepsTheMessages) {
  MemoryHandle h;
  auto original = std::make_unique<CaptureMMErr>(h.handle);
  CaptureMMErr capture(std::move(*original));
  original.reset();  // moved from: restores nothing
  mmerr_throw(h.handle, 4, "kept\n");
  capture.restore();
  capture.restore();
  mmerr_throw(h.handle, 4, "printed\n");
  EXPECT_EQ(capture.getMessages(), "WARNING kept\n");
  EXPECT_EQ(capture.getMessages(), "WARNING kept\n");
  mmerr_suppress_print(h.handle);
  CaptureMMErr(h.handle).restore();
  mmerr_throw(h.handle, 4, "still suppressed\n");
  EXPECT_EQ(h.text(), "WARNING printed\n");
}

TEST(Capture, UnknownHandleThrowsItsNumber) {
  EXPECT_THAT([] { CaptureMMErr capture(4242); }, testing::ThrowsMessage<std::out_of_range>(
                                                       testing::StrEq("Invalid mmerr handle: 4242")));
}

static void CallDeprecated() {
  mmlog_deprecation_warning("old_api.cpp", 17, "old_api", "%s function is deprecated for %s\n",
                            "old_api", "new_api");
}

// Standard error of a fresh child that calls deprecated functions in and out
// of suppression scopes, with the variable set or not at the first call.
static std::string DeprecationReports(bool enabled) {
  return mmfs_test::RunInChild([enabled] {
           enabled ? setenv("MORVELLANTH_DEPRECATION_WARNING", "", 1)
                   : unsetenv("MORVELLANTH_DEPRECATION_WARNING");
           mmlog_deprecation_warning("old_api.cpp", 18, "other", "plain\n");
           setenv("MORVELLANTH_DEPRECATION_WARNING", "1", 1);  // too late: read once
           {
             MmerrSuppressDeprecation suppressed;
             CallDeprecated();
           }
           fputs("--\n", stderr);
           for (int i = 0; i < 3; ++i) CallDeprecated();
           return 0;
         }).err;
}

TEST(Deprecation, ReportsOncePerCallSiteOutsideSuppressionScopesWhenAskedFor) {
  EXPECT_EQ(DeprecationReports(false), "--\n");
  EXPECT_EQ(DeprecationReports(true),
            "WARNING DEPRECATION for other (old_api.cpp:18): plain\n--\n"
            "WARNING DEPRECATION for old_api (old_api.cpp:17): old_api function is deprecated "
            "for new_api\n");
}
