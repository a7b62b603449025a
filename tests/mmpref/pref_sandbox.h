// A private world for preference tests: home, application-data and temporary
// directories under one temporary folder, machine and installation files at
// paths of the test's choosing (rescanned at every open), and a recorder of
// the warnings that Qt's message logger receives.
#pragma once

#include <QtGlobal>

#include <filesystem>
#include <string>
#include <vector>

#include "support/test_support.h"

namespace mmpref_test {

class PrefSandbox {
 public:
  // The temporary directory must exist for the lock files to go there.
  PrefSandbox() { std::filesystem::create_directories(dir_ / "tmp"); }

  // The user's file of a product base name in a release after 2017-1.
  std::string userFile(const std::string& base, const std::string& release = "2025-4") const {
    return dir_ / ("appdata/" + release + "/" + base + ".xml");
  }
  std::string machineFile() const { return dir_ / "machine/suitepref.xml"; }
  std::string installationFile() const { return dir_ / "site/suitepref.xml"; }
  const std::string& root() const { return dir_.path(); }

  // Writes a file, making its directory first.
  static void write(const std::string& path, const std::string& contents) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    mmfs_test::WriteFile(path, contents);
  }

 private:
  mmfs_test::TempDir dir_;
  mmfs_test::ScopedEnv home_{"HOME", dir_ / "home"};
  mmfs_test::ScopedEnv appdata_{"MORVELLANTH_APPDATA_OVERRIDE", dir_ / "appdata"};
  mmfs_test::ScopedEnv tmp_{"TMPDIR", dir_ / "tmp"};
  mmfs_test::ScopedEnv sandbox_{"MORVELLANTH_MMPREF_SANDBOX"};
  mmfs_test::ScopedEnv machine_{"MORVELLANTH_MACHINE_PREFERENCE", machineFile()};
  mmfs_test::ScopedEnv site_{"MORVELLANTH_SITE_PREFERENCE", installationFile()};
  mmfs_test::ScopedEnv rescan_{"MORVELLANTH_MMPREF_TEST", "1"};
};

// A whole preference document around the given elements.
inline std::string xmlDocument(const std::string& body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ApplicationSettings>\n" + body + "</ApplicationSettings>\n";
}

// Records the texts logged as warnings while it lives.
struct QtWarnings {
  QtWarnings() {
    texts().clear();
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
      if (type == QtWarningMsg) texts().push_back(text.toStdString());
    });
  }
  ~QtWarnings() { qInstallMessageHandler(nullptr); }
  static std::vector<std::string>& texts() {
    static std::vector<std::string> logged;
    return logged;
  }
};

}  // namespace mmpref_test
