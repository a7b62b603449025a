// Cuts random lines with random character sets through mystrtok and through
// mmtoken_new (which splits with the same rules) and compares the tokens with
// a plain model of the splitting rules: comment over escape over pair over separator
// over single character. Input: up to six NUL-separated fields, the line,
// then the separators, pair separators, comment, escape and single
// characters; a missing field is passed as null (the list's default).
// Checks: mystrtok yields and the list holds exactly the model's tokens; joining, searching and
// the number classification work on them; the list is released every run.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "mmtoken/mmtoken.h"

namespace {

struct Sets {
  std::string separators, pairs, comment, escape, single;
};

bool In(const std::string& set, char c) { return set.find(c) != std::string::npos; }

// The splitting rules, one token per call as the splitter yields them.
class ModelSplitter {
 public:
  ModelSplitter(const std::string& line, const Sets& sets) : line_(line), sets_(sets) {
    for (std::size_t i = 0; i + 1 < sets.pairs.size(); i += 2) {
      openers_.push_back(sets.pairs[i]);
      closers_.push_back(sets.pairs[i + 1]);
    }
  }

  std::optional<std::string> Next() {
    if (pos_ >= line_.size()) return std::nullopt;
    if (sets_.pairs.size() % 2 != 0) return std::nullopt;
    std::string token;
    while (pos_ < line_.size()) {
      const char c = line_[pos_];
      if (In(sets_.comment, c)) {
        pos_ = line_.size();
        return std::nullopt;
      }
      if (In(sets_.escape, c)) {
        if (++pos_ >= line_.size()) break;
        token.push_back(line_[pos_++]);
        continue;
      }
      const std::size_t k = openers_.find(c);
      if (k != std::string::npos) {
        const char closer = closers_[k];
        ++pos_;
        while (pos_ < line_.size() && line_[pos_] != closer) token.push_back(line_[pos_++]);
        if (pos_ >= line_.size()) return token;  // unmatched: what was collected
        ++pos_;
        SkipSeparators();
        return token;
      }
      if (In(sets_.separators, c)) {
        SkipSeparators();
        if (!token.empty()) return token;
        continue;
      }
      if (In(sets_.single, c)) {
        if (!token.empty()) return token;
        ++pos_;
        return std::string(1, c);
      }
      token.push_back(c);
      ++pos_;
    }
    if (!token.empty()) return token;
    return std::nullopt;
  }

 private:
  void SkipSeparators() {
    while (pos_ < line_.size() && In(sets_.separators, line_[pos_])) ++pos_;
  }

  std::string line_;
  Sets sets_;
  std::string openers_, closers_;
  std::size_t pos_ = 0;
};

const char* FieldOrNull(const std::vector<std::string>& fields, std::size_t i) {
  return i < fields.size() ? fields[i].c_str() : nullptr;
}

std::string FieldOr(const std::vector<std::string>& fields, std::size_t i, const char* fallback) {
  return i < fields.size() ? fields[i] : std::string(fallback);
}

void CheckList(int handle, const std::vector<std::string>& expected) {
  fuzz::Check(mmtoken_num(handle) == static_cast<int>(expected.size()),
              "the list holds as many tokens as the model");
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const char* token = mmtoken_get_token(handle, static_cast<int>(i));
    fuzz::Check(token != nullptr && expected[i] == token, "each token is the model's token");
    const int found = mmtoken_index(handle, token);
    fuzz::Check(found >= 0 && found <= static_cast<int>(i) && expected[found] == token,
                "a token is found at its first position");
    const int type = mmtoken_find_type(handle, static_cast<int>(i));
    fuzz::Check(type == mm_number_type(token) && type >= 0 && type <= 2,
                "a token's type is its number type");
  }
  char* joined = mmtoken_get_string(handle);
  fuzz::Check(joined != nullptr, "a live list joins into a line");
  std::size_t length = expected.empty() ? 0 : expected.size() - 1;
  for (const std::string& token : expected) {
    length += token.size();
    if (token.empty() || token.find(' ') != std::string::npos) length += 2;
  }
  fuzz::Check(std::strlen(joined) == length, "the joined line has the tokens, blanks and quotes");
  std::free(joined);
}

// mystrtok takes no null sets: a missing field stands for the list's default.
void CheckMystrtok(const std::string& line, const Sets& sets,
                   const std::vector<std::string>& expected) {
  std::vector<std::string> tokens;
  const char* next_line = line.c_str();
  while (char* token = mystrtok(next_line, sets.separators.c_str(), sets.pairs.c_str(),
                                sets.comment.c_str(), sets.escape.c_str(), sets.single.c_str())) {
    tokens.emplace_back(token);
    std::free(token);
    next_line = nullptr;
    fuzz::Check(tokens.size() <= line.size() + 1, "mystrtok ends the line");
  }
  fuzz::Check(tokens == expected, "mystrtok yields the model's tokens");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::SilenceHandle(-1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::vector<std::string> fields = fuzz::SplitFields(data, size, 6);
  const Sets sets{FieldOr(fields, 1, " ,\t"), FieldOr(fields, 2, ""), FieldOr(fields, 3, ""),
                  FieldOr(fields, 4, ""), FieldOr(fields, 5, "")};

  std::vector<std::string> expected;
  ModelSplitter model(fields[0], sets);
  while (std::optional<std::string> token = model.Next()) expected.push_back(*token);

  CheckMystrtok(fields[0], sets, expected);

  int handle = -1;
  const int rc = mmtoken_new(&handle, fields[0].c_str(), FieldOrNull(fields, 1),
                             FieldOrNull(fields, 2), FieldOrNull(fields, 3),
                             FieldOrNull(fields, 4), FieldOrNull(fields, 5));
  fuzz::Check(rc == 0 && mmtoken_in_use(handle) == 1, "mmtoken_new makes a live list");
  // One list is made and released per run, so the table never grows past one
  // record.
  fuzz::Check(handle == 0, "a released record is reused");
  CheckList(handle, expected);

  mmtoken_toupper(handle);
  mmtoken_delete(handle);
  fuzz::Check(mmtoken_in_use(handle) == 0, "a deleted list is not live");
  return 0;
}
