/* A C program using the installed library: error handles. */
#include <stdio.h>
#include <string.h>

#include "mmerr/mmerr.h"

int main(void) {
  int handle;
  if (!mmerr_new(&handle) || !mmerr_file(handle, stdout)) return 1;
  mmerr_throw(handle, MMERR_LEVEL_WARNING, "c consumer %d\n", 1);
  int worst = 0;
  mmerr_maxlevel(handle, &worst);
  if (strcmp(mmerr_return_code(worst), "MMERR_WARNING") != 0) return 2;
  mmerr_delete(handle);
  puts("c consumer ok");
  return 0;
}
