// Fortran-callable twins of the token-list operations. Integers come by
// reference; strings are handed on unchanged (the callers pass NUL-terminated
// text, so the hidden lengths after the visible arguments are not read).
#include <cstring>

#include "mmtoken/mmtoken.h"

namespace {
// Bytes mmtokenf_get_token_ copies at most.
constexpr std::size_t kTokenField = 255;
}  // namespace

extern "C" {

int mmtokenf_initialize_(void) { return mmtoken_initialize(); }
void mmtokenf_terminate_(void) { mmtoken_terminate(); }

int mmtokenf_new_(int* handle, const char* line, const char* separators, const char* pairs,
                  const char* comments, const char* escapes, const char* singles) {
  return mmtoken_new(handle, line, separators, pairs, comments, escapes, singles);
}

int mmtokenf_delete_(int* handle) { return mmtoken_delete(*handle); }
int mmtokenf_clear_(int* handle) { return mmtoken_clear(*handle); }
int mmtokenf_num_(int* handle) { return mmtoken_num(*handle); }
char* mmtokenf_get_string_(int* handle) { return mmtoken_get_string(*handle); }
int mmtokenf_toupper_(int* handle) { return mmtoken_toupper(*handle); }
int mmtokenf_regex_compile_(int* handle) { return mmtoken_regex_compile(*handle); }

int mmtokenf_delete_token_(int* handle, int* index) {
  return mmtoken_delete_token(*handle, *index);
}
int mmtokenf_find_type_(int* handle, int* index) { return mmtoken_find_type(*handle, *index); }
int mmtokenf_tolower_token_(int* handle, int* index) {
  return mmtoken_tolower_token(*handle, *index);
}

int mmtokenf_copy_(int* destination, int* source) { return mmtoken_copy(*destination, *source); }
int mmtokenf_merge_(int* destination, int* source) {
  return mmtoken_merge(*destination, *source);
}
int mmtokenf_copyn_(int* destination, int* source, int* width, int* left, int* column) {
  return mmtoken_copyn(*destination, *source, *width, *left, *column);
}
int mmtokenf_mergen_(int* destination, int* source, int* width, int* left, int* column) {
  return mmtoken_mergen(*destination, *source, *width, *left, *column);
}

int mmtokenf_add_(int* handle, const char* token) { return mmtoken_add(*handle, token); }
int mmtokenf_index_(int* handle, const char* text) { return mmtoken_index(*handle, text); }
int mmtokenf_replace_(int* handle, int* index, const char* token) {
  return mmtoken_replace(*handle, *index, token);
}
int mmtokenf_indexn_(int* handle, const char* text, int* n) {
  return mmtoken_indexn(*handle, text, *n);
}

int mmtokenf_get_int_(int* handle, int* index, int* value) {
  return mmtoken_get_int(*handle, *index, value);
}
int mmtokenf_get_double_(int* handle, int* index, double* value) {
  return mmtoken_get_double(*handle, *index, value);
}

int mmtokenf_get_token_(int* handle, int* index, char* buffer) {
  const char* token = mmtoken_get_token(*handle, *index);
  if (token == nullptr) return -1;
  std::strncpy(buffer, token, kTokenField);
  return 0;
}

int mmtokenf_addn_(int handle, const char* token, int width, int left, int column) {
  return mmtoken_addn(handle, token, width, left, column);
}

int mmtokenf_regex_index(int* handle, const char* subject) {
  return mmtoken_regex_index(*handle, subject);
}

}  // extern "C"
