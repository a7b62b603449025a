// Installation check; see installation.h.
#include "mmcommon/installation.h"

#include <cstdlib>

#include "mmfile/product_dirs.h"

extern "C" int mmcommon_check_installation(const char* product, int* status) {
  *status = 0;
  char* dir = nullptr;
  const int found = mmfile_find_product_dir(product, &dir);
  std::free(dir);
  return found == 0 ? 0 : -1;
}
