// The library's release identity.
#include "mmcommon/release.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "mmfile/mmfile.h"

namespace {

TEST(ReleaseIdentity, NamesTheRelease) {
  EXPECT_EQ(morvellanth::release_name(), "2025-4");
  // Built once: every call hands out the same string.
  EXPECT_EQ(&morvellanth::release_name(), &morvellanth::release_name());
}

TEST(ReleaseIdentity, AgreesWithTheFileSubsystem) {
  char* name = nullptr;
  ASSERT_EQ(mmfile_get_release_name(&name), 0);
  EXPECT_EQ(morvellanth::release_name(), name);
  std::free(name);
}

TEST(ReleaseIdentity, GivesTheNumericVersion) { EXPECT_EQ(morvellanth::kitbase_version(), 72125); }

}  // namespace
