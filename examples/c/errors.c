/* Error handles from C: make a handle, decorate it, raise messages at
 * several levels and read back the worst level reached. */
#include <stdio.h>

#include "mmerr/mmerr.h"

int main(void) {
  int handle;
  if (!mmerr_new(&handle)) return 1;
  mmerr_file(handle, stdout);           /* new handles print nowhere until given a stream */
  mmerr_prefix(handle, "example: ");

  mmerr_throw(handle, MMERR_LEVEL_INFO, "dropped: below the threshold of %s\n",
              mmerr_return_code(MMERR_LEVEL_WARNING));
  mmerr_throw(handle, MMERR_LEVEL_WARNING, "could not read %s\n", "structure.mae");
  mmerr_level(handle, MMERR_LEVEL_DEBUG);
  mmerr_throw(handle, MMERR_LEVEL_INFO, "now shown: threshold lowered\n");

  int worst = 0;
  mmerr_maxlevel(handle, &worst);
  printf("worst level so far: %s\n", mmerr_return_code(worst));
  mmerr_delete(handle);
  return 0;
}
