// Where preference files live: the per-user, per-release file of each
// product, the machine file and the installation file behind it.
//
//   QString user = morvellanth::preferences::internal::get_mmpref_file(
//       MMPREF_PAVANE, "2025-4");   // <config path>/2025-4/Pavane.xml
#ifndef MMFILESHARED_MMPREF_MMPREF_LOCATIONS_H
#define MMFILESHARED_MMPREF_MMPREF_LOCATIONS_H

#include <QString>

#include <string>

#include "mmpref/mmpref_types.h"

// The base directory of current releases' files: MORVELLANTH_MMPREF_SANDBOX
// made absolute plus "/.morvellanth" when set, else the per-user
// application-data directory (std::runtime_error when it cannot be had).
QString mmpref_config_path();

namespace morvellanth::preferences::internal {

// The number of products that own a file; valid products are 0 to this - 1.
int mmpref_product_count();
// The product's base file name ("Pavane", "Panoply", ...); std::out_of_range
// for an unknown product.
std::string mmpref_product_name(MMPREF_PRODUCTS product);

// The directory of one release's files: releases up to "2017-1" under the
// sandbox or home directory's ".morvellanth", later ones under
// mmpref_config_path(); then the release name.
std::string get_mmpref_directory(const std::string& release);

// The product's file of a release: its directory, "/", the base name, ".xml".
// Release "2019-3" uses that release's own names for products 9 to 15. An
// unknown product throws std::out_of_range.
QString get_mmpref_file(MMPREF_PRODUCTS product, const QString& release);

// The installation file: MORVELLANTH_SITE_PREFERENCE, else $MORVELLANTH
// followed by "/config/suitepref.xml".
QString get_suite_preferences_path();

// The machine file: MORVELLANTH_MACHINE_PREFERENCE, else
// "/Library/Application Support/Morvellanth/suitepref.xml".
QString get_machine_preferences_path();

// "user", "machine", "installation", "not found"; "unknown" for other values.
std::string mmpref_source_to_string(MMPrefSource source);

}  // namespace morvellanth::preferences::internal

using morvellanth::preferences::internal::mmpref_source_to_string;

#endif  // MMFILESHARED_MMPREF_MMPREF_LOCATIONS_H
