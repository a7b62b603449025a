// A private world for preference tests: home, application-data and temporary
// directories under one temporary folder, machine and installation files at
// paths of the test's choosing, and a rescan of them at every open.
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "support/test_support.h"

namespace mmpref_test {

class PrefSandbox {
 public:
  PrefSandbox() { mkdir(tmp_.c_str(), 0755); }

  // The user's file of a product base name in a release of the application-data
  // tree (releases after 2017-1).
  std::string userFile(const std::string& base, const std::string& release = "2025-4") const {
    return appdata_ + "/" + release + "/" + base + ".xml";
  }
  // The same for releases up to 2017-1, kept under the home directory.
  std::string homeFile(const std::string& base, const std::string& release) const {
    return home_ + "/.morvellanth/" + release + "/" + base + ".xml";
  }
  const std::string& machineFile() const { return machine_; }
  const std::string& installationFile() const { return installation_; }
  const std::string& root() const { return dir_.path(); }

  // Writes a file, making its directory first.
  static void write(const std::string& path, const std::string& contents) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    mmfs_test::WriteFile(path, contents);
  }

 private:
  mmfs_test::TempDir dir_;
  const std::string home_ = dir_ / "home";
  const std::string appdata_ = dir_ / "appdata";
  const std::string tmp_ = dir_ / "tmp";
  const std::string machine_ = dir_ / "machine/suitepref.xml";
  const std::string installation_ = dir_ / "site/suitepref.xml";
  mmfs_test::ScopedEnv homeEnv_{"HOME", home_};
  mmfs_test::ScopedEnv appdataEnv_{"MORVELLANTH_APPDATA_OVERRIDE", appdata_};
  mmfs_test::ScopedEnv tmpEnv_{"TMPDIR", tmp_};
  mmfs_test::ScopedEnv sandboxEnv_{"MORVELLANTH_MMPREF_SANDBOX"};
  mmfs_test::ScopedEnv machineEnv_{"MORVELLANTH_MACHINE_PREFERENCE", machine_};
  mmfs_test::ScopedEnv siteEnv_{"MORVELLANTH_SITE_PREFERENCE", installation_};
  mmfs_test::ScopedEnv rescanEnv_{"MORVELLANTH_MMPREF_TEST", "1"};
};

// A whole preference document around the given elements.
inline std::string xmlDocument(const std::string& body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ApplicationSettings>\n" + body + "</ApplicationSettings>\n";
}

}  // namespace mmpref_test
