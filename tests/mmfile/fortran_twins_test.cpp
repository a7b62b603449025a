// The Fortran-callable twins, called with blank-padded fields and explicit
// hidden lengths as Fortran code passes them.
#include "mmfile/fortran.h"

#include <gtest/gtest.h>

#include <string>

#include "file_test_env.h"
#include "mmerr/capture.h"
#include "mmerr/mmerr.h"
#include "mmfile/mmfile.h"

namespace {

using mmfile_test::FileTestEnv;

// A blank-padded Fortran CHARACTER field.
std::string Field(const std::string& text, std::size_t length) {
  std::string field = text.substr(0, length);
  field.resize(length, ' ');
  return field;
}

int Length(const std::string& field) { return static_cast<int>(field.size()); }

// Messages of the twins go to handle -1, INFO notes included.
class DefaultHandleMessages {
 public:
  DefaultHandleMessages() : capture_(-1) {
    mmerr_get_level(-1, &saved_);
    mmerr_level(-1, MMERR_LEVEL_INFO);
  }
  ~DefaultHandleMessages() { mmerr_level(-1, saved_); }
  std::string get() { return capture_.getMessages(); }

 private:
  morvellanth::mmlibs::CaptureMMErr capture_;
  int saved_ = MMERR_LEVEL_WARNING;
};

TEST(FortranSearchPath, SetAddAndGetWithBlankPaddedFields) {
  int status = 9;
  std::string path = Field("/a:/b", 40);
  EXPECT_EQ(mmfilef_path_set_(path.data(), &status, Length(path)), 0);
  EXPECT_EQ(status, 0);
  std::string more = Field("/c", 12);
  EXPECT_EQ(mmfilef_path_add_(more.data(), &status, Length(more)), 0);
  std::string out(20, '#');
  EXPECT_EQ(mmfilef_path_get_(out.data(), &status, Length(out)), 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(out, Field("/a:/b:/c", 20));
}

TEST(FortranSearchPath, TooShortFieldIsFilledTruncatedAndReported) {
  int status = 0;
  std::string path = Field("/first:/second", 20);
  mmfilef_path_set_(path.data(), &status, Length(path));
  DefaultHandleMessages messages;
  std::string out(8, '#');
  EXPECT_EQ(mmfilef_path_get_(out.data(), &status, Length(out)), -1);
  EXPECT_EQ(status, -1);
  EXPECT_EQ(out, "/first:/");
  EXPECT_EQ(messages.get(), "FATAL mmfilef_path_get_: fpath not long enough; need 14 chars, have 8");
}

TEST(FortranSearchPath, FailuresNameTheTwin) {
  DefaultHandleMessages messages;
  int status = 0;
  std::string blank = Field("", 10);
  EXPECT_EQ(mmfilef_path_set_(blank.data(), &status, Length(blank)), -1);
  EXPECT_EQ(status, -1);
  EXPECT_EQ(mmfilef_path_add_(blank.data(), &status, Length(blank)), -1);
  const std::string text = messages.get();
  EXPECT_NE(text.find("FATAL mmfilef_path_set: mmfile_path_set() fails, cpath = ''\n"),
            std::string::npos) << text;
  EXPECT_NE(text.find("FATAL mmfilef_path_add_: mmfile_path_add(), cpath= ''\n"), std::string::npos)
      << text;
}

TEST(FortranSearchPath, ClearCwdHomeAndLifecycle) {
  FileTestEnv env;
  int status = 9;
  EXPECT_EQ(mmfilef_path_clear_(&status), 0);
  EXPECT_EQ(status, 0);
  status = 9;
  EXPECT_EQ(mmfilef_path_add_home_(&status), 0);
  EXPECT_EQ(status, 0);
  status = 9;
  EXPECT_EQ(mmfilef_path_add_cwd_(&status), 0);
  EXPECT_EQ(status, 0);
  std::string out(4096, ' ');
  mmfilef_path_get_(out.data(), &status, Length(out));
  EXPECT_EQ(out.substr(0, env.home().size() + 1), env.home() + ":");
  int ignored = 0;
  status = 9;
  EXPECT_EQ(mmfilef_initialize_(&ignored, &status), 0);
  EXPECT_EQ(status, 0);
  mmfilef_terminate_();
}

TEST(FortranFind, FoundPathIsBlankPadded) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "probe.dat", "x");
  int status = 0;
  std::string path = Field(env.root(), 200);
  mmfilef_path_set_(path.data(), &status, Length(path));
  std::string name = Field("probe.dat", 16);
  std::string out(300, '#');
  const int type = 0;
  EXPECT_EQ(mmfilef_find_(name.data(), &type, out.data(), &status, Length(name), Length(out)), 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(out, Field(env / "probe.dat", 300));
  const int directory = 1;
  EXPECT_EQ(mmfilef_exists_(name.data(), &directory, &status, Length(name)), -1);
  EXPECT_EQ(mmfilef_exists_(name.data(), &type, &status, Length(name)), 0);
}

TEST(FortranFind, MissAndShortFieldAreReported) {
  FileTestEnv env;
  mmfs_test::WriteFile(env / "probe.dat", "x");
  int status = 0;
  std::string path = Field(env.root(), 200);
  mmfilef_path_set_(path.data(), &status, Length(path));
  DefaultHandleMessages messages;
  std::string missing = Field("missing.dat", 16);
  std::string out(40, '#');
  const int type = 0;
  EXPECT_EQ(mmfilef_find_(missing.data(), &type, out.data(), &status, Length(missing), Length(out)), -1);
  EXPECT_EQ(status, -1);
  EXPECT_EQ(out, std::string(40, ' '));
  EXPECT_EQ(messages.get(),
            "INFO mmfilef_find_: mmfile_find() fails, cname='missing.dat', cpath=NULL\n");
  EXPECT_EQ(mmfilef_exists_(missing.data(), &type, &status, Length(missing)), -1);
  EXPECT_EQ(messages.get(), "INFO mmfilef_exists_: mmfile_exists() fails, cname='missing.dat'\n");

  std::string name = Field("probe.dat", 9);
  std::string short_out(5, '#');
  EXPECT_EQ(mmfilef_find_(name.data(), &type, short_out.data(), &status, Length(name), 5), -1);
  EXPECT_EQ(status, -1);
  EXPECT_EQ(short_out, (env / "probe.dat").substr(0, 5));
  EXPECT_EQ(messages.get(), "FATAL mmfilef_find_: fpath not long enough; need " +
                                std::to_string((env / "probe.dat").size()) + " chars, have 5");
}

TEST(FortranExpand, ExpandsIntoTheOutputField) {
  mmfs_test::ScopedEnv var("MMFILE_TEST_DIR", "/data");
  int status = 9;
  std::string in = Field("$MMFILE_TEST_DIR/x", 30);
  std::string out(24, '#');
  EXPECT_EQ(mmfilef_dir_expand_(in.data(), out.data(), &status, Length(in), Length(out)), 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(out, Field("/data/x", 24));

  DefaultHandleMessages messages;
  std::string unknown = Field("~nosuchuser/y", 20);
  EXPECT_EQ(mmfilef_dir_expand_(unknown.data(), out.data(), &status, Length(unknown), Length(out)), -1);
  // errHand_mmfile is the default handle too, so the expansion's own warning
  // comes first.
  EXPECT_EQ(messages.get(),
            "WARNING mmfile_dir_user_home: Unable to get home directory for user 'nosuchuser'\n"
            "INFO mmfilef_dir_expand_: mmfile_dir_expand() fails, cname='~nosuchuser/y', cpath=/y\n");
}

TEST(FortranAbsolute, RelativePathIsAnInfoNote) {
  int status = 9;
  std::string absolute = Field("/x", 10);
  EXPECT_EQ(mmfilef_path_is_absolute_(absolute.data(), &status, Length(absolute)), 0);
  EXPECT_EQ(status, 0);
  DefaultHandleMessages messages;
  std::string relative = Field("x/y", 10);
  EXPECT_EQ(mmfilef_path_is_absolute_(relative.data(), &status, Length(relative)), -1);
  EXPECT_EQ(status, -1);
  EXPECT_EQ(messages.get(),
            "INFO mmfilef_path_is_absolute_: mmfile_path_is_absolute() fails, cname='x/y'\n");
}

TEST(FortranLocalize, ConvertsInPlaceUpTo1024Characters) {
  int status = 9;
  std::string path = Field("a\\b\\c", 12);
  EXPECT_EQ(mmfilef_path_localize_(path.data(), &status, Length(path)), 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(path, Field("a/b/c", 12));

  std::string longest = std::string(1023, 'x') + "\\";
  EXPECT_EQ(mmfilef_path_localize_(longest.data(), &status, Length(longest)), 0);
  EXPECT_EQ(longest, std::string(1023, 'x') + "/");

  DefaultHandleMessages messages;
  std::string too_long = std::string(1024, 'x') + "\\";
  EXPECT_EQ(mmfilef_path_localize_(too_long.data(), &status, Length(too_long)), -1);
  EXPECT_EQ(status, -1);
  EXPECT_EQ(too_long, std::string(1024, 'x') + "\\");
  EXPECT_EQ(messages.get(),
            "FATAL mmfilef_path_localize_: cpath not long enough; need 1025 chars, have 1024");

  std::string blank = Field("", 8);
  EXPECT_EQ(mmfilef_path_localize_(blank.data(), &status, Length(blank)), -1);
  EXPECT_EQ(messages.get(), "INFO mmfilef_path_localize_: fails, cpath=\n");
}

}  // namespace
