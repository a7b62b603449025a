// Token lists: the process-wide table of lists and every operation on them
// except the wildcard patterns (mmtoken_regex.cpp) and the Fortran twins.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "mmerr/mmerr.h"
#include "mmtoken/mmtoken.h"
#include "mmtoken/mmtoken_internal.h"

// A block of token text; tokens are appended at `used`.
struct TokenSlab {
  TokenSlab* next;
  std::size_t capacity;
  std::size_t used;
  std::size_t live;  // tokens of the list stored here
  char* data() { return reinterpret_cast<char*>(this + 1); }
  bool holds(const char* text) { return text >= data() && text < data() + capacity; }
};

namespace morvellanth::mmtoken {
namespace {

// Messages of one operation: bad handle, bad position, and the second line
// that follows a bad position (its run of blanks differs between operations
// and is kept exactly).
struct Messages {
  const char* bad_handle;
  const char* bad_index;
  const char* only;
};

constexpr Messages kDelete = {"mmtoken_delete(): bad tok index = %d \n", nullptr, nullptr};
constexpr Messages kDeleteToken = {"mmtoken_delete_token(): bad tok index = %d \n",
                                   "mmtoken_delete_token(): bad index = %d \n",
                                   "                      :  only %d tokens in list\n"};
constexpr Messages kClear = {"mmtoken_clear(): bad tok index = %d \n", nullptr, nullptr};
constexpr Messages kAdd = {"mmtoken_add(): bad tok index = %d \n", nullptr, nullptr};
constexpr Messages kReplace = {"mmtoken_replace(): bad tok index = %d \n",
                               "mmtoken_replace(): bad index = %d \n",
                               "                 :  only %d tokens in list\n"};
constexpr Messages kGetString = {"mmtoken_get_string(): bad tok index = %d \n", nullptr, nullptr};
constexpr Messages kNum = {"mmtoken_num(): bad tok index = %d \n", nullptr, nullptr};
constexpr Messages kGetToken = {"mmtoken_get_token(): bad tok index = %d \n",
                                "mmtoken_get_token(): bad index = %d \n",
                                "                 :  only %d tokens in list\n"};
constexpr Messages kFindType = {"mmtoken_find_type(): bad tok index = %d \n",
                                "mmtoken_find_type(): bad index = %d \n",
                                "                     :  only %d tokens in list\n"};
constexpr Messages kGetInt = {"mmtoken_get_int(): bad tok index = %d \n",
                              "mmtoken_get_int(): bad index = %d \n",
                              "                 :  only %d tokens in list\n"};
constexpr Messages kGetDouble = {"mmtoken_get_double(): bad tok index = %d \n",
                                 "mmtoken_get_double(): bad index = %d \n",
                                 "                 :  only %d tokens in list\n"};
constexpr Messages kIndex = {"mmtoken_index(): bad tok index = %d \n", nullptr, nullptr};
constexpr Messages kIndexN = {"mmtoken_indexn(): bad tok index = %d \n", nullptr, nullptr};
constexpr Messages kToUpper = {"mmtoken_toupper(): bad tok index = %d \n", nullptr, nullptr};
constexpr Messages kToLowerToken = {"mmtoken_tolower_token(): bad tok index = %d \n",
                                    "mmtoken_tolower_token(): bad index = %d \n",
                                    "                 :  only %d tokens in list\n"};
constexpr Messages kSetQuoted = {"mmtoken_set_quoted_characters(): bad tok index = %d \n",
                                 nullptr, nullptr};

// Copying and merging name both lists; mmtoken_copyn reports as mmtoken_copy.
struct PairMessages {
  const char* bad_destination;
  const char* bad_source;
};
constexpr PairMessages kCopy = {"mmtoken_copy(): bad dest index = %d \n",
                                "mmtoken_copy(): bad source index = %d \n"};
constexpr PairMessages kMerge = {"mmtoken_merge(): bad dest index = %d \n",
                                 "mmtoken_merge(): bad source index = %d \n"};
constexpr PairMessages kMergeN = {"mmtoken_mergen(): bad dest index = %d \n",
                                  "mmtoken_mergen(): bad source index = %d \n"};

constexpr char kExpandMessage[] = "mmtoken_add(): can't expand list \n";
constexpr char kNoQuotesArrayMessage[] =
    "mmtoken_get_string(): can't allocate need_quotes array\n";
constexpr char kNoStringMessage[] = "mmtoken_get_string(): can't allocate string\n";

constexpr int kGrowth = 20;  // slots added to a full list

// Every token list of the process; a handle is a position here. Records are
// never removed: a deleted list is marked free and its record reused (the
// highest free one first). Everything still held is released at exit.
struct TokenTable {
  std::vector<token_tag> toks;
  ~TokenTable();
};
TokenTable token_table;


constexpr std::size_t kFirstSlab = 256;
constexpr std::size_t kLargestSlab = std::size_t{1} << 20;

// Copies a token into the list's newest slab, starting a larger one when it
// does not fit. Null when memory runs out.
char* StoreText(token_tag* list, std::string_view token) {
  std::size_t need = token.size() + 1;
  TokenSlab* slab = list->slabs;
  if (slab == nullptr || slab->capacity - slab->used < need) {
    std::size_t capacity = slab == nullptr ? kFirstSlab : std::min(slab->capacity * 2, kLargestSlab);
    capacity = std::max(capacity, need);
    TokenSlab* grown = static_cast<TokenSlab*>(std::malloc(sizeof(TokenSlab) + capacity));
    if (grown == nullptr) return nullptr;
    *grown = TokenSlab{slab, capacity, 0, 0};
    list->slabs = slab = grown;
  }
  char* text = slab->data() + slab->used;
  std::memcpy(text, token.data(), token.size());
  text[token.size()] = '\0';
  slab->used += need;
  slab->live++;
  return text;
}

// Gives back the space of a token that left the list: a slab whose tokens
// have all gone is freed (the newest one is emptied for reuse), so a list
// used as a queue does not grow. Other tokens never move.
void ReleaseText(token_tag* list, const char* text) {
  for (TokenSlab** link = &list->slabs; *link != nullptr; link = &(*link)->next) {
    TokenSlab* slab = *link;
    if (!slab->holds(text)) continue;
    if (--slab->live > 0) return;
    if (slab == list->slabs) {
      slab->used = 0;
    } else {
      *link = slab->next;
      std::free(slab);
    }
    return;
  }
}

void FreeTokens(token_tag* list) {
  while (list->slabs != nullptr) {
    TokenSlab* next = list->slabs->next;
    std::free(list->slabs);
    list->slabs = next;
  }
  list->count = 0;
}

TokenTable::~TokenTable() {
  for (token_tag& list : toks) {
    FreeTokens(&list);
    std::free(list.tokens);
    FreePatterns(&list);
    std::free(list.quoted_characters);
  }
}

token_tag* Checked(int handle, const Messages& messages) {
  token_tag* list = FindList(handle);
  if (list == nullptr) mmerr_throw(-1, MMERR_LEVEL_WARNING, messages.bad_handle, handle);
  return list;
}

bool IndexValid(const token_tag& list, int index, const Messages& messages) {
  if (index >= 0 && index < list.count) return true;
  mmerr_throw(-1, MMERR_LEVEL_WARNING, messages.bad_index, index);
  mmerr_throw(-1, MMERR_LEVEL_WARNING, messages.only, list.count);
  return false;
}

// Checks both lists of a copy or merge, the destination first.
bool PairValid(int destination, int source, const PairMessages& messages) {
  if (FindList(destination) == nullptr) {
    mmerr_throw(-1, MMERR_LEVEL_WARNING, messages.bad_destination, destination);
    return false;
  }
  if (FindList(source) == nullptr) {
    mmerr_throw(-1, MMERR_LEVEL_WARNING, messages.bad_source, source);
    return false;
  }
  return true;
}

// The field that mmtoken_addn stores for a token.
std::string MakeField(const char* token, int width, int left, int column) {
  std::size_t length = std::strlen(token);
  std::size_t field = width > 0 ? std::max(length, static_cast<std::size_t>(width)) : length;
  std::string text(field, ' ');
  std::size_t room = field - length;  // last column where the token still fits
  std::size_t start = 0;
  if (!left) {
    start = column == 0 ? room : static_cast<std::size_t>(column < 0 ? 0 : column);
    if (start > room) start = room;
  }
  text.replace(start, length, token, length);
  return text;
}

// Appends every source token (as a field when `field` is set). A list added
// to itself gets each of its tokens once more.
int AppendAll(int destination, int source, bool field, int width, int left, int column) {
  token_tag* from = FindList(source);
  int count = from->count;
  for (int i = 0; i < count; i++) {
    // The table does not move while appending, but the source's array may.
    const char* token = FindList(source)->tokens[i];
    int result = field ? mmtoken_addn(destination, token, width, left, column)
                       : mmtoken_add(destination, token);
    if (result != 0) return -1;
  }
  return 0;
}

void SinkToken(void* context, std::string_view token) {
  AppendToken(static_cast<token_tag*>(context), token);
}

}  // namespace

void FreePatterns(token_tag* list) {
  for (int i = 0; i < list->regex_count; i++) std::free(list->regexes[i]);
  std::free(list->regexes);
  list->regexes = nullptr;
  list->regex_count = 0;
}

token_tag* FindList(int handle) {
  if (handle < 0 || static_cast<std::size_t>(handle) >= token_table.toks.size()) return nullptr;
  token_tag* list = &token_table.toks[static_cast<std::size_t>(handle)];
  return list->in_use == 1 ? list : nullptr;
}

const token_tag* RecordAt(int handle) {
  if (handle < 0 || static_cast<std::size_t>(handle) >= token_table.toks.size()) return nullptr;
  return &token_table.toks[static_cast<std::size_t>(handle)];
}

int RecordCount() { return static_cast<int>(token_table.toks.size()); }

int AppendToken(token_tag* list, std::string_view token) {
  if (list->count >= list->capacity) {
    list->capacity += kGrowth;
    if (list->capacity > list->allocated) {
      int want = std::max(list->capacity, 2 * list->allocated);
      void* grown = std::realloc(list->tokens, static_cast<std::size_t>(want) * sizeof(char*));
      if (grown == nullptr) {
        mmerr_throw(-1, MMERR_LEVEL_FATAL, kExpandMessage);
        return -1;
      }
      list->tokens = static_cast<char**>(grown);
      list->allocated = want;
    }
  }
  char* copy = StoreText(list, token);
  if (copy == nullptr) {
    mmerr_throw(-1, MMERR_LEVEL_FATAL, kExpandMessage);
    return -1;
  }
  list->tokens[list->count++] = copy;
  return 0;
}

}  // namespace morvellanth::mmtoken

