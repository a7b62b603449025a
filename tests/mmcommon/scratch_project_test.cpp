// Scratch project paths: where they go, how they are named, the published
// pattern that recognises them, and the failure when no parent is configured.
#include "mmcommon/scratch_project.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QLocale>
#include <chrono>
#include <ctime>
#include <regex>
#include <stdexcept>
#include <string>

#include "support/test_support.h"

TEST(ScratchProject, FailsWhenTheParentIsNotConfigured) {
  mmfs_test::ScopedEnv unset("MORVELLANTH_TEMP_PROJECT");
  EXPECT_THAT([] { mmcommon_get_scratch_project_path(); },
              testing::ThrowsMessage<std::runtime_error>(
                  testing::StrEq("MORVELLANTH_TEMP_PROJECT environment variable is not set.")));
}

// Day, English month, year, hours and minutes, and seconds of the local time
// now, read from the same clock as the library's (time() may lag it).
static std::string Now() {
  const time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  char text[32];
  strftime(text, sizeof text, "%d%b%Y_%H%M_%S", localtime(&now));
  return text;
}

TEST(ScratchProject, NamesAnUncreatedDirectoryAfterTheLocalTimeInThePublishedPattern) {
  const std::string pattern = mmcommon_get_scratch_project_regular_expression();
  ASSERT_EQ(pattern, "Tmp_([0-2][0-9]|3[01])[A-za-z]{1,4}([1-9][0-9]{3})_([01][0-9]|2[0-3])"
                     "([0-5][0-9])_([0-5][0-9][0-9]{3})");
  mmfs_test::TempDir parent;
  mmfs_test::ScopedEnv variable("MORVELLANTH_TEMP_PROJECT", parent.path() + "/");
  // A program that set another language still gets English months.
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  const std::regex matcher(pattern);
  for (int i = 0; i < 200; ++i) {
    const std::string before = Now();
    const std::string path = mmcommon_get_scratch_project_path();
    const std::string name = path.substr(path.size() - 24);
    ASSERT_EQ(path, parent / name);  // one separator, however the parent ends
    ASSERT_TRUE(std::regex_match(name, matcher)) << name;
    ASSERT_TRUE(name.substr(4, 17) == before || name.substr(4, 17) == Now()) << name;
    ASSERT_FALSE(mmfs_test::PathExists(path));
  }
  QLocale::setDefault(QLocale::c());
}
