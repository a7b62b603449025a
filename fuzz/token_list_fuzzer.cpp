// Runs random sequences of token-list operations (make, delete, add, addn,
// replace, delete_token, copy, merge, copyn, clear, set_quoted_characters,
// toupper, tolower_token) on a few handles, valid and invalid, and compares
// every list with a model after each step: its tokens, its joined line, the
// searches and the number conversions. Input: a byte stream of operations,
// each an opcode byte followed by its operands (handles, positions and short
// texts taken from the following bytes). Every list made in a run is
// deleted at its end, so the process-wide table stays as small as the most
// lists one run held.
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "mmtoken/mmtoken.h"

namespace {

constexpr int kMaxLive = 6;
constexpr std::size_t kMaxTokens = 64;

struct ModelList {
  bool live = false;
  std::vector<std::string> tokens;
  std::string quoted = " ";
};

// Records of the process-wide table; they outlive a run as the table does.
std::vector<ModelList>& Records() {
  static std::vector<ModelList> records;
  return records;
}

bool Live(int handle) {
  return handle >= 0 && handle < static_cast<int>(Records().size()) && Records()[handle].live;
}

class Input {
 public:
  Input(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  bool empty() const { return pos_ >= size_; }
  uint8_t Byte() { return pos_ < size_ ? data_[pos_++] : 0; }
  // A handle: mostly records of the table, sometimes one past it or -1.
  int Handle() {
    const int n = static_cast<int>(Records().size());
    return static_cast<int>(Byte() % (n + 2)) - 1;
  }
  int Index(int handle) {
    const int count = Live(handle) ? static_cast<int>(Records()[handle].tokens.size()) : 0;
    return static_cast<int>(Byte() % (count + 2)) - 1;
  }
  // Up to 15 bytes of text, without NULs.
  std::string Text() {
    std::string text;
    for (int length = Byte() % 16; length > 0 && !empty(); --length) {
      const char c = static_cast<char>(Byte());
      if (c != '\0') text.push_back(c);
    }
    return text;
  }

 private:
  const uint8_t* data_;
  size_t size_;
  size_t pos_ = 0;
};

std::string Field(const std::string& token, int width, int left, int column) {
  const std::size_t length = token.size();
  const std::size_t w = std::max<std::size_t>(length, width > 0 ? width : 0);
  std::string field(w, ' ');
  std::size_t at = 0;
  if (!left) {
    at = w - length;
    if (column > 0 && static_cast<std::size_t>(column) + length <= w) at = column;
  }
  field.replace(at, length, token);
  return field;
}

std::string Joined(const ModelList& list) {
  std::string line;
  for (std::size_t i = 0; i < list.tokens.size(); ++i) {
    const std::string& token = list.tokens[i];
    if (i > 0) line += ' ';
    const bool quote = token.empty() || token.find_first_of(list.quoted) != std::string::npos;
    line += quote ? "\"" + token + "\"" : token;
  }
  return line;
}

void CheckList(int handle) {
  const ModelList& list = Records()[handle];
  fuzz::Check(mmtoken_in_use(handle) == 1, "a live list is in use");
  fuzz::Check(mmtoken_num(handle) == static_cast<int>(list.tokens.size()), "token count");
  for (std::size_t i = 0; i < list.tokens.size(); ++i) {
    const char* token = mmtoken_get_token(handle, static_cast<int>(i));
    fuzz::Check(token != nullptr && list.tokens[i] == token, "token text");
  }
  char* line = mmtoken_get_string(handle);
  fuzz::Check(line != nullptr && Joined(list) == line, "joined line");
  std::free(line);
}

void CheckSearches(Input& in, int handle) {
  const std::string text = in.Text();
  const int n = static_cast<int>(in.Byte() % 8) - 1;
  int expected = -1, expected_n = -1;
  if (Live(handle)) {
    const ModelList& list = Records()[handle];
    for (std::size_t i = list.tokens.size(); i-- > 0;) {
      if (list.tokens[i] == text) expected = static_cast<int>(i);
      if (std::strncmp(list.tokens[i].c_str(), text.c_str(), static_cast<std::size_t>(n)) == 0) {
        expected_n = static_cast<int>(i);
      }
    }
  }
  fuzz::Check(mmtoken_index(handle, text.c_str()) == expected, "index");
  fuzz::Check(mmtoken_indexn(handle, text.c_str(), n) == expected_n, "indexn");
}

void CheckNumbers(Input& in, int handle) {
  const int index = in.Index(handle);
  const bool valid = Live(handle) && index >= 0 &&
                     index < static_cast<int>(Records()[handle].tokens.size());
  const int type = mmtoken_find_type(handle, index);
  int value = 7;
  double real = 7.0;
  const int int_rc = mmtoken_get_int(handle, index, &value);
  const int double_rc = mmtoken_get_double(handle, index, &real);
  if (!valid) {
    fuzz::Check(type == -1 && int_rc == -1 && double_rc == -1, "bad positions fail");
    return;
  }
  const std::string& token = Records()[handle].tokens[index];
  fuzz::Check(type == mm_number_type(token.c_str()), "find_type is mm_number_type");
  fuzz::Check((int_rc == 0) == (type == 1), "get_int accepts exactly integers");
  fuzz::Check(int_rc == 0 ? value == std::atoi(token.c_str()) : value == 0, "get_int value");
  fuzz::Check((double_rc == 0) == (type != 0), "get_double accepts exactly numbers");
  if (double_rc != 0) fuzz::Check(real == 0.0, "get_double stores 0 on failure");
}

// Appends as the list would, within the harness's bound on list length.
bool Room(int handle, std::size_t more) {
  return !Live(handle) || Records()[handle].tokens.size() + more <= kMaxTokens;
}

void Step(Input& in) {
  auto& records = Records();
  switch (in.Byte() % 16) {
    case 0: {  // make a list, from a line with default sets
      int live = 0;
      for (const ModelList& list : records) live += list.live;
      const std::string line = in.Text();
      if (live >= kMaxLive) return;
      int expected = -1;
      for (int i = static_cast<int>(records.size()) - 1; i >= 0 && expected < 0; --i) {
        if (!records[i].live) expected = i;
      }
      if (expected < 0) {
        expected = static_cast<int>(records.size());
        records.emplace_back();
      }
      int handle = -2;
      fuzz::Check(mmtoken_new(&handle, line.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr) == 0,
                  "mmtoken_new returns 0");
      fuzz::Check(handle == expected, "the highest free record is reused");
      records[handle] = ModelList{};
      records[handle].live = true;
      while (char* token = mystrtok(records[handle].tokens.empty() ? line.c_str() : nullptr,
                                    " ,\t", "", "", "", "")) {
        records[handle].tokens.emplace_back(token);
        std::free(token);
      }
      break;
    }
    case 1: {
      const int handle = in.Handle();
      fuzz::Check(mmtoken_delete(handle) == (Live(handle) ? 0 : -1), "delete result");
      if (Live(handle)) records[handle] = ModelList{};
      fuzz::Check(mmtoken_in_use(handle) == 0, "a deleted list is not in use");
      break;
    }
    case 2:
    case 3: {
      const int handle = in.Handle();
      const std::string token = in.Text();
      if (!Room(handle, 1)) return;
      fuzz::Check(mmtoken_add(handle, token.c_str()) == (Live(handle) ? 0 : -1), "add result");
      if (Live(handle)) records[handle].tokens.push_back(token);
      break;
    }
    case 4: {
      const int handle = in.Handle();
      const std::string token = in.Text();
      const int width = in.Byte() % 24, left = in.Byte() % 2, column = in.Byte() % 24;
      if (!Room(handle, 1)) return;
      fuzz::Check(mmtoken_addn(handle, token.c_str(), width, left, column) == (Live(handle) ? 0 : -1),
                  "addn result");
      if (Live(handle)) records[handle].tokens.push_back(Field(token, width, left, column));
      break;
    }
    case 5: {
      const int handle = in.Handle();
      const int index = in.Index(handle);
      const std::string token = in.Text();
      const bool valid = Live(handle) && index >= 0 &&
                         index < static_cast<int>(records[handle].tokens.size());
      fuzz::Check(mmtoken_replace(handle, index, token.c_str()) == (valid ? 0 : -1), "replace result");
      if (valid) records[handle].tokens[index] = token;
      break;
    }
    case 6: {
      const int handle = in.Handle();
      const int index = in.Index(handle);
      const bool valid = Live(handle) && index >= 0 &&
                         index < static_cast<int>(records[handle].tokens.size());
      fuzz::Check(mmtoken_delete_token(handle, index) == (valid ? 0 : -1), "delete_token result");
      if (valid) records[handle].tokens.erase(records[handle].tokens.begin() + index);
      break;
    }
    case 7:
    case 8: {
      const bool copy = in.Byte() % 2;
      const int destination = in.Handle(), source = in.Handle();
      const bool valid = Live(destination) && Live(source);
      if (valid && !Room(destination, records[source].tokens.size())) return;
      const int rc = copy ? mmtoken_copy(destination, source) : mmtoken_merge(destination, source);
      fuzz::Check(rc == (valid ? 0 : -1), "copy/merge result");
      if (valid) {
        const std::vector<std::string> tokens = records[source].tokens;
        if (copy) records[destination].tokens.clear();
        // Copying a list into itself empties it first, so nothing is left to copy.
        if (!(copy && destination == source)) {
          records[destination].tokens.insert(records[destination].tokens.end(), tokens.begin(),
                                             tokens.end());
        }
      }
      break;
    }
    case 9: {
      const bool copy = in.Byte() % 2;
      const int destination = in.Handle(), source = in.Handle();
      const int width = in.Byte() % 24, left = in.Byte() % 2, column = in.Byte() % 24;
      const bool valid = Live(destination) && Live(source);
      if (valid && !Room(destination, records[source].tokens.size())) return;
      const int rc = copy ? mmtoken_copyn(destination, source, width, left, column)
                          : mmtoken_mergen(destination, source, width, left, column);
      fuzz::Check(rc == (valid ? 0 : -1), "copyn/mergen result");
      if (valid) {
        const std::vector<std::string> tokens = records[source].tokens;
        if (copy) records[destination].tokens.clear();
        if (!(copy && destination == source)) {
          for (const std::string& token : tokens) {
            records[destination].tokens.push_back(Field(token, width, left, column));
          }
        }
      }
      break;
    }
    case 10: {
      const int handle = in.Handle();
      fuzz::Check(mmtoken_clear(handle) == (Live(handle) ? 0 : -1), "clear result");
      if (Live(handle)) records[handle].tokens.clear();
      break;
    }
    case 11: {
      const int handle = in.Handle();
      const std::string characters = in.Text();
      const bool null = in.Byte() % 4 == 0;
      mmtoken_set_quoted_characters(handle, null ? nullptr : characters.c_str());
      if (Live(handle) && !null) records[handle].quoted = characters;
      break;
    }
    case 12: {
      const int handle = in.Handle();
      mmtoken_toupper(handle);
      if (Live(handle)) {
        for (std::string& token : records[handle].tokens) {
          for (char& c : token) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
      }
      break;
    }
    case 13: {
      const int handle = in.Handle();
      const int index = in.Index(handle);
      mmtoken_tolower_token(handle, index);
      if (Live(handle) && index >= 0 && index < static_cast<int>(records[handle].tokens.size())) {
        for (char& c : records[handle].tokens[index]) {
          c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
      }
      break;
    }
    case 14:
      CheckSearches(in, in.Handle());
      break;
    case 15:
      CheckNumbers(in, in.Handle());
      break;
  }
  for (int handle = 0; handle < static_cast<int>(records.size()); ++handle) {
    if (records[handle].live) CheckList(handle);
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::SilenceHandle(-1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in(data, size);
  for (int steps = 0; steps < 200 && !in.empty(); ++steps) Step(in);
  auto& records = Records();
  for (int handle = 0; handle < static_cast<int>(records.size()); ++handle) {
    if (records[handle].live) {
      fuzz::Check(mmtoken_delete(handle) == 0, "a live list is deleted");
      records[handle] = ModelList{};
    }
  }
  return 0;
}
