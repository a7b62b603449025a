// Line reading that survives interrupted system calls.
#ifndef MMFILESHARED_MMCOMMON_LINE_READER_H
#define MMFILESHARED_MMCOMMON_LINE_READER_H

#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

// fgets, repeated while it fails with errno EINTR (errno is cleared before
// each attempt); returns what the last fgets returned.
char* fgets_safe(char* buf, int n, FILE* stream);

#ifdef __cplusplus
}
#endif

#endif  // MMFILESHARED_MMCOMMON_LINE_READER_H
