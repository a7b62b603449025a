// Deprecation reports: off unless asked for when first used, once per call
// site, and silent inside a suppression scope. Each case runs in a fresh child
// because the environment is read once per process.
#include <gtest/gtest.h>

#include <cstdlib>

#include "mmerr/capture.h"
#include "mmerr/mmerr.h"
#include "support/test_support.h"

namespace {

using mmfs_test::RunInChild;

void call_deprecated(const char* what) {
  mmlog_deprecation_warning("old_api.cpp", 17, what, "%s function is deprecated for %s\n", what,
                            "new_api");
}

TEST(Deprecation, SilentWithoutTheVariable) {
  auto child = RunInChild([] {
    unsetenv("MORVELLANTH_DEPRECATION_WARNING");
    call_deprecated("old_api");
    setenv("MORVELLANTH_DEPRECATION_WARNING", "1", 1);  // too late: read once
    call_deprecated("old_api");
    return 0;
  });
  EXPECT_EQ(child.exit_code, 0);
  EXPECT_EQ(child.err, "");
}

TEST(Deprecation, ReportsOncePerCallSite) {
  auto child = RunInChild([] {
    setenv("MORVELLANTH_DEPRECATION_WARNING", "", 1);
    for (int i = 0; i < 3; ++i) call_deprecated("old_api");
    mmlog_deprecation_warning("old_api.cpp", 18, "other", "plain\n");
    return 0;
  });
  EXPECT_EQ(child.err,
            "WARNING DEPRECATION for old_api (old_api.cpp:17): old_api function is deprecated "
            "for new_api\n"
            "WARNING DEPRECATION for other (old_api.cpp:18): plain\n");
}

TEST(Deprecation, SuppressionScopeDefersTheReport) {
  auto child = RunInChild([] {
    setenv("MORVELLANTH_DEPRECATION_WARNING", "1", 1);
    {
      MmerrSuppressDeprecation outer;
      {
        MmerrSuppressDeprecation inner;
        call_deprecated("old_api");
      }
      call_deprecated("old_api");
    }
    fputs("--\n", stderr);
    call_deprecated("old_api");
    call_deprecated("old_api");
    return 0;
  });
  EXPECT_EQ(child.err,
            "--\nWARNING DEPRECATION for old_api (old_api.cpp:17): old_api function is "
            "deprecated for new_api\n");
}

}  // namespace
