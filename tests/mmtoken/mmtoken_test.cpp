// Token lists: handles, appending, editing, joining, conversions, searches
// and the exact messages of every failure.
#include <cstdlib>
#include <cstring>
#include <ostream>
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

// A list made from a line with the default sets, deleted at the end.
class List {
 public:
  explicit List(const char* line = nullptr) {
    mmtoken_new(&handle_, line, nullptr, nullptr, nullptr, nullptr, nullptr);
  }
  ~List() {
    if (mmtoken_in_use(handle_)) mmtoken_delete(handle_);
  }
  int handle() const { return handle_; }
  Tokens tokens() const { return ListTokens(handle_); }

 private:
  int handle_ = -1;
};

std::string JoinedString(int handle) {
  char* line = mmtoken_get_string(handle);
  if (line == nullptr) return "(null)";
  std::string text = line;
  std::free(line);
  return text;
}

// A handle that was never made.
constexpr int kBadHandle = 9999;

TEST(TokenListLifecycle, NullOrEmptyLineMakesALiveEmptyList) {
  List from_null;
  List from_empty("");
  for (int handle : {from_null.handle(), from_empty.handle()}) {
    EXPECT_EQ(mmtoken_in_use(handle), 1);
    EXPECT_EQ(mmtoken_num(handle), 0);
    EXPECT_EQ(JoinedString(handle), "");
  }
}

TEST(TokenListLifecycle, ReusesTheHighestFreeRecord) {
  // In a child, so that the lists made here outlive nothing else.
  mmfs_test::ChildResult child = mmfs_test::RunInChild([] {
    auto make = [] {
      int handle;
      mmtoken_new(&handle, "x", nullptr, nullptr, nullptr, nullptr, nullptr);
      return handle;
    };
    // First use up the records that earlier lists of this process left free.
    int records = morvellanth::mmtoken::RecordCount();
    int base = make();
    while (morvellanth::mmtoken::RecordCount() == records) base = make();
    if (base != records) return 1;
    if (make() != base + 1 || make() != base + 2) return 2;
    mmtoken_delete(base);
    mmtoken_delete(base + 2);
    if (make() != base + 2 || make() != base || make() != base + 3) return 3;
    // A reused record starts empty, with the default quoted set.
    mmtoken_delete(base + 1);
    if (make() != base + 1 || mmtoken_num(base + 1) != 1) return 4;
    if (std::strcmp(morvellanth::mmtoken::RecordAt(base + 1)->quoted_characters, " ") != 0)
      return 5;
    return morvellanth::mmtoken::RecordCount() == base + 4 ? 0 : 6;
  });
  EXPECT_TRUE(child.exited);
  EXPECT_EQ(child.exit_code, 0) << child.err;
}

