// The line splitter: mystrtok and the LineSplitter behind it.
//
// Each character is classified once through a 256-entry table built from the
// five sets, with the precedence comment > escape > pair opener > separator >
// single character settled when the table is built. Tokens made only of
// ordinary characters are handed out as views of the line; escapes and pairs
// collect into one reused scratch buffer, so splitting a line costs time in
// proportion to its length.
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "mmerr/mmerr.h"
#include "mmtoken/mmtoken.h"
#include "mmtoken/mmtoken_internal.h"

namespace morvellanth::mmtoken {
namespace {

// Pair separators beyond this many pairs are ignored.
constexpr std::size_t kMaxPairs = 9999;

constexpr char kOddPairsMessage[] =
    "mmtoken_new(): an even number of pair separators must supplied\n";
constexpr char kUnmatchedPairMessage[] =
    " mmtoken_new(), unmatched separator pair %c <-> %c in input: %s \n";
constexpr char kNoMemoryMessage[] = "mmtoken_new(): failed to allocate memory for the token.\n";

const unsigned char* Bytes(const char* set) {
  return reinterpret_cast<const unsigned char*>(set != nullptr ? set : "");
}

// The state mystrtok keeps between calls: the line of the last call that
// gave one, and the position of the next unread character.
struct SplitterState {
  std::string stored_line;
  std::size_t current_pos = 0;
  std::size_t current_length = 0;
};
SplitterState splitter_state;

}  // namespace

LineSplitter::LineSplitter(const char* separators, const char* pairs, const char* comments,
                           const char* escapes, const char* singles) {
  std::memset(class_, kOrdinary, sizeof class_);
  std::memset(separator_, 0, sizeof separator_);
  std::memset(closer_, 0, sizeof closer_);
  // Lowest precedence first: a later set overrides an earlier one.
  for (const unsigned char* c = Bytes(singles); *c != 0; c++) class_[*c] = kSingle;
  for (const unsigned char* c = Bytes(separators); *c != 0; c++) {
    class_[*c] = kSeparator;
    separator_[*c] = true;
  }
  const unsigned char* p = Bytes(pairs);
  for (std::size_t k = 0; k < kMaxPairs && p[0] != 0 && p[1] != 0; k++, p += 2) {
    if (class_[p[0]] == kOpener) continue;  // the first pair of an opener wins
    class_[p[0]] = kOpener;
    closer_[p[0]] = static_cast<char>(p[1]);
  }
  for (const unsigned char* c = Bytes(escapes); *c != 0; c++) class_[*c] = kEscape;
  for (const unsigned char* c = Bytes(comments); *c != 0; c++) class_[*c] = kComment;
}

bool LineSplitter::Next(const char* line, std::size_t length, std::size_t* position,
                        std::string_view* token) {
  const unsigned char* s = reinterpret_cast<const unsigned char*>(line);
  std::size_t pos = *position;
  std::size_t run = pos;       // start of the ordinary run not yet in scratch_
  bool in_scratch = false;     // the token so far is scratch_ + line[run, pos)
  scratch_.clear();

  auto flush = [&]() {
    if (!in_scratch) {
      scratch_.assign(line + run, pos - run);
      in_scratch = true;
    } else {
      scratch_.append(line + run, pos - run);
    }
  };
  auto collected = [&]() { return (in_scratch ? scratch_.size() : 0) + (pos - run); };
  auto finish = [&]() {
    if (in_scratch) {
      flush();
      *token = scratch_;
    } else {
      *token = std::string_view(line + run, pos - run);
    }
    *position = pos;
    return true;
  };
  auto skip_separators = [&]() {
    while (pos < length && separator_[s[pos]]) pos++;
  };

  while (pos < length) {
    unsigned char c = s[pos];
    switch (class_[c]) {
      case kOrdinary:
        pos++;
        while (pos < length && class_[s[pos]] == kOrdinary) pos++;
        break;

      case kComment:
        // The rest of the line is dropped, with whatever was collected.
        *position = length;
        return false;

      case kEscape:
        flush();
        pos++;
        if (pos >= length) {
          run = pos;
          *position = pos;
          if (collected() == 0) return false;
          *token = scratch_;
          return true;
        }
        scratch_.push_back(line[pos]);
        pos++;
        run = pos;
        break;

      case kOpener: {
        flush();
        char closer = closer_[c];
        pos++;
        const void* found = pos < length ? std::memchr(line + pos, closer, length - pos) : nullptr;
        if (found == nullptr) {
          mmerr_throw(-1, MMERR_LEVEL_WARNING, kUnmatchedPairMessage, static_cast<char>(c), closer,
                      line);
          scratch_.append(line + pos, length - pos);
          *token = scratch_;
          *position = length;
          return true;
        }
        std::size_t close = static_cast<std::size_t>(static_cast<const char*>(found) - line);
        scratch_.append(line + pos, close - pos);
        pos = close + 1;
        skip_separators();
        *token = scratch_;
        *position = pos;
        return true;
      }

      case kSeparator:
        if (collected() > 0) {
          finish();
          skip_separators();
          *position = pos;
          return true;
        }
        skip_separators();
        if (pos >= length) {
          *position = pos;
          return false;
        }
        run = pos;
        break;

      case kSingle:
        if (collected() > 0) return finish();  // c starts the next token
        *token = std::string_view(line + pos, 1);
        *position = pos + 1;
        return true;
    }
  }
  if (collected() == 0) {
    *position = pos;
    return false;
  }
  return finish();
}

bool PairsAreOdd(const char* pairs) {
  return pairs != nullptr && std::strlen(pairs) % 2 != 0;
}

void SplitLine(const char* line, const char* separators, const char* pairs, const char* comments,
               const char* escapes, const char* singles,
               void (*sink)(void* context, std::string_view token), void* context) {
  SplitterState& state = splitter_state;
  std::size_t length = std::strlen(line);
  if (length == 0) {
    state.stored_line.clear();
    state.current_pos = state.current_length = 0;
    return;
  }
  if (PairsAreOdd(pairs)) {
    // The first call refuses and leaves the line unread.
    mmerr_throw(-1, MMERR_LEVEL_FATAL, kOddPairsMessage);
    state.stored_line = line;
    state.current_pos = 0;
    state.current_length = length;
    return;
  }
  LineSplitter splitter(separators, pairs, comments, escapes, singles);
  std::size_t position = 0;
  std::string_view token;
  while (splitter.Next(line, length, &position, &token)) sink(context, token);
  // The calls would have read the line to its end.
  state.stored_line.clear();
  state.current_pos = state.current_length = 0;
}

}  // namespace morvellanth::mmtoken

