// Scratch project names; see scratch_project.h.
#include "mmcommon/scratch_project.h"

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <boost/filesystem/path.hpp>
#include <cstdlib>
#include <stdexcept>

namespace {

constexpr char kParentVariable[] = "MORVELLANTH_TEMP_PROJECT";
constexpr char kNamePrefix[] = "Tmp_";
// Day, English month abbreviation, year, hours and minutes, seconds and
// milliseconds.
constexpr char kTimeStampFormat[] = "ddMMMyyyy_HHmm_sszzz";
// As published: "[A-za-z]" also admits the six characters between Z and a,
// and existing projects are recognised by this exact text.
constexpr char kNamePattern[] =
    "Tmp_([0-2][0-9]|3[01])[A-za-z]{1,4}([1-9][0-9]{3})_([01][0-9]|2[0-3])([0-5][0-9])_"
    "([0-5][0-9][0-9]{3})";

}  // namespace

std::string mmcommon_get_scratch_project_path() {
  const char* parent = std::getenv(kParentVariable);
  if (parent == nullptr)
    throw std::runtime_error("MORVELLANTH_TEMP_PROJECT environment variable is not set.");
  const QString stamp =
      QLocale::c().toString(QDateTime::currentDateTime(), QString::fromLatin1(kTimeStampFormat));
  const std::string name = kNamePrefix + stamp.toStdString();
  return (boost::filesystem::path(parent) / name).string();
}

std::string mmcommon_get_scratch_project_regular_expression() { return kNamePattern; }
