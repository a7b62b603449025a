// Helpers for the tokenizer tests: messages thrown at handle -1 during a
// call, and the tokens a list holds.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "mmerr/capture.h"
#include "mmtoken/mmtoken.h"

namespace mmtoken_test {

using Tokens = std::vector<std::string>;

// Runs body while capturing handle -1 and returns what was thrown at it.
template <class Body>
std::string MessagesOf(Body&& body) {
  morvellanth::mmlibs::CaptureMMErr capture(-1);
  std::forward<Body>(body)();
  return capture.getMessages();
}

inline Tokens ListTokens(int handle) {
  Tokens tokens;
  for (int i = 0; i < mmtoken_num(handle); i++) tokens.push_back(mmtoken_get_token(handle, i));
  return tokens;
}

}  // namespace mmtoken_test
