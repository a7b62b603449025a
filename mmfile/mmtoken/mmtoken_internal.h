// Private to the tokenizer: the record behind a token-list handle, the table
// of records, and the line splitter that mmtoken_new and mystrtok share.
#ifndef MMFILESHARED_MMTOKEN_MMTOKEN_INTERNAL_H
#define MMFILESHARED_MMTOKEN_MMTOKEN_INTERNAL_H

#include <cstddef>
#include <string>
#include <string_view>

#include "mmtoken/regexp.h"

// Storage for the text of a list's tokens; see token_tag.
struct TokenSlab;

// One token list. Invariants: 0 <= count <= capacity <= allocated; every
// slot below count holds a NUL-terminated string inside one of the list's
// slabs (tokens are packed into a few large blocks instead of one allocation
// each; a slab is freed once none of its tokens is left in the list);
// regex_count is 0 or the count at the last mmtoken_regex_compile, and
// regexes holds that many patterns (a slot may be null).
struct token_tag {
  int capacity;             // slots the list has grown to, in steps of 20
  char** tokens;            // the tokens, positions 0 .. count-1
  int count;
  int in_use;               // 1 while the handle is live
  int regex_count;
  regexp** regexes;         // one pattern per token, owned
  char* quoted_characters;  // owned; " " when the list is made
  int allocated;            // slots really allocated in tokens: grows
                            // geometrically so long lists append in linear time
  TokenSlab* slabs;         // owned, newest first
};

namespace morvellanth::mmtoken {

// The live record of a handle, or null. Never reports.
token_tag* FindList(int handle);
// The record at a position of the table, live or free, or null beyond it.
const token_tag* RecordAt(int handle);
// Number of records in the table (live or free).
int RecordCount();

// Frees a list's compiled patterns and forgets them.
void FreePatterns(token_tag* list);

// Appends a copy of `token` to a list, growing it by 20 slots when full.
// Reports a FATAL message and returns -1 when memory runs out.
int AppendToken(token_tag* list, std::string_view token);

// Splits a line with one set of characters (see mystrtok for the rules).
class LineSplitter {
 public:
  // Null sets count as empty. Only the first 9999 pairs are used.
  LineSplitter(const char* separators, const char* pairs, const char* comments,
               const char* escapes, const char* singles);

  // Cuts the next token from line[*position, length). True with the token in
  // *token (valid until the next call) and *position after it; false when the
  // rest of the line holds no token (*position is then length). `line` must
  // be NUL-terminated at `length`.
  bool Next(const char* line, std::size_t length, std::size_t* position,
            std::string_view* token);

 private:
  enum Class : unsigned char { kOrdinary, kSingle, kSeparator, kOpener, kEscape, kComment };
  unsigned char class_[256];
  bool separator_[256];
  char closer_[256];
  std::string scratch_;
};

// True when a set of pair separators cannot be split into openers and closers.
bool PairsAreOdd(const char* pairs);

// Splits a whole line as successive mystrtok calls would (the odd-pairs
// message included) and hands each token to `sink`; leaves mystrtok's own
// state as those calls would have.
void SplitLine(const char* line, const char* separators, const char* pairs,
               const char* comments, const char* escapes, const char* singles,
               void (*sink)(void* context, std::string_view token), void* context);

}  // namespace morvellanth::mmtoken

#endif  // MMFILESHARED_MMTOKEN_MMTOKEN_INTERNAL_H
