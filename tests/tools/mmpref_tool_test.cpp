// The mmpref tool run as a child process against preference files in a
// sandbox: every command, every exit code, origins and file checks.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/test_support.h"

namespace {

using mmfs_test::ChildResult;
using mmfs_test::ReadFile;
using mmfs_test::RunProgram;
using mmfs_test::ScopedEnv;
using mmfs_test::TempDir;
using mmfs_test::WriteFile;

const char kMachineFile[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<ApplicationSettings>\n"
    "    <panel>\n"
    "        <height dt=\"int\">480</height>\n"
    "    </panel>\n"
    "    <theme dt=\"QString\">machine theme</theme>\n"
    "</ApplicationSettings>\n";

const char kSiteFile[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<ApplicationSettings>\n"
    "    <license dt=\"QString\">site license</license>\n"
    "    <theme dt=\"QString\">site theme</theme>\n"
    "</ApplicationSettings>\n";

class MmprefTool : public ::testing::Test {
 protected:
  MmprefTool()
      : sandbox_("MORVELLANTH_MMPREF_SANDBOX", dir_ / "sandbox"),
        appdata_("MORVELLANTH_APPDATA_OVERRIDE", dir_ / "appdata"),
        home_("HOME", dir_.path()),
        machine_("MORVELLANTH_MACHINE_PREFERENCE", dir_ / "machine.xml"),
        site_("MORVELLANTH_SITE_PREFERENCE", dir_ / "site.xml") {
    WriteFile(dir_ / "machine.xml", kMachineFile);
    WriteFile(dir_ / "site.xml", kSiteFile);
  }

  ChildResult Run(std::vector<std::string> words) {
    words.insert(words.begin(), MMPREF_TOOL);
    return RunProgram(words);
  }

  // Runs a command that must succeed and returns its standard output.
  std::string Ok(const std::vector<std::string>& words) {
    ChildResult result = Run(words);
    EXPECT_TRUE(result.exited);
    EXPECT_EQ(result.exit_code, 0) << result.err;
    return result.out;
  }

  std::string UserFile() {
    std::string out = Ok({"path", "panoply"});
    return out.substr(0, out.size() - 1);
  }

  TempDir dir_;
  ScopedEnv sandbox_, appdata_, home_, machine_, site_;
};

// Checks the exit code and that standard error is exactly one line.
void ExpectFailure(const ChildResult& result, int code, const std::string& fragment) {
  EXPECT_TRUE(result.exited);
  EXPECT_EQ(result.exit_code, code) << result.err;
  EXPECT_NE(result.err.find(fragment), std::string::npos) << result.err;
  EXPECT_EQ(result.err.find("mmpref: "), 0u) << result.err;
  EXPECT_EQ(result.err.find('\n'), result.err.size() - 1) << "one line: " << result.err;
}

TEST_F(MmprefTool, SetThenGetThroughTheUserFile) {
  Ok({"set", "panoply", "panel/width", "640", "--type", "int"});
  EXPECT_EQ(Ok({"get", "panoply", "panel/width"}), "640\n");
  Ok({"set", "panoply", "panel/width", "800"});  // keeps its type
  EXPECT_EQ(Ok({"get", "PANOPLY", "panel/width"}), "800\n");
  Ok({"set", "8", "scale", "1.5", "--type", "double"});
  Ok({"set", "Panoply", "visible", "true", "--type", "bool"});
  Ok({"set", "panoply", "title", "a title with blanks"});
  EXPECT_EQ(Ok({"get", "panoply", "scale"}), "1.5\n");
  EXPECT_EQ(Ok({"get", "panoply", "visible"}), "true\n");
  EXPECT_EQ(Ok({"get", "panoply", "title"}), "a title with blanks\n");

  std::string file = ReadFile(UserFile());
  EXPECT_NE(file.find("<width dt=\"int\">800</width>"), std::string::npos) << file;
  EXPECT_NE(file.find("<scale dt=\"double\">1.5</scale>"), std::string::npos) << file;
}

TEST_F(MmprefTool, PathNamesTheProductFileOfTheCurrentRelease) {
  EXPECT_EQ(UserFile(), dir_ / "sandbox/.morvellanth/2025-4/Panoply.xml");
  EXPECT_EQ(Ok({"path", "8"}), Ok({"path", "panoply"}));
  EXPECT_EQ(Ok({"path", "pavane"}), dir_ / "sandbox/.morvellanth/2025-4/Pavane.xml\n");
}

TEST_F(MmprefTool, ShowOriginNamesTheLayerAndFile) {
  Ok({"set", "panoply", "theme", "user theme"});
  EXPECT_EQ(Ok({"get", "panoply", "theme", "--show-origin"}),
            "user\t" + UserFile() + "\tuser theme\n");
  EXPECT_EQ(Ok({"get", "panoply", "panel/height", "--show-origin"}),
            "machine\t" + (dir_ / "machine.xml") + "\t480\n");
  EXPECT_EQ(Ok({"get", "panoply", "license", "--show-origin"}),
            "installation\t" + (dir_ / "site.xml") + "\tsite license\n");

  std::string listing = Ok({"list", "panoply", "--show-origin"});
  EXPECT_NE(listing.find("user\t" + UserFile() + "\ttheme\tstring\tuser theme\n"), std::string::npos)
      << listing;
  EXPECT_NE(listing.find("machine\t" + (dir_ / "machine.xml") + "\tpanel/height\tint\t480\n"),
            std::string::npos)
      << listing;
  EXPECT_NE(listing.find("installation\t" + (dir_ / "site.xml") + "\tlicense\tstring\tsite license\n"),
            std::string::npos)
      << listing;
}

TEST_F(MmprefTool, ListsAGroup) {
  Ok({"set", "panoply", "panel/width", "640", "--type", "int"});
  Ok({"set", "panoply", "other", "x"});
  EXPECT_EQ(Ok({"list", "panoply", "panel"}), "height\tint\t480\nwidth\tint\t640\n");
  ExpectFailure(Run({"list", "panoply", "nothing_here"}), 1, "no keys in nothing_here");
}

TEST_F(MmprefTool, MissingKeysExitWithOne) {
  ExpectFailure(Run({"get", "panoply", "absent"}), 1, "key not found: absent");
  ExpectFailure(Run({"remove", "panoply", "absent"}), 1, "key not found: absent");
  ExpectFailure(Run({"remove", "panoply", "license"}), 1, "comes from the installation file");
}

TEST_F(MmprefTool, RemoveDeletesFromTheUserFile) {
  Ok({"set", "panoply", "theme", "user theme"});
  Ok({"remove", "panoply", "theme"});
  EXPECT_EQ(Ok({"get", "panoply", "theme", "--show-origin"}),
            "machine\t" + (dir_ / "machine.xml") + "\tmachine theme\n");
  EXPECT_EQ(ReadFile(UserFile()).find("user theme"), std::string::npos);
}

TEST_F(MmprefTool, PlatformAndCommentAreWritten) {
  Ok({"set", "panoply", "panel/width", "900", "--type", "int", "--os", "linux", "--comment", "wide"});
  Ok({"set", "panoply", "panel/width", "100", "--type", "int", "--os", "windows"});
  EXPECT_EQ(Ok({"get", "panoply", "panel/width"}), "900\n");
  // This platform's key is listed under its plain name, other platforms' as stored.
  EXPECT_EQ(Ok({"list", "panoply", "panel"}),
            "height\tint\t480\nwidth\tint\t900\nwidth:os=windows\tint\t100\n");
  std::string file = ReadFile(UserFile());
  EXPECT_NE(file.find("<!--wide-->"), std::string::npos) << file;
  EXPECT_NE(file.find("<width dt=\"int\" os=\"linux\">900</width>"), std::string::npos) << file;
  EXPECT_NE(file.find("<width dt=\"int\" os=\"windows\">100</width>"), std::string::npos) << file;
}

TEST_F(MmprefTool, LibraryRefusalsExitWithThree) {
  Ok({"set", "panoply", "count", "3", "--type", "int"});
  ExpectFailure(Run({"set", "panoply", "count", "three", "--type", "string"}), 3,
                "Incorrect value of type 'QString' is being set for existing 'int' type key('count')");
  ExpectFailure(Run({"set", "panoply", "1st", "x"}), 3, "Invalid character in the mmpref key '1st'");
  ExpectFailure(Run({"set", "panoply", "a b", "x"}), 3, "Invalid character in the mmpref key 'a b'");
  ExpectFailure(Run({"set", "panoply", "a//b", "x"}), 3, "Invalid character in the mmpref key");
  EXPECT_EQ(Ok({"get", "panoply", "count"}), "3\n");
}

TEST_F(MmprefTool, UsageErrorsExitWithTwo) {
  ChildResult bare = Run({});
  EXPECT_EQ(bare.exit_code, 2);
  EXPECT_NE(bare.err.find("usage: mmpref COMMAND"), std::string::npos);
  ExpectFailure(Run({"frobnicate"}), 2, "unknown command 'frobnicate'");
  ExpectFailure(Run({"get", "panoply"}), 2, "usage: mmpref get PRODUCT KEY");
  ExpectFailure(Run({"get", "nosuchproduct", "k"}), 2, "unknown product 'nosuchproduct'");
  ExpectFailure(Run({"get", "16", "k"}), 2, "unknown product '16'");
  ExpectFailure(Run({"get", "panoply", "k", "--bogus"}), 2, "unknown option --bogus");
  ExpectFailure(Run({"set", "panoply", "k", "v", "--type"}), 2, "--type needs a value");
  ExpectFailure(Run({"set", "panoply", "k", "v", "--type", "float"}), 2, "--type must be");
  ExpectFailure(Run({"set", "panoply", "k", "12x", "--type", "int"}), 2, "'12x' is not an int");
  ExpectFailure(Run({"set", "panoply", "k", "yes", "--type", "bool"}), 2, "is not a bool");
  ExpectFailure(Run({"set", "panoply", "k", "v", "--os", "solaris"}), 2, "--os must be");
}

TEST_F(MmprefTool, HelpForTheToolAndEachCommand) {
  std::string help = Ok({"--help"});
  EXPECT_NE(help.find("exit codes: 0 success, 1 key not found, 2 usage error"), std::string::npos);
  EXPECT_NE(help.find("  8 Panoply\n"), std::string::npos) << help;
  for (const char* command : {"get", "set", "list", "remove", "path", "check"}) {
    std::string text = Ok({command, "--help"});
    EXPECT_EQ(text.find(std::string("usage: mmpref ") + command), 0u) << text;
  }
}

TEST_F(MmprefTool, CheckAcceptsAGoodFile) {
  Ok({"set", "panoply", "panel/width", "640", "--type", "int", "--comment", "c"});
  EXPECT_EQ(Ok({"check", UserFile()}), UserFile() + ": ok\n");
  EXPECT_EQ(Ok({"check", dir_ / "machine.xml"}), (dir_ / "machine.xml") + ": ok\n");
}

TEST_F(MmprefTool, CheckReportsEachProblemWithItsLine) {
  WriteFile(dir_ / "broken.xml",
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"          // 1
            "<ApplicationSettings>\n"                               // 2
            "    <width dt=\"int\">wide</width>\n"                  // 3
            "    <ratio dt=\"double\">1.5</ratio>\n"                // 4
            "    <kind dt=\"float\">1</kind>\n"                     // 5
            "    <bare>text</bare>\n"                               // 6
            "    <size dt=\"int\" os=\"solaris\">3</size>\n"        // 7
            "    <gone dt=\"QString\">   </gone>\n"                 // 8
            "</ApplicationSettings>\n");
  ChildResult result = Run({"check", dir_ / "broken.xml"});
  EXPECT_EQ(result.exit_code, 3);
  std::string file = dir_ / "broken.xml";
  EXPECT_EQ(result.out,
            file + ":3: the value 'wide' of 'width' is not a int\n" +
            file + ":5: 'kind' has the unknown type \"float\"\n" +
            file + ":6: 'bare' has a value but no \"dt\" attribute\n" +
            file + ":7: unknown platform 'solaris' in the os attribute of 'size'\n" +
            file + ":8: 'gone' has an empty value, which is dropped when the file is read\n");
  EXPECT_EQ(result.err, "mmpref: " + file + ": 5 problems\n");
}

TEST_F(MmprefTool, CheckReportsMalformedXmlAndMissingFiles) {
  WriteFile(dir_ / "cut.xml", "<?xml version=\"1.0\"?>\n<ApplicationSettings>\n  <a dt=\"int\">1</b>\n");
  ChildResult result = Run({"check", dir_ / "cut.xml"});
  EXPECT_EQ(result.exit_code, 3);
  EXPECT_EQ(result.out.find((dir_ / "cut.xml") + ":3: not well-formed: "), 0u) << result.out;
  WriteFile(dir_ / "other_root.xml", "<Settings><a dt=\"int\">1</a></Settings>");
  EXPECT_EQ(Run({"check", dir_ / "other_root.xml"}).out,
            (dir_ / "other_root.xml") + ":1: the root element is <Settings>, not <ApplicationSettings>\n");
  ExpectFailure(Run({"check", dir_ / "absent.xml"}), 3, "cannot read");
}

}  // namespace
