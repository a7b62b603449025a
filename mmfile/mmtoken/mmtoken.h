// mmtoken: numbered lists of tokens cut from lines of text.
//
// mmtoken_new splits a line (separators, quote pairs, comment, escape and
// single characters) into a process-wide list and returns its handle; the
// list is then read by position, converted, searched, edited, joined back or
// matched against wildcard patterns. Handles and positions are 0-based.
// Results are 0 for success and -1 for failure unless said otherwise;
// failures are reported on error handle -1. One thread at a time.
//
//   int h;
//   mmtoken_new(&h, "atom 12 C 1.5", NULL, NULL, "#", NULL, "=");
//   double x;
//   if (mmtoken_get_double(h, 3, &x) == 0) { ... }
//   mmtoken_delete(h);
#ifndef MMFILESHARED_MMTOKEN_MMTOKEN_H
#define MMFILESHARED_MMTOKEN_MMTOKEN_H

#ifdef __cplusplus
extern "C" {
#endif

// Kinds of text told apart by mm_number_type.
enum {
  MMTOKEN_NOT_A_NUMBER = 0,
  MMTOKEN_INTEGER = 1,
  MMTOKEN_REAL = 2
};

// Line splitter used by mmtoken_new, strtok style: a non-null line starts a
// new line and yields its first token, a null line yields the next one. The
// five sets are never null. Returns a malloc'ed token the caller frees, or
// null when the line holds no further token. Precedence when sets overlap:
// comment (drops the rest of the line), escape (next character literal), pair
// (opener at even, closer at odd positions of `pairs`), separator, single
// character (a token of its own).
char* mystrtok(const char* line, const char* separators, const char* pairs,
               const char* comments, const char* escapes, const char* singles);

// 1 for an integer that fits 32 bits, 2 for a real (fixed, scientific, inf,
// nan), 0 otherwise; one leading '+' is skipped.
int mm_number_type(const char* text);

int mmtoken_initialize(void);  // does nothing, returns 0
void mmtoken_terminate(void);  // does nothing

// Makes a list from a line (null or empty: an empty list). Null sets take
// the defaults: separators " ,\t", the others none. *handle receives the new
// handle (the highest free one is reused). Always returns 0.
int mmtoken_new(int* handle, const char* line, const char* separators, const char* pairs,
                const char* comments, const char* escapes, const char* singles);
// Frees the list and its patterns; the handle becomes free for reuse.
int mmtoken_delete(int handle);
// 1 for a live handle, else 0; never reports.
int mmtoken_in_use(int handle);
// Drops every token; patterns and the quoted-character set stay.
int mmtoken_clear(int handle);
// Number of tokens, or -1.
int mmtoken_num(int handle);

// Appends a copy of the token. A null token is ignored (result 0).
int mmtoken_add(int handle, const char* token);
// Appends the token in a field of max(strlen(token), width) characters:
// left-justified when left is non-zero, else starting at `column`, where 0
// means right-justified. A column that would push the token past the field
// is pulled back to right-justified. A null token is ignored (result 0).
int mmtoken_addn(int handle, const char* token, int width, int left, int column);

// The stored token, owned by the list (valid until it is changed), or null.
char* mmtoken_get_token(int handle, int index);
// Replaces the token at index with a copy of `token`.
int mmtoken_replace(int handle, int index, const char* token);
// Removes the token at index; later tokens move down by one.
int mmtoken_delete_token(int handle, int index);

// Empties the destination, then appends copies of the source's tokens.
int mmtoken_copy(int destination, int source);
// Appends copies of the source's tokens (a list merged into itself doubles).
int mmtoken_merge(int destination, int source);
// As mmtoken_copy and mmtoken_merge, each token appended with mmtoken_addn.
int mmtoken_copyn(int destination, int source, int width, int left, int column);
int mmtoken_mergen(int destination, int source, int width, int left, int column);

// The tokens joined by single blanks, each empty token or token holding a
// quoted character wrapped in double quotes. malloc'ed; the caller frees it.
// Null on failure.
char* mmtoken_get_string(int handle);

// mm_number_type of the token, or -1 on a bad handle or index.
int mmtoken_find_type(int handle, int index);
// The token's value when it is an integer (type 1); else -1 and 0 stored.
int mmtoken_get_int(int handle, int index, int* value);
// The token's value when it is a number (type 1 or 2); else -1 and 0.0 stored.
int mmtoken_get_double(int handle, int index, double* value);

// Position of the first token equal to text, or -1 (none, or empty list).
int mmtoken_index(int handle, const char* text);
// Position of the first token whose first n bytes equal those of text
// (strncmp; a negative n compares whole strings), or -1.
int mmtoken_indexn(int handle, const char* text, int n);

// Upper-cases every token of the list in place.
int mmtoken_toupper(int handle);
// Lower-cases the one token at index in place.
int mmtoken_tolower_token(int handle, int index);
// Characters that make mmtoken_get_string quote a token (initially " ").
// A null set leaves it as it is.
int mmtoken_set_quoted_characters(int handle, const char* characters);

// Compiles every token as a wildcard pattern anchored at the start: * any
// run (blanks after it dropped), ? any character, # a digit, . itself; other
// characters keep their regular-expression meaning. A token that does not
// compile leaves a null pattern (and a message).
int mmtoken_regex_compile(int handle);
// Position of the first pattern matching the subject, or -1 (also when the
// list changed since mmtoken_regex_compile).
int mmtoken_regex_index(int handle, const char* subject);

// Fortran-callable twins: integers by reference, strings passed through as
// they come (callers pass NUL-terminated text); results as the plain calls.
int mmtokenf_initialize_(void);
void mmtokenf_terminate_(void);
int mmtokenf_new_(int* handle, const char* line, const char* separators, const char* pairs,
                  const char* comments, const char* escapes, const char* singles);
int mmtokenf_delete_(int* handle);
int mmtokenf_clear_(int* handle);
int mmtokenf_num_(int* handle);
char* mmtokenf_get_string_(int* handle);
int mmtokenf_toupper_(int* handle);
int mmtokenf_regex_compile_(int* handle);
int mmtokenf_delete_token_(int* handle, int* index);
int mmtokenf_find_type_(int* handle, int* index);
int mmtokenf_tolower_token_(int* handle, int* index);
int mmtokenf_copy_(int* destination, int* source);
int mmtokenf_merge_(int* destination, int* source);
int mmtokenf_copyn_(int* destination, int* source, int* width, int* left, int* column);
int mmtokenf_mergen_(int* destination, int* source, int* width, int* left, int* column);
int mmtokenf_add_(int* handle, const char* token);
int mmtokenf_index_(int* handle, const char* text);
int mmtokenf_replace_(int* handle, int* index, const char* token);
int mmtokenf_indexn_(int* handle, const char* text, int* n);
int mmtokenf_get_int_(int* handle, int* index, int* value);
int mmtokenf_get_double_(int* handle, int* index, double* value);
// Copies the token with strncpy limited to 255 bytes (no blank padding; a
// token of 255 bytes or more is left unterminated). -1 when there is none.
int mmtokenf_get_token_(int* handle, int* index, char* buffer);
// Takes its arguments by value, unlike the other twins.
int mmtokenf_addn_(int handle, const char* token, int width, int left, int column);
// Exported without the trailing underscore.
int mmtokenf_regex_index(int* handle, const char* subject);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // MMFILESHARED_MMTOKEN_MMTOKEN_H
