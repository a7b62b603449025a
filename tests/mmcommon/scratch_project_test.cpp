// Scratch project paths: where they go, how they are named, the published
// pattern that recognises them, and the failure when no parent is configured.
#include "mmcommon/scratch_project.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <clocale>
#include <regex>
#include <stdexcept>
#include <string>

#include "support/test_support.h"

namespace {

using mmfs_test::ScopedEnv;

const char kPattern[] =
    "Tmp_([0-2][0-9]|3[01])[A-za-z]{1,4}([1-9][0-9]{3})_([01][0-9]|2[0-3])([0-5][0-9])_"
    "([0-5][0-9][0-9]{3})";

std::string NameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

TEST(ScratchProjectPattern, IsThePublishedTextExactly) {
  const std::string pattern = mmcommon_get_scratch_project_regular_expression();
  EXPECT_EQ(pattern, kPattern);
  EXPECT_EQ(pattern.size(), 102u);
}

TEST(ScratchProjectPattern, CapturesDayYearHourMinuteAndSeconds) {
  const std::regex pattern(mmcommon_get_scratch_project_regular_expression());
  std::smatch groups;
  const std::string name = "Tmp_05Mar2025_1430_07123";
  ASSERT_TRUE(std::regex_match(name, groups, pattern));
  ASSERT_EQ(groups.size(), 6u);
  EXPECT_EQ(groups[1], "05");
  EXPECT_EQ(groups[2], "2025");
  EXPECT_EQ(groups[3], "14");
  EXPECT_EQ(groups[4], "30");
  EXPECT_EQ(groups[5], "07123");
}

TEST(ScratchProjectPattern, KeepsTheWideMonthClass) {
  const std::regex pattern(mmcommon_get_scratch_project_regular_expression());
  // Capital A to small z also takes the characters between the alphabets.
  EXPECT_TRUE(std::regex_match("Tmp_05M_r2025_1430_07123", pattern));
  EXPECT_TRUE(std::regex_match("Tmp_05^2025_1430_07123", pattern));
  EXPECT_FALSE(std::regex_match("Tmp_05Ma1r2025_1430_07123", pattern));
  EXPECT_FALSE(std::regex_match("Tmp_32Mar2025_1430_07123", pattern));
  EXPECT_FALSE(std::regex_match("Tmp_05Mar0999_1430_07123", pattern));
  EXPECT_FALSE(std::regex_match("Tmp_05Mar2025_2430_07123", pattern));
  EXPECT_FALSE(std::regex_match("Tmp_05Mar2025_1430_0712", pattern));
}

TEST(ScratchProjectPath, FailsWhenTheParentIsNotConfigured) {
  ScopedEnv unset("MORVELLANTH_TEMP_PROJECT");
  try {
    mmcommon_get_scratch_project_path();
    FAIL() << "no exception";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "MORVELLANTH_TEMP_PROJECT environment variable is not set.");
  }
}

TEST(ScratchProjectPath, JoinsTheParentWithOneSeparator) {
  {
    ScopedEnv parent("MORVELLANTH_TEMP_PROJECT", "/data/scratch");
    const std::string path = mmcommon_get_scratch_project_path();
    EXPECT_EQ(path.rfind("/data/scratch/Tmp_", 0), 0u) << path;
  }
  {
    ScopedEnv parent("MORVELLANTH_TEMP_PROJECT", "/data/scratch/");
    const std::string path = mmcommon_get_scratch_project_path();
    EXPECT_EQ(path.rfind("/data/scratch/Tmp_", 0), 0u) << path;
    EXPECT_EQ(path.find("//"), std::string::npos) << path;
  }
}

TEST(ScratchProjectPath, DoesNotCreateTheDirectory) {
  mmfs_test::TempDir parent;
  ScopedEnv variable("MORVELLANTH_TEMP_PROJECT", parent.path());
  const std::string path = mmcommon_get_scratch_project_path();
  EXPECT_EQ(path.rfind(parent.path() + "/Tmp_", 0), 0u);
  EXPECT_FALSE(mmfs_test::PathExists(path));
}

TEST(ScratchProjectPath, EveryNameMatchesThePattern) {
  ScopedEnv parent("MORVELLANTH_TEMP_PROJECT", "/scratch");
  const std::regex pattern(mmcommon_get_scratch_project_regular_expression());
  for (int i = 0; i < 500; ++i) {
    const std::string name = NameOf(mmcommon_get_scratch_project_path());
    ASSERT_TRUE(std::regex_match(name, pattern)) << name;
    ASSERT_EQ(name.size(), 24u) << name;
  }
}

TEST(ScratchProjectPath, StampsTheLocalTimeInTheCLocale) {
  ScopedEnv parent("MORVELLANTH_TEMP_PROJECT", "/scratch");
  // A program that switched to another language still gets English months.
  const char* previous = std::setlocale(LC_ALL, nullptr);
  const std::string saved = previous != nullptr ? previous : "C";
  std::setlocale(LC_ALL, "");
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  const QDateTime before = QDateTime::currentDateTime();
  const std::string name = NameOf(mmcommon_get_scratch_project_path());
  const QDateTime after = QDateTime::currentDateTime();
  QLocale::setDefault(QLocale::c());
  std::setlocale(LC_ALL, saved.c_str());

  const QDateTime stamp = QLocale::c().toDateTime(QString::fromStdString(name.substr(4)),
                                                  QStringLiteral("ddMMMyyyy_HHmm_sszzz"));
  ASSERT_TRUE(stamp.isValid()) << name;
  EXPECT_GE(stamp, before.addMSecs(-1)) << name;
  EXPECT_LE(stamp, after) << name;
  static const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  EXPECT_EQ(name.substr(6, 3), kMonths[stamp.date().month() - 1]);
}

}  // namespace
