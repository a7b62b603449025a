// Release identity; see release.h.
#include "mmcommon/release.h"

#include "mmfile/mmfile.h"

namespace morvellanth {

const std::string& release_name() {
  static const std::string name = MMFILE_CURRENT_RELEASE;
  return name;
}

int kitbase_version() {
  int version = 0;
  mmfile_get_product_version("kitbase", &version);
  return version;
}

}  // namespace morvellanth
