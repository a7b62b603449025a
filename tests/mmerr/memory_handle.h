// An error handle that prints into memory, so a test can read back exactly
// what the dispatcher wrote.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

#include "mmerr/mmerr.h"

struct MemoryHandle {
  MemoryHandle() { mmerr_file(handle, stream); }
  ~MemoryHandle() {
    mmerr_delete(handle);
    fclose(stream);
    free(data);
  }
  std::string text() { return fflush(stream) == 0 ? std::string(data, size) : "<unflushed>"; }
  char* data = nullptr;
  size_t size = 0;
  FILE* stream = open_memstream(&data, &size);
  int handle = [] { int made = -1; mmerr_new(&made); return made; }();
};
