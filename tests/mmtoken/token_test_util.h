// Helpers for the tokenizer tests: messages thrown at handle -1 during a
// call, and the tokens that mmtoken_new or mystrtok cut from a line.
#pragma once

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "mmerr/capture.h"
#include "mmtoken/mmtoken.h"

namespace mmtoken_test {

// Runs body while capturing handle -1 and returns what was thrown at it.
template <class Body>
std::string MessagesOf(Body&& body) {
  morvellanth::mmlibs::CaptureMMErr capture(-1);
  std::forward<Body>(body)();
  return capture.getMessages();
}

inline std::vector<std::string> ListTokens(int handle) {
  std::vector<std::string> tokens;
  int count = mmtoken_num(handle);
  for (int i = 0; i < count; i++) tokens.push_back(mmtoken_get_token(handle, i));
  return tokens;
}

// The tokens of a line as mmtoken_new cuts them (null sets take defaults).
inline std::vector<std::string> Split(const char* line, const char* separators = nullptr,
                                      const char* pairs = nullptr,
                                      const char* comments = nullptr,
                                      const char* escapes = nullptr,
                                      const char* singles = nullptr) {
  int handle = -1;
  mmtoken_new(&handle, line, separators, pairs, comments, escapes, singles);
  std::vector<std::string> tokens = ListTokens(handle);
  mmtoken_delete(handle);
  return tokens;
}

// The tokens of a line from successive mystrtok calls (sets never null).
inline std::vector<std::string> Strtok(const char* line, const char* separators,
                                       const char* pairs = "", const char* comments = "",
                                       const char* escapes = "", const char* singles = "") {
  std::vector<std::string> tokens;
  const char* start = line;
  while (char* token = mystrtok(start, separators, pairs, comments, escapes, singles)) {
    tokens.push_back(token);
    std::free(token);
    start = nullptr;
  }
  return tokens;
}

using Tokens = std::vector<std::string>;

}  // namespace mmtoken_test
