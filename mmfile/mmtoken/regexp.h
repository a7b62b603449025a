// regexp: the library's small backtracking regular-expression engine.
//
// A pattern is compiled once into a node program with mm_regcomp and matched
// against NUL-terminated subjects with mm_regexec; the compiled block is one
// allocation that the caller releases with free(). Syntax: alternatives with
// |, pieces with *, + and ?, atoms ^ $ . [set] [^set] (group) \c and literal
// runs; at most nine groups. Errors are reported at level 5 on handle -1.
//
//   regexp* re = mm_regcomp("^kitbase-v[0-9]+(.[0-9]+)?$");
//   if (re != NULL && mm_regexec(re, name)) { ... }
//   free(re);
#ifndef MMFILESHARED_MMTOKEN_REGEXP_H
#define MMFILESHARED_MMTOKEN_REGEXP_H

#ifdef __cplusplus
extern "C" {
#endif

// Slots for the whole match (0) and groups 1..9.
#define NSUBEXP 10

// A compiled pattern. startp/endp point into the last subject matched (end is
// one past the last character); slots of groups that took no part are null.
typedef struct regexp {
  const char* startp[NSUBEXP];
  const char* endp[NSUBEXP];
  char regstart;   // character every match begins with, or 0
  char reganch;    // 1 when the pattern starts with ^
  char* regmust;   // literal every match contains (points into program), or null
  int regmlen;     // length of regmust
  char program[1];  // magic byte 0234, then the node program (allocated longer)
} regexp;

// Compiles a pattern. Returns a block that the caller releases with free(), or null after
// reporting the reason through mm_regerror (nothing stays allocated).
regexp* mm_regcomp(const char* pattern);

// 1 when the pattern matches somewhere in the subject (anchors respected),
// else 0. On a match fills startp/endp; they point into `subject`.
int mm_regexec(regexp* compiled, const char* subject);

// Reports "Error in regular expression: <message> " at level 5 (FATAL) on
// handle -1 and returns; the caller then fails.
void mm_regerror(const char* message);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // MMFILESHARED_MMTOKEN_REGEXP_H
