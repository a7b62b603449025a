// Error handles and the dispatcher: numbering, thresholds, decoration,
// destinations, bad input and the bounds of the fixed buffers.
#include "mmerr/mmerr.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "memory_handle.h"
#include "support/test_support.h"

TEST(MmerrHandles, ReusesTheLowestFreeNumber) {
  int made[4], reused[2];
  for (int& handle : made) ASSERT_EQ(mmerr_new(&handle), 1);
  mmerr_delete(made[2]);
  mmerr_delete(made[1]);
  for (int& handle : reused) mmerr_new(&handle);
  EXPECT_EQ(std::vector<int>(reused, reused + 2), (std::vector<int>{made[1], made[2]}));
  for (int handle : made) mmerr_delete(handle);
}

TEST(MmerrHandles, BadHandlesFailSilentlyAndBuiltInOnesCannotBeDeleted) {
  auto child = mmfs_test::RunInChild([] {
    int value = 0, failures = 0, deleted;
    mmerr_new(&deleted);
    mmerr_delete(deleted);
    for (int handle : {-2, 999, deleted}) {
      for (int result : {mmerr_level(handle, 3), mmerr_get_level(handle, &value),
                         mmerr_maxlevel(handle, &value), mmerr_errclear(handle),
                         mmerr_file(handle, stderr), mmerr_window(handle, nullptr),
                         mmerr_prefix(handle, "P"), mmerr_suppress_print(handle),
                         mmerr_restore_print(handle), mmerr_print_state(handle, &value),
                         mmerr_throw(handle, 5, "lost\n")})
        failures += result == 0;
      mmerr_delete(handle);
    }
    int fresh;  // prints nowhere until given a stream, but counts levels
    mmerr_new(&fresh);
    mmerr_throw(fresh, 5, "nowhere\n");
    mmerr_maxlevel(fresh, &value);
    mmerr_delete(0);
    mmerr_delete(-1);
    mmerr_throw(0, 4, "deprecation handle kept\n");
    mmerr_throw(-1, 4, "default handle kept\n");
    return failures == 33 && value == 5 ? 0 : 1;
  });
  EXPECT_EQ(child.exit_code, 0);
  EXPECT_EQ(child.out, "");
  EXPECT_EQ(child.err,
            "WARNING Default handler can not be deleted.\n"
            "WARNING Default handler can not be deleted.\n"
            "WARNING deprecation handle kept\nWARNING default handle kept\n");
}

TEST(MmerrDispatch, DecoratesFiltersAndRecordsTheWorstLevel) {
  MemoryHandle h;
  int maxlevel = 0;
  EXPECT_EQ(mmerr_throw(h.handle, 2, "below the threshold\n"), 1);
  mmerr_maxlevel(h.handle, &maxlevel);
  EXPECT_EQ(maxlevel, 2);
  ASSERT_EQ(mmerr_prefix(h.handle, "MYPROG: "), 1);
  mmerr_throw(h.handle, 4, "cannot open %s (%d)\n", "x.mae", 2);
  for (int level : {7, 8, -1}) mmerr_throw(h.handle, level, "level %d\n", level);
  mmerr_maxlevel(h.handle, &maxlevel);
  EXPECT_EQ(maxlevel, 4) << "undefined levels never count";
  mmerr_throw(h.handle, 5, "no newline");
  EXPECT_EQ(h.text(),
            "MYPROG: WARNING cannot open x.mae (2)\nMYPROG: LEVEL UNDEFINED level 7\n"
            "MYPROG: LEVEL UNDEFINED level 8\nMYPROG: LEVEL UNDEFINED level -1\n"
            "MYPROG: FATAL no newline");
}

TEST(MmerrDispatch, CutsLongMessagesAndRefusesLongPrefixes) {
  MemoryHandle h;
  const std::string prefix(511, 'p');
  ASSERT_EQ(mmerr_prefix(h.handle, prefix.c_str()), 1);
  mmerr_throw(h.handle, 4, "%s", std::string(30000, 'm').c_str());
  // 10,240 bytes with the NUL: prefix, "WARNING " and the start of the text.
  EXPECT_EQ(h.text(), prefix + "WARNING " + std::string(10239 - 511 - 8, 'm'));
  EXPECT_EQ(mmerr_prefix(h.handle, std::string(512, 'x').c_str()), 0);
  mmerr_throw(h.handle, 4, "plain\n");
  EXPECT_EQ(h.text().substr(10239), "WARNING plain\n");
}

TEST(MmerrReturnCode, NamesLevelsInTenRotatingBuffers) {
  for (auto [level, text] : {std::pair<int, const char*>{0, "MMERR_BUMMER"}, {4, "MMERR_WARNING"},
                             {7, "MMERR_LEVEL UNDEFINED"}, {8, "(bogus MMERR level)"},
                             {-1, "(bogus MMERR level)"}})
    EXPECT_STREQ(mmerr_return_code(level), text);
  char* first = mmerr_return_code(4);
  for (int i = 0; i < 9; ++i) mmerr_return_code(1);
  EXPECT_STREQ(first, "MMERR_WARNING");
  EXPECT_EQ(mmerr_return_code(5), first);
  EXPECT_STREQ(first, "MMERR_FATAL");
}
