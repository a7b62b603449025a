// Token lists: handle reuse, growth, fixed-width fields, joining, copying into
// itself, number types and the exact messages of failures. The Fortran twins'
// program covers the plain edits, conversions and searches.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "mmtoken/mmtoken.h"
#include "mmtoken/mmtoken_internal.h"
#include "support/test_support.h"
#include "token_test_util.h"

namespace {

using mmtoken_test::ListTokens;
using mmtoken_test::MessagesOf;
using mmtoken_test::Tokens;
using morvellanth::mmtoken::RecordAt;

// A list made from a line with the default sets; it lives to the end of the process.
int New(const char* line = nullptr) {
  int handle = -1;
  mmtoken_new(&handle, line, nullptr, nullptr, nullptr, nullptr, nullptr);
  return handle;
}

constexpr int kBad = 9999;  // a handle that was never made

TEST(TokenListLifecycle, ReusesTheHighestFreeRecord) {
  // In a child, where no other test's lists are live.
  mmfs_test::ChildResult child = mmfs_test::RunInChild([] {
    int records = morvellanth::mmtoken::RecordCount(), base = New("x");
    while (morvellanth::mmtoken::RecordCount() == records) base = New("x");  // use up free ones
    if (New("x") != base + 1 || New("x") != base + 2) return 1;
    mmtoken_delete(base);
    mmtoken_delete(base + 2);
    if (mmtoken_in_use(base) != 0 || New("x") != base + 2 || New("x") != base || New() != base + 3) return 2;
    mmtoken_delete(base + 1);  // a reused record starts afresh, with the default quoted set
    if (New("x") != base + 1 || mmtoken_num(base + 1) != 1 || mmtoken_num(base + 3) != 0) return 3;
    return std::strcmp(RecordAt(base + 1)->quoted_characters, " ") == 0 ? 0 : 4;
  });
  EXPECT_TRUE(child.exited && child.exit_code == 0) << "code " << child.exit_code << ": " << child.err;
}

TEST(TokenListAppend, GrowsByTwentySlotsAndAddnPlacesTheTokenInAField) {
  const int h = New("");
  for (int i = 0; i < 20; i++) mmtoken_add(h, "t");
  EXPECT_EQ(RecordAt(h)->capacity, 20);
  mmtoken_add(h, "t");
  EXPECT_EQ(RecordAt(h)->capacity, 40);
  const struct { const char* token; int width, left, column; const char* stored; } cases[] = {
      {"ab", 5, 1, 0, "ab   "}, {"ab", 5, 0, 0, "   ab"}, {"ab", 5, 0, 1, " ab  "},
      {"abc", 1, 0, 0, "abc"},   {"abc", 1, 1, 0, "abc"},   {"", 3, 1, 0, "   "},
      // A column past the field is pulled back inside.
      {"ab", 5, 0, 4, "   ab"},  {"ab", 5, 0, 1 << 20, "   ab"}, {"ab", 5, 0, -7, "ab   "}};
  for (const auto& c : cases) {
    EXPECT_EQ(mmtoken_addn(h, c.token, c.width, c.left, c.column), 0);
    EXPECT_STREQ(mmtoken_get_token(h, mmtoken_num(h) - 1), c.stored) << c.token << ' ' << c.column;
  }
  // A null token is ignored before the handle is checked.
  EXPECT_EQ(MessagesOf([] { EXPECT_EQ(mmtoken_add(kBad, nullptr) + mmtoken_addn(kBad, nullptr, 5, 1, 0), 0); }), "");
}

// Resident memory of this process in bytes.
long ResidentBytes() {
  long pages = 0, resident = 0;
  FILE* statm = fopen("/proc/self/statm", "r");
  if (statm == nullptr || fscanf(statm, "%ld %ld", &pages, &resident) != 2) resident = -1;
  if (statm != nullptr) fclose(statm);
  return resident * 4096;
}

TEST(TokenListMemory, ListUsedAsAQueueDoesNotGrow) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "freed memory is held in quarantine under the address sanitizer";
#endif
  int handle;
  mmtoken_new(&handle, "", nullptr, nullptr, nullptr, nullptr, nullptr);
  const std::string token(1000, 'q');
  const std::string longer(2000, 'r');
  for (int i = 0; i < 10; ++i) mmtoken_add(handle, token.c_str());
  const long before = ResidentBytes();
  for (int i = 0; i < 200000; ++i) {  // 300 MB pass through the list
    mmtoken_add(handle, token.c_str());
    mmtoken_replace(handle, 5, longer.c_str());
    mmtoken_delete_token(handle, 0);
  }
  EXPECT_LT(ResidentBytes() - before, 32L << 20);
  EXPECT_EQ(mmtoken_num(handle), 10);
  EXPECT_EQ(std::string(mmtoken_get_token(handle, 9)), token);
  mmtoken_delete(handle);
}

