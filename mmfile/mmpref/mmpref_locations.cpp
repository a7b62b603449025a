// Preference file names and directories, per product and release.
#include "mmpref/mmpref_locations.h"

#include <QDir>
#include <QFileInfo>

#include <unordered_map>

#include "mmfile/mmfile.h"

namespace morvellanth::preferences::internal {
namespace {

// Base file names of the products' preference files.
const std::unordered_map<int, QString> PRODUCTS = {
    {MMPREF_PAVANE, "Pavane"},
    {MMPREF_HARROWMERE, "Harrowmere"},
    {MMPREF_ORBELLE, "Orbelle"},
    {MMPREF_YARL, "Yarl"},
    {MMPREF_RUBATO, "Rubato"},
    {MMPREF_RAVINE, "Ravine"},
    {MMPREF_WICKE, "Wicke"},
    {MMPREF_TESSELLANT, "Tessellant"},
    {MMPREF_PANOPLY, "Panoply"},
    {MMPREF_FJORD, "Fjord"},
    {MMPREF_QVX, "Qvx"},
    {MMPREF_ORVIK, "Orvik"},
    {MMPREF_LUMENTA, "Lumenta"},
    {MMPREF_SCRIPTS, "Scripts"},
    {MMPREF_SHARED, "Shared"},
    {MMPREF_TIDEMARK, "Tidemark"},
};

// Release 2019-3 named the files of products 9 to 15 one place off; these are
// its names, so that its files can still be found.
const char* const kRelease2019_3 = "2019-3";
const std::unordered_map<int, QString>& release2019_3Names() {
  static const std::unordered_map<int, QString> names = {
      {MMPREF_FJORD, "Quorlan"},
      {MMPREF_QVX, "Fjord"},
      {MMPREF_ORVIK, "Qvx"},
      {MMPREF_LUMENTA, "Orvik"},
      {MMPREF_SCRIPTS, "Lumenta"},
      {MMPREF_SHARED, "Scripts"},
      {MMPREF_TIDEMARK, "Shared"},
  };
  return names;
}

// The newest release whose files lie under the home directory.
const char* const kLastHomeRelease = "2017-1";

// The sandbox variable made absolute plus "/.morvellanth", or empty.
QString sandboxBase() {
  const QString sandbox = qEnvironmentVariable("MORVELLANTH_MMPREF_SANDBOX");
  if (sandbox.isEmpty()) return {};
  return QFileInfo(sandbox).absoluteFilePath() + "/.morvellanth";
}

}  // namespace

int mmpref_product_count() { return static_cast<int>(PRODUCTS.size()); }

std::string mmpref_product_name(MMPREF_PRODUCTS product) { return PRODUCTS.at(product).toStdString(); }

std::string get_mmpref_directory(const std::string& release) {
  QString base;
  if (compare_releases(release, kLastHomeRelease) < 1) {
    base = sandboxBase();
    if (base.isEmpty()) base = QDir::homePath() + "/.morvellanth";
  } else {
    base = mmpref_config_path();
  }
  return (base + "/" + QString::fromStdString(release)).toStdString();
}

QString get_mmpref_file(MMPREF_PRODUCTS product, const QString& release) {
  const auto& old_names = release2019_3Names();
  const auto renamed = old_names.find(product);
  const QString& base = release == kRelease2019_3 && renamed != old_names.end() ? renamed->second
                                                                                 : PRODUCTS.at(product);
  return QString::fromStdString(get_mmpref_directory(release.toStdString())) + "/" + base + ".xml";
}

QString get_suite_preferences_path() {
  if (qEnvironmentVariableIsSet("MORVELLANTH_SITE_PREFERENCE"))
    return qEnvironmentVariable("MORVELLANTH_SITE_PREFERENCE");
  return qEnvironmentVariable("MORVELLANTH") + "/config/suitepref.xml";
}

QString get_machine_preferences_path() {
  if (qEnvironmentVariableIsSet("MORVELLANTH_MACHINE_PREFERENCE"))
    return qEnvironmentVariable("MORVELLANTH_MACHINE_PREFERENCE");
  return "/Library/Application Support/Morvellanth/suitepref.xml";
}

std::string mmpref_source_to_string(MMPrefSource source) {
  switch (source) {
    case MMPREF_SOURCE_USER:
      return "user";
    case MMPREF_SOURCE_MACHINE:
      return "machine";
    case MMPREF_SOURCE_INSTALLATION:
      return "installation";
    case MMPREF_SOURCE_NOT_FOUND:
      return "not found";
  }
  return "unknown";
}

}  // namespace morvellanth::preferences::internal

QString mmpref_config_path() {
  const QString sandbox = morvellanth::preferences::internal::sandboxBase();
  if (!sandbox.isEmpty()) return sandbox;
  return QString::fromStdString(mmfile_get_directory_path(APPDATA));
}
