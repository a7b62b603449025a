// Release identity; see release.h.
#include "mmcommon/release.h"

namespace morvellanth {

namespace {

constexpr char kReleaseName[] = "2025-4";
constexpr int kKitbaseVersion = 72125;

}  // namespace

const std::string& release_name() {
  static const std::string name = kReleaseName;
  return name;
}

int kitbase_version() { return kKitbaseVersion; }

}  // namespace morvellanth