TEST(TokenListLifecycle, DeleteFreesTheHandleAndLaterCallsReportIt) {
  int handle;
  mmtoken_new(&handle, "a b", nullptr, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(mmtoken_delete(handle), 0);
  EXPECT_EQ(mmtoken_in_use(handle), 0);
  const token_tag* record = morvellanth::mmtoken::RecordAt(handle);
  EXPECT_EQ(record->count, 0);
  EXPECT_EQ(record->capacity, 0);
  EXPECT_EQ(record->regex_count, 0);
  std::string messages = MessagesOf([&] { EXPECT_EQ(mmtoken_num(handle), -1); });
  EXPECT_EQ(messages, "WARNING mmtoken_num(): bad tok index = " + std::to_string(handle) + " \n");
}

TEST(TokenListLifecycle, InitializeAndTerminateDoNothing) {
  EXPECT_EQ(mmtoken_initialize(), 0);
  mmtoken_terminate();
  EXPECT_EQ(mmtoken_in_use(-1), 0);
  EXPECT_EQ(mmtoken_in_use(kBadHandle), 0);
}

TEST(TokenListAppend, GrowsByTwentySlots) {
  List list;
  const token_tag* record = morvellanth::mmtoken::RecordAt(list.handle());
  EXPECT_EQ(record->capacity, 0);
  for (int i = 0; i < 20; i++) mmtoken_add(list.handle(), "t");
  EXPECT_EQ(record->capacity, 20);
  mmtoken_add(list.handle(), "t");
  EXPECT_EQ(record->capacity, 40);
  for (int i = 0; i < 1000; i++) mmtoken_add(list.handle(), std::to_string(i).c_str());
  EXPECT_EQ(record->capacity, 1040);
  EXPECT_EQ(mmtoken_num(list.handle()), 1021);
  EXPECT_STREQ(mmtoken_get_token(list.handle(), 1020), "999");
}

TEST(TokenListAppend, NullTokenIsIgnoredWithoutCheckingTheHandle) {
  std::string messages = MessagesOf([] {
    EXPECT_EQ(mmtoken_add(kBadHandle, nullptr), 0);
    EXPECT_EQ(mmtoken_addn(kBadHandle, nullptr, 5, 1, 0), 0);
  });
  EXPECT_EQ(messages, "");
}

TEST(TokenListAppend, AddCopiesTheToken) {
  List list;
  char text[] = "abc";
  mmtoken_add(list.handle(), text);
  text[0] = 'X';
  EXPECT_EQ(list.tokens(), (Tokens{"abc"}));
}

TEST(TokenListAppend, AddnPlacesTheTokenInAField) {
  List list;
  int h = list.handle();
  mmtoken_addn(h, "ab", 5, 1, 0);
  mmtoken_addn(h, "ab", 5, 0, 0);
  mmtoken_addn(h, "ab", 5, 0, 1);
  mmtoken_addn(h, "abc", 1, 0, 0);
  mmtoken_addn(h, "abc", 1, 1, 0);
  mmtoken_addn(h, "", 3, 1, 0);
  EXPECT_EQ(list.tokens(), (Tokens{"ab   ", "   ab", " ab  ", "abc", "abc", "   "}));
}

TEST(TokenListAppend, AddnPullsAColumnPastTheFieldBackInside) {
  List list;
  mmtoken_addn(list.handle(), "ab", 5, 0, 4);
  mmtoken_addn(list.handle(), "ab", 5, 0, 1000000);
  mmtoken_addn(list.handle(), "ab", 5, 0, -7);
  EXPECT_EQ(list.tokens(), (Tokens{"   ab", "   ab", "ab   "}));
}

TEST(TokenListAppend, BadHandleIsReportedAsAdd) {
  std::string messages = MessagesOf([] {
    EXPECT_EQ(mmtoken_add(kBadHandle, "x"), -1);
    EXPECT_EQ(mmtoken_addn(kBadHandle, "x", 3, 0, 0), -1);
  });
  EXPECT_EQ(messages,
            "WARNING mmtoken_add(): bad tok index = 9999 \n"
            "WARNING mmtoken_add(): bad tok index = 9999 \n");
}

TEST(TokenListEdit, ReplaceStoresACopy) {
  List list("a b c");
  EXPECT_EQ(mmtoken_replace(list.handle(), 1, "beta"), 0);
  EXPECT_EQ(list.tokens(), (Tokens{"a", "beta", "c"}));
}

TEST(TokenListEdit, ReplaceWithLongerShorterAndTheListsOwnTokens) {
  List list("abc de f");
  int h = list.handle();
  EXPECT_EQ(mmtoken_replace(h, 2, "a much longer token"), 0);
  EXPECT_EQ(mmtoken_replace(h, 0, "x"), 0);
  EXPECT_EQ(mmtoken_replace(h, 1, mmtoken_get_token(h, 1)), 0);
  EXPECT_EQ(mmtoken_replace(h, 0, mmtoken_get_token(h, 2)), 0);
  EXPECT_EQ(mmtoken_replace(h, 1, mmtoken_get_token(h, 0)), 0);
  EXPECT_EQ(list.tokens(),
            (Tokens{"a much longer token", "a much longer token", "a much longer token"}));
  for (int i = 0; i < 1000; i++) mmtoken_replace(h, 1, std::string(i % 50, 'r').c_str());
  EXPECT_EQ(mmtoken_get_token(h, 1), std::string(49, 'r'));
}

TEST(TokenListEdit, DeleteTokenClosesTheGap) {
  List list("a b c d");
  EXPECT_EQ(mmtoken_delete_token(list.handle(), 1), 0);
  EXPECT_EQ(list.tokens(), (Tokens{"a", "c", "d"}));
  EXPECT_EQ(mmtoken_delete_token(list.handle(), 2), 0);
  EXPECT_EQ(list.tokens(), (Tokens{"a", "c"}));
}

TEST(TokenListEdit, ClearKeepsCapacityAndQuotedSet) {
  List list("a b c");
  mmtoken_set_quoted_characters(list.handle(), "x");
  EXPECT_EQ(mmtoken_clear(list.handle()), 0);
  const token_tag* record = morvellanth::mmtoken::RecordAt(list.handle());
  EXPECT_EQ(record->count, 0);
  EXPECT_EQ(record->capacity, 20);
  EXPECT_STREQ(record->quoted_characters, "x");
}

TEST(TokenListEdit, CaseChangesAreAsymmetric) {
  List list("abc DeF gHi");
  EXPECT_EQ(mmtoken_toupper(list.handle()), 0);
  EXPECT_EQ(list.tokens(), (Tokens{"ABC", "DEF", "GHI"}));
  EXPECT_EQ(mmtoken_tolower_token(list.handle(), 1), 0);
  EXPECT_EQ(list.tokens(), (Tokens{"ABC", "def", "GHI"}));
}

TEST(TokenListCopy, CopyReplacesAndMergeAppends) {
  List destination("x y");
  List source("a b");
  EXPECT_EQ(mmtoken_merge(destination.handle(), source.handle()), 0);
  EXPECT_EQ(destination.tokens(), (Tokens{"x", "y", "a", "b"}));
  EXPECT_EQ(mmtoken_copy(destination.handle(), source.handle()), 0);
  EXPECT_EQ(destination.tokens(), (Tokens{"a", "b"}));
  EXPECT_EQ(source.tokens(), (Tokens{"a", "b"}));
}

TEST(TokenListCopy, CopyOfAListIntoItselfLeavesItEmpty) {
  List list("a b");
  EXPECT_EQ(mmtoken_copy(list.handle(), list.handle()), 0);
  EXPECT_EQ(mmtoken_num(list.handle()), 0);
}

TEST(TokenListCopy, MergeOfAListIntoItselfDoublesIt) {
  List list("a b");
  EXPECT_EQ(mmtoken_merge(list.handle(), list.handle()), 0);
  EXPECT_EQ(list.tokens(), (Tokens{"a", "b", "a", "b"}));
}

TEST(TokenListCopy, FieldVariantsUseAddn) {
  List destination("x");
  List source("a bc");
  EXPECT_EQ(mmtoken_mergen(destination.handle(), source.handle(), 3, 1, 0), 0);
  EXPECT_EQ(destination.tokens(), (Tokens{"x", "a  ", "bc "}));
  EXPECT_EQ(mmtoken_copyn(destination.handle(), source.handle(), 4, 0, 0), 0);
  EXPECT_EQ(destination.tokens(), (Tokens{"   a", "  bc"}));
}

TEST(TokenListCopy, DestinationIsCheckedBeforeSourceAndNothingChanges) {
  List list("a");
  std::string messages = MessagesOf([&] {
    EXPECT_EQ(mmtoken_copy(kBadHandle, kBadHandle + 1), -1);
    EXPECT_EQ(mmtoken_copy(list.handle(), kBadHandle + 1), -1);
    EXPECT_EQ(mmtoken_copyn(kBadHandle, list.handle(), 1, 1, 0), -1);
    EXPECT_EQ(mmtoken_merge(kBadHandle, list.handle()), -1);
    EXPECT_EQ(mmtoken_merge(list.handle(), kBadHandle), -1);
    EXPECT_EQ(mmtoken_mergen(kBadHandle, list.handle(), 1, 1, 0), -1);
    EXPECT_EQ(mmtoken_mergen(list.handle(), kBadHandle, 1, 1, 0), -1);
  });
  EXPECT_EQ(messages,
            "WARNING mmtoken_copy(): bad dest index = 9999 \n"
            "WARNING mmtoken_copy(): bad source index = 10000 \n"
            "WARNING mmtoken_copy(): bad dest index = 9999 \n"
            "WARNING mmtoken_merge(): bad dest index = 9999 \n"
            "WARNING mmtoken_merge(): bad source index = 9999 \n"
            "WARNING mmtoken_mergen(): bad dest index = 9999 \n"
            "WARNING mmtoken_mergen(): bad source index = 9999 \n");
  EXPECT_EQ(list.tokens(), (Tokens{"a"}));
}

TEST(TokenListString, QuotesEmptyTokensAndTokensWithQuotedCharacters) {
  List list;
  mmtoken_add(list.handle(), "a b");
  mmtoken_add(list.handle(), "");
  mmtoken_add(list.handle(), "c");
  EXPECT_EQ(JoinedString(list.handle()), "\"a b\" \"\" c");
  EXPECT_EQ(mmtoken_set_quoted_characters(list.handle(), ""), 0);
  EXPECT_EQ(JoinedString(list.handle()), "a b \"\" c");
  EXPECT_EQ(mmtoken_set_quoted_characters(list.handle(), nullptr), 0);
  EXPECT_EQ(JoinedString(list.handle()), "a b \"\" c");
  mmtoken_set_quoted_characters(list.handle(), "c");
  EXPECT_EQ(JoinedString(list.handle()), "a b \"\" \"c\"");
}

TEST(TokenListString, InnerQuotesAreNotEscaped) {
  List list;
  mmtoken_add(list.handle(), "say \"hi\"");
  EXPECT_EQ(JoinedString(list.handle()), "\"say \"hi\"\"");
}

TEST(TokenListString, RoundTripsThroughMmtokenNew) {
  List list("alpha \"b c\" d");
  int again;
  char* line = mmtoken_get_string(list.handle());
  mmtoken_new(&again, line, nullptr, "\"\"", nullptr, nullptr, nullptr);
  std::free(line);
  EXPECT_EQ(ListTokens(again), (Tokens{"alpha", "b c", "d"}));
  mmtoken_delete(again);
}

struct NumberCase {
  const char* text;
  int type;
};

void PrintTo(const NumberCase& c, std::ostream* os) { *os << '"' << c.text << '"'; }

class NumberType : public ::testing::TestWithParam<NumberCase> {};

TEST_P(NumberType, ClassifiesText) {
  EXPECT_EQ(mm_number_type(GetParam().text), GetParam().type) << '"' << GetParam().text << '"';
}

INSTANTIATE_TEST_SUITE_P(
    Examples, NumberType,
    ::testing::Values(NumberCase{"12", 1}, NumberCase{"+12", 1}, NumberCase{"-3", 1},
                      NumberCase{"+-5", 1}, NumberCase{"2147483647", 1},
                      NumberCase{"-2147483648", 1}, NumberCase{"1.5", 2}, NumberCase{"1e5", 2},
                      NumberCase{".5", 2}, NumberCase{"NaN", 2}, NumberCase{"inf", 2},
                      NumberCase{"-Infinity", 2}, NumberCase{"2147483648", 2},
                      NumberCase{"-2147483649", 2}, NumberCase{"1.5E-3", 2}, NumberCase{"", 0},
                      NumberCase{"+", 0}, NumberCase{"++1", 0}, NumberCase{"1 ", 0},
                      NumberCase{" 1", 0}, NumberCase{"0x10", 0}, NumberCase{"-0X1p3", 0},
                      NumberCase{"1e400", 0}, NumberCase{"0", 1}, NumberCase{"0.", 2},
                      NumberCase{"abc", 0}, NumberCase{"1.2.3", 0}, NumberCase{"-", 0}));

TEST(TokenListNumbers, ConversionsFollowTheType) {
  List list("42 1.5 x +7 -0.25e1");
  int h = list.handle();
  int integer = 99;
  double real = 99.0;
  EXPECT_EQ(mmtoken_get_int(h, 0, &integer), 0);
  EXPECT_EQ(integer, 42);
  EXPECT_EQ(mmtoken_get_int(h, 3, &integer), 0);
  EXPECT_EQ(integer, 7);
  EXPECT_EQ(mmtoken_get_double(h, 4, &real), 0);
  EXPECT_DOUBLE_EQ(real, -2.5);
  EXPECT_EQ(mmtoken_find_type(h, 1), 2);
  EXPECT_EQ(mmtoken_find_type(h, 2), 0);
}

TEST(TokenListNumbers, WrongTypeFailsSilentlyAndStoresZero) {
  List list("1.5 7 x");
  int h = list.handle();
  int integer = 99;
  double real = 99.0;
  std::string messages = MessagesOf([&] {
    EXPECT_EQ(mmtoken_get_int(h, 0, &integer), -1);
    EXPECT_EQ(integer, 0);
    EXPECT_EQ(mmtoken_get_double(h, 2, &real), -1);
    EXPECT_EQ(real, 0.0);
  });
  EXPECT_EQ(messages, "");
  EXPECT_EQ(mmtoken_get_double(h, 1, &real), 0);
  EXPECT_EQ(real, 7.0);
}

TEST(TokenListSearch, IndexFindsTheFirstEqualToken) {
  List list("a Bc bc Bc");
  EXPECT_EQ(mmtoken_index(list.handle(), "Bc"), 1);
  EXPECT_EQ(mmtoken_index(list.handle(), "bc"), 2);
  EXPECT_EQ(mmtoken_index(list.handle(), "B"), -1);
}

TEST(TokenListSearch, IndexnComparesPrefixes) {
  List list("alpha beta betamax");
  int h = list.handle();
  EXPECT_EQ(mmtoken_indexn(h, "betaXYZ", 4), 1);
  EXPECT_EQ(mmtoken_indexn(h, "betam", 5), 2);
  EXPECT_EQ(mmtoken_indexn(h, "zzz", 0), 0);
  EXPECT_EQ(mmtoken_indexn(h, "beta", -1), 1);
  EXPECT_EQ(mmtoken_indexn(h, "bet", -1), -1);
  EXPECT_EQ(mmtoken_indexn(h, "gamma", 3), -1);
}

TEST(TokenListSearch, AnEmptyListFindsNothingSilently) {
  List list;
  std::string messages = MessagesOf([&] {
    EXPECT_EQ(mmtoken_index(list.handle(), "a"), -1);
    EXPECT_EQ(mmtoken_indexn(list.handle(), "a", 0), -1);
  });
  EXPECT_EQ(messages, "");
}

// Every operation that takes a handle names itself when the handle is bad.
TEST(TokenListMessages, BadHandles) {
  double real;
  int integer;
  std::string messages = MessagesOf([&] {
    EXPECT_EQ(mmtoken_delete(kBadHandle), -1);
    EXPECT_EQ(mmtoken_delete_token(kBadHandle, 0), -1);
    EXPECT_EQ(mmtoken_clear(kBadHandle), -1);
    EXPECT_EQ(mmtoken_replace(kBadHandle, 0, "x"), -1);
    EXPECT_EQ(mmtoken_get_string(kBadHandle), nullptr);
    EXPECT_EQ(mmtoken_num(kBadHandle), -1);
    EXPECT_EQ(mmtoken_get_token(kBadHandle, 0), nullptr);
    EXPECT_EQ(mmtoken_find_type(kBadHandle, 0), -1);
    EXPECT_EQ(mmtoken_get_int(kBadHandle, 0, &integer), -1);
    EXPECT_EQ(mmtoken_get_double(kBadHandle, 0, &real), -1);
    EXPECT_EQ(mmtoken_index(kBadHandle, "x"), -1);
    EXPECT_EQ(mmtoken_indexn(kBadHandle, "x", 1), -1);
    EXPECT_EQ(mmtoken_toupper(kBadHandle), -1);
    EXPECT_EQ(mmtoken_tolower_token(kBadHandle, 0), -1);
    EXPECT_EQ(mmtoken_set_quoted_characters(-5, "x"), -1);
  });
  EXPECT_EQ(messages,
            "WARNING mmtoken_delete(): bad tok index = 9999 \n"
            "WARNING mmtoken_delete_token(): bad tok index = 9999 \n"
            "WARNING mmtoken_clear(): bad tok index = 9999 \n"
            "WARNING mmtoken_replace(): bad tok index = 9999 \n"
            "WARNING mmtoken_get_string(): bad tok index = 9999 \n"
            "WARNING mmtoken_num(): bad tok index = 9999 \n"
            "WARNING mmtoken_get_token(): bad tok index = 9999 \n"
            "WARNING mmtoken_find_type(): bad tok index = 9999 \n"
            "WARNING mmtoken_get_int(): bad tok index = 9999 \n"
            "WARNING mmtoken_get_double(): bad tok index = 9999 \n"
            "WARNING mmtoken_index(): bad tok index = 9999 \n"
            "WARNING mmtoken_indexn(): bad tok index = 9999 \n"
            "WARNING mmtoken_toupper(): bad tok index = 9999 \n"
            "WARNING mmtoken_tolower_token(): bad tok index = 9999 \n"
            "WARNING mmtoken_set_quoted_characters(): bad tok index = -5 \n");
}

// A bad position is two messages; the second keeps its own run of blanks.
TEST(TokenListMessages, BadPositions) {
  List list("a b");
  int h = list.handle();
  double real;
  int integer;
  std::string messages = MessagesOf([&] {
    EXPECT_EQ(mmtoken_delete_token(h, 2), -1);
    EXPECT_EQ(mmtoken_replace(h, -1, "x"), -1);
    EXPECT_EQ(mmtoken_get_token(h, 5), nullptr);
    EXPECT_EQ(mmtoken_find_type(h, 2), -1);
    EXPECT_EQ(mmtoken_get_int(h, 2, &integer), -1);
    EXPECT_EQ(mmtoken_get_double(h, 2, &real), -1);
    EXPECT_EQ(mmtoken_tolower_token(h, 3), -1);
  });
  EXPECT_EQ(messages,
            "WARNING mmtoken_delete_token(): bad index = 2 \n"
            "WARNING                       :  only 2 tokens in list\n"
            "WARNING mmtoken_replace(): bad index = -1 \n"
            "WARNING                  :  only 2 tokens in list\n"
            "WARNING mmtoken_get_token(): bad index = 5 \n"
            "WARNING                  :  only 2 tokens in list\n"
            "WARNING mmtoken_find_type(): bad index = 2 \n"
            "WARNING                      :  only 2 tokens in list\n"
            "WARNING mmtoken_get_int(): bad index = 2 \n"
            "WARNING                  :  only 2 tokens in list\n"
            "WARNING mmtoken_get_double(): bad index = 2 \n"
            "WARNING                  :  only 2 tokens in list\n"
            "WARNING mmtoken_tolower_token(): bad index = 3 \n"
            "WARNING                  :  only 2 tokens in list\n");
  EXPECT_EQ(integer, 0);
  EXPECT_EQ(real, 0.0);
  EXPECT_EQ(list.tokens(), (Tokens{"a", "b"}));
}

}  // namespace
