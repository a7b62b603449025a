/* A C program using the installed library: error handles and token lists. */
#include <stdio.h>
#include <string.h>

#include "mmerr/mmerr.h"
#include "mmtoken/mmtoken.h"

int main(void) {
  int handle;
  if (!mmerr_new(&handle) || !mmerr_file(handle, stdout)) return 1;
  mmerr_throw(handle, MMERR_LEVEL_WARNING, "c consumer %d\n", 1);
  int worst = 0;
  mmerr_maxlevel(handle, &worst);
  if (strcmp(mmerr_return_code(worst), "MMERR_WARNING") != 0) return 2;
  mmerr_delete(handle);

  int list;
  mmtoken_new(&list, "ATOM 1 C 0.5", NULL, NULL, NULL, NULL, NULL);
  if (mmtoken_num(list) != 4 || strcmp(mmtoken_get_token(list, 2), "C") != 0) return 3;
  mmtoken_delete(list);
  puts("c consumer ok");
  return 0;
}
