// The identity of this release of the library.
#ifndef MMFILESHARED_MMCOMMON_RELEASE_H
#define MMFILESHARED_MMCOMMON_RELEASE_H

#include <string>

namespace morvellanth {

// The release, "2025-4"; the string lives as long as the process.
const std::string& release_name();

// The library's numeric version, 72125.
int kitbase_version();

}  // namespace morvellanth

#endif  // MMFILESHARED_MMCOMMON_RELEASE_H
