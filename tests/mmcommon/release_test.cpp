// The library's release identity.
#include "mmcommon/release.h"

#include <gtest/gtest.h>

TEST(ReleaseIdentity, NamesTheReleaseAndItsNumericVersion) {
  EXPECT_EQ(morvellanth::release_name(), "2025-4");
  EXPECT_EQ(morvellanth::kitbase_version(), 72125);
}
