/* Token lists and the data search path from C.
 *
 * Cuts a structure-file line into tokens, reads them back as text and
 * numbers, then adds a directory to the search path and finds a data file
 * through it. Run it from a scratch directory: it writes demo_data/atoms.dat. */
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>

#include "mmfile/mmfile.h"
#include "mmtoken/mmtoken.h"

int main(void) {
  /* Blanks separate, double quotes group, '#' starts a comment. */
  int list;
  mmtoken_new(&list, "ATOM  1 \"C 1\"  0.512  -1.25e-1  # carbon", " ", "\"\"", "#", "\\", "");
  int count = mmtoken_num(list);
  printf("%d tokens:", count);
  for (int i = 0; i < count; ++i) printf(" [%s]", mmtoken_get_token(list, i));
  printf("\n");

  double x = 0.0;
  if (mmtoken_get_double(list, 3, &x) == 0) printf("token 3 as a real: %g\n", x);
  printf("number types of the tokens 1, 3 and 0: %d %d %d\n",
         mm_number_type(mmtoken_get_token(list, 1)), mm_number_type(mmtoken_get_token(list, 3)),
         mm_number_type(mmtoken_get_token(list, 0)));
  mmtoken_delete(list);

  /* A data file found through the search path. */
  mkdir("demo_data", 0755);
  FILE* data = fopen("demo_data/atoms.dat", "w");
  if (!data) return 1;
  fputs("C 6 12.011\n", data);
  fclose(data);

  mmfile_path_add("demo_data");
  char* search = NULL;
  mmfile_path_get(&search);
  printf("search path: %s\n", search);
  free(search);

  char* found = NULL;
  if (mmfile_find("atoms.dat", 0, &found) != 0) {
    printf("atoms.dat not found\n");
    return 1;
  }
  printf("found atoms.dat at %s\n", found);
  free(found);
  return 0;
}