using morvellanth::mmtoken::FindList;
using namespace morvellanth::mmtoken;  // the message tables

extern "C" {

int mmtoken_initialize(void) { return 0; }
void mmtoken_terminate(void) {}

int mmtoken_new(int* handle, const char* line, const char* separators, const char* pairs,
                const char* comments, const char* escapes, const char* singles) {
  std::vector<token_tag>& toks = token_table.toks;
  int free_record = -1;
  for (std::size_t i = 0; i < toks.size(); i++)
    if (toks[i].in_use == 0) free_record = static_cast<int>(i);
  if (free_record < 0) {
    toks.push_back(token_tag());
    free_record = static_cast<int>(toks.size()) - 1;
  }

  token_tag* list = &toks[static_cast<std::size_t>(free_record)];
  *list = token_tag();
  list->in_use = 1;
  list->quoted_characters = strdup(" ");

  if (line != nullptr && line[0] != '\0') {
    SplitLine(line, separators != nullptr ? separators : " ,\t", pairs != nullptr ? pairs : "",
              comments != nullptr ? comments : "", escapes != nullptr ? escapes : "",
              singles != nullptr ? singles : "", SinkToken, list);
  }
  if (handle != nullptr) *handle = free_record;
  return 0;
}

int mmtoken_delete(int handle) {
  token_tag* list = Checked(handle, kDelete);
  if (list == nullptr) return -1;
  FreeTokens(list);
  std::free(list->tokens);
  list->tokens = nullptr;
  FreePatterns(list);
  std::free(list->quoted_characters);
  list->quoted_characters = nullptr;
  list->capacity = 0;
  list->allocated = 0;
  list->in_use = 0;
  return 0;
}

int mmtoken_in_use(int handle) { return FindList(handle) != nullptr ? 1 : 0; }

int mmtoken_clear(int handle) {
  token_tag* list = Checked(handle, kClear);
  if (list == nullptr) return -1;
  FreeTokens(list);
  return 0;
}

int mmtoken_num(int handle) {
  token_tag* list = Checked(handle, kNum);
  return list != nullptr ? list->count : -1;
}

int mmtoken_add(int handle, const char* token) {
  if (token == nullptr) return 0;
  token_tag* list = Checked(handle, kAdd);
  if (list == nullptr) return -1;
  return AppendToken(list, token);
}

int mmtoken_addn(int handle, const char* token, int width, int left, int column) {
  if (token == nullptr) return 0;
  token_tag* list = Checked(handle, kAdd);
  if (list == nullptr) return -1;
  return AppendToken(list, MakeField(token, width, left, column));
}

char* mmtoken_get_token(int handle, int index) {
  token_tag* list = Checked(handle, kGetToken);
  if (list == nullptr || !IndexValid(*list, index, kGetToken)) return nullptr;
  return list->tokens[index];
}

int mmtoken_replace(int handle, int index, const char* token) {
  token_tag* list = Checked(handle, kReplace);
  if (list == nullptr || !IndexValid(*list, index, kReplace)) return -1;
  std::string_view text = token != nullptr ? token : "";
  char* old = list->tokens[index];
  if (text.size() <= std::strlen(old)) {
    // The old token's room is enough; the old text is not kept either way.
    std::memmove(old, text.data(), text.size());
    old[text.size()] = '\0';
    return 0;
  }
  char* copy = StoreText(list, text);
  if (copy == nullptr) return -1;
  ReleaseText(list, old);
  list->tokens[index] = copy;
  return 0;
}

int mmtoken_delete_token(int handle, int index) {
  token_tag* list = Checked(handle, kDeleteToken);
  if (list == nullptr || !IndexValid(*list, index, kDeleteToken)) return -1;
  ReleaseText(list, list->tokens[index]);
  std::memmove(list->tokens + index, list->tokens + index + 1,
               static_cast<std::size_t>(list->count - index - 1) * sizeof(char*));
  list->count--;
  return 0;
}

int mmtoken_copy(int destination, int source) {
  if (!PairValid(destination, source, kCopy)) return -1;
  FreeTokens(FindList(destination));
  return AppendAll(destination, source, false, 0, 0, 0);
}

int mmtoken_merge(int destination, int source) {
  if (!PairValid(destination, source, kMerge)) return -1;
  return AppendAll(destination, source, false, 0, 0, 0);
}

int mmtoken_copyn(int destination, int source, int width, int left, int column) {
  if (!PairValid(destination, source, kCopy)) return -1;
  FreeTokens(FindList(destination));
  return AppendAll(destination, source, true, width, left, column);
}

int mmtoken_mergen(int destination, int source, int width, int left, int column) {
  if (!PairValid(destination, source, kMergeN)) return -1;
  return AppendAll(destination, source, true, width, left, column);
}

char* mmtoken_get_string(int handle) {
  token_tag* list = Checked(handle, kGetString);
  if (list == nullptr) return nullptr;
  if (list->count == 0) return strdup("");

  const char* quoted = list->quoted_characters != nullptr ? list->quoted_characters : "";
  char* need_quotes = static_cast<char*>(std::malloc(static_cast<std::size_t>(list->count)));
  if (need_quotes == nullptr) {
    mmerr_throw(-1, MMERR_LEVEL_FATAL, kNoQuotesArrayMessage);
    return nullptr;
  }
  std::size_t size = 0;
  for (int i = 0; i < list->count; i++) {
    const char* token = list->tokens[i];
    std::size_t length = std::strlen(token);
    need_quotes[i] = length == 0 || std::strpbrk(token, quoted) != nullptr;
    size += length + 1 + (need_quotes[i] ? 2 : 0);
  }

  char* line = static_cast<char*>(std::malloc(size));
  if (line == nullptr) {
    std::free(need_quotes);
    mmerr_throw(-1, MMERR_LEVEL_FATAL, kNoStringMessage);
    return nullptr;
  }
  char* out = line;
  for (int i = 0; i < list->count; i++) {
    if (i > 0) *out++ = ' ';
    if (need_quotes[i]) *out++ = '"';
    std::size_t length = std::strlen(list->tokens[i]);
    std::memcpy(out, list->tokens[i], length);
    out += length;
    if (need_quotes[i]) *out++ = '"';
  }
  *out = '\0';
  std::free(need_quotes);
  return line;
}

int mmtoken_find_type(int handle, int index) {
  token_tag* list = Checked(handle, kFindType);
  if (list == nullptr || !IndexValid(*list, index, kFindType)) return -1;
  return mm_number_type(list->tokens[index]);
}

int mmtoken_get_int(int handle, int index, int* value) {
  if (value != nullptr) *value = 0;
  token_tag* list = Checked(handle, kGetInt);
  if (list == nullptr || !IndexValid(*list, index, kGetInt)) return -1;
  if (mm_number_type(list->tokens[index]) != MMTOKEN_INTEGER) return -1;
  if (value != nullptr) *value = std::atoi(list->tokens[index]);
  return 0;
}

int mmtoken_get_double(int handle, int index, double* value) {
  if (value != nullptr) *value = 0.0;
  token_tag* list = Checked(handle, kGetDouble);
  if (list == nullptr || !IndexValid(*list, index, kGetDouble)) return -1;
  if (mm_number_type(list->tokens[index]) == MMTOKEN_NOT_A_NUMBER) return -1;
  if (value != nullptr) *value = std::atof(list->tokens[index]);
  return 0;
}

int mmtoken_index(int handle, const char* text) {
  token_tag* list = Checked(handle, kIndex);
  if (list == nullptr || text == nullptr) return -1;
  for (int i = 0; i < list->count; i++)
    if (std::strcmp(list->tokens[i], text) == 0) return i;
  return -1;
}

int mmtoken_indexn(int handle, const char* text, int n) {
  token_tag* list = Checked(handle, kIndexN);
  if (list == nullptr || text == nullptr) return -1;
  // A negative n is taken as a huge unsigned count: whole strings compare.
  std::size_t length = static_cast<std::size_t>(static_cast<unsigned int>(n));
  for (int i = 0; i < list->count; i++)
    if (std::strncmp(list->tokens[i], text, length) == 0) return i;
  return -1;
}

int mmtoken_toupper(int handle) {
  token_tag* list = Checked(handle, kToUpper);
  if (list == nullptr) return -1;
  for (int i = 0; i < list->count; i++)
    for (char* c = list->tokens[i]; *c != '\0'; c++)
      *c = static_cast<char>(std::toupper(static_cast<unsigned char>(*c)));
  return 0;
}

int mmtoken_tolower_token(int handle, int index) {
  token_tag* list = Checked(handle, kToLowerToken);
  if (list == nullptr || !IndexValid(*list, index, kToLowerToken)) return -1;
  for (char* c = list->tokens[index]; *c != '\0'; c++)
    *c = static_cast<char>(std::tolower(static_cast<unsigned char>(*c)));
  return 0;
}

int mmtoken_set_quoted_characters(int handle, const char* characters) {
  token_tag* list = Checked(handle, kSetQuoted);
  if (list == nullptr) return -1;
  if (characters == nullptr) return 0;
  char* copy = strdup(characters);
  if (copy == nullptr) return -1;
  std::free(list->quoted_characters);
  list->quoted_characters = copy;
  return 0;
}

}  // extern "C"