TEST(TokenListString, QuotesEmptyTokensAndTokensWithQuotedCharacters) {
  const int h = New();
  auto joined = [h] {
    std::unique_ptr<char, decltype(&std::free)> line(mmtoken_get_string(h), &std::free);
    return std::string(line ? line.get() : "(null)");
  };
  EXPECT_EQ(joined(), "");
  for (const char* token : {"a b", "", "c", "say \"hi\""}) mmtoken_add(h, token);
  EXPECT_EQ(joined(), "\"a b\" \"\" c \"say \"hi\"\"");  // inner quotes are not escaped
  EXPECT_EQ(mmtoken_set_quoted_characters(h, ""), 0);
  EXPECT_EQ(joined(), "a b \"\" c say \"hi\"");
  EXPECT_EQ(mmtoken_set_quoted_characters(h, "c"), 0);
  EXPECT_EQ(mmtoken_set_quoted_characters(h, nullptr), 0);  // leaves the set as it is
  EXPECT_EQ(joined(), "a b \"\" \"c\" say \"hi\"");
}

TEST(TokenListCopy, IntoItselfAndTheDestinationIsCheckedFirst) {
  const int h = New("a bc");
  EXPECT_EQ(mmtoken_replace(h, 0, mmtoken_get_token(h, 1)), 0);  // the list's own token
  EXPECT_EQ(MessagesOf([&] {
              EXPECT_EQ(mmtoken_copy(kBad, kBad + 1), -1);
              EXPECT_EQ(mmtoken_copyn(h, kBad + 1, 1, 1, 0), -1);  // reported as mmtoken_copy
            }),
            "WARNING mmtoken_copy(): bad dest index = 9999 \n"
            "WARNING mmtoken_copy(): bad source index = 10000 \n");
  EXPECT_EQ(mmtoken_merge(h, h), 0);  // the failed copy emptied nothing
  EXPECT_EQ(ListTokens(h), (Tokens{"bc", "bc", "bc", "bc"}));
  EXPECT_EQ(mmtoken_copy(h, h), 0);  // empties the list first
  EXPECT_EQ(mmtoken_num(h), 0);
}

TEST(TokenListNumbers, NumberTypesAndSilentConversionFailures) {
  const std::pair<const char*, int> types[] = {
      {"12", 1},  {"+12", 1}, {"-3", 1}, {"+-5", 1},  {"2147483647", 1}, {"-2147483648", 1}, {"1.5", 2},
      {"1e5", 2}, {".5", 2},  {"NaN", 2}, {"inf", 2}, {"2147483648", 2}, {"-2147483649", 2}, {"", 0},
      {"+", 0},   {"++1", 0}, {"1 ", 0}, {"0x10", 0}, {"-0X1p3", 0},     {"1e400", 0},       {"1.2.3", 0}};
  for (const auto& [text, type] : types) EXPECT_EQ(mm_number_type(text), type) << '"' << text << '"';
  int h = New("1.5 x"), integer = 99;
  double real = 99.0;
  EXPECT_EQ(MessagesOf([&] {
              EXPECT_EQ(mmtoken_get_int(h, 0, &integer), -1);  // a real is no integer
              EXPECT_EQ(mmtoken_get_double(h, 1, &real), -1);
            }), "");
  EXPECT_EQ(integer + real, 0.0);
}

// Operations with the name they report under and, for those taking a
// position, the run of blanks of their continuation line. An output that
// is not zeroed on failure shows in the result.
struct Operation { const char* name; int blanks; int (*call)(int handle, int index); };
const Operation kOperations[] = {
    {"mmtoken_delete", 0, [](int h, int) { return mmtoken_delete(h); }},
    {"mmtoken_add", 0, [](int h, int) { return mmtoken_addn(h, "x", 3, 0, 0); }},
    {"mmtoken_set_quoted_characters", 0, [](int h, int) { return mmtoken_set_quoted_characters(h, "x"); }},
    {"mmtoken_delete_token", 22, [](int h, int i) { return mmtoken_delete_token(h, i); }},
    {"mmtoken_replace", 17, [](int h, int i) { return mmtoken_replace(h, i, "x"); }},
    {"mmtoken_find_type", 21, [](int h, int i) { return mmtoken_find_type(h, i); }},
    {"mmtoken_get_int", 17, [](int h, int i) { int v = 9; return mmtoken_get_int(h, i, &v) - v; }},
    {"mmtoken_tolower_token", 17, [](int h, int i) { return mmtoken_tolower_token(h, i); }},
};

TEST(TokenListMessages, BadHandlesAndPositionsNameTheOperation) {
  const int h = New("a b");
  for (const Operation& op : kOperations) {
    const std::string warning = std::string("WARNING ") + op.name;
    EXPECT_EQ(MessagesOf([&] { EXPECT_EQ(op.call(kBad, 0), -1) << op.name; }), warning + "(): bad tok index = 9999 \n");
    for (int index = -1; op.blanks > 0 && index <= 2; index += 3) {
      EXPECT_EQ(MessagesOf([&] { EXPECT_EQ(op.call(h, index), -1) << op.name; }),
                warning + "(): bad index = " + std::to_string(index) + " \nWARNING " + std::string(op.blanks, ' ') +
                    ":  only 2 tokens in list\n");
    }
  }
  EXPECT_EQ(ListTokens(h), (Tokens{"a", "b"}));
}

}  // namespace