extern "C" char* mystrtok(const char* line, const char* separators, const char* pairs,
                          const char* comments, const char* escapes, const char* singles) {
  using morvellanth::mmtoken::splitter_state;
  if (line != nullptr) {
    splitter_state.stored_line = line;
    splitter_state.current_pos = 0;
    splitter_state.current_length = splitter_state.stored_line.size();
  }
  if (splitter_state.current_pos >= splitter_state.current_length) return nullptr;
  if (morvellanth::mmtoken::PairsAreOdd(pairs)) {
    mmerr_throw(-1, MMERR_LEVEL_FATAL, morvellanth::mmtoken::kOddPairsMessage);
    return nullptr;
  }

  morvellanth::mmtoken::LineSplitter splitter(separators, pairs, comments, escapes, singles);
  std::string_view token;
  bool found = splitter.Next(splitter_state.stored_line.c_str(), splitter_state.current_length,
                             &splitter_state.current_pos, &token);
  if (!found) return nullptr;
  char* copy = static_cast<char*>(std::malloc(token.size() + 1));
  if (copy == nullptr) {
    mmerr_throw(-1, MMERR_LEVEL_FATAL, morvellanth::mmtoken::kNoMemoryMessage);
    return nullptr;
  }
  std::memcpy(copy, token.data(), token.size());
  copy[token.size()] = '\0';
  return copy;
}
