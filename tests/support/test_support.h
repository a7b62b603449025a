// Helpers shared by the test suite: temporary folders, whole-file reads and
// writes, scoped environment variables and child processes whose output and
// end (exit code or signal) are captured.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace mmfs_test {

// A fresh directory under the system's temporary folder, removed with all its
// contents when the object dies.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& path() const { return path_; }
  // path() + "/" + relative
  std::string operator/(const std::string& relative) const;

 private:
  std::string path_;
};

// Sets (or, with unset=true, removes) an environment variable for a scope and
// puts the previous state back afterwards.
class ScopedEnv {
 public:
  ScopedEnv(const std::string& name, const std::string& value);
  explicit ScopedEnv(const std::string& name);  // unsets
  ~ScopedEnv();
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  std::string name_;
  bool had_value_ = false;
  std::string old_value_;
};

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& contents);
bool PathExists(const std::string& path);

// How a child process ended and what it wrote.
struct ChildResult {
  bool exited = false;    // ended through exit(); exit_code is valid
  int exit_code = -1;
  bool signaled = false;  // killed by a signal; signal is valid
  int signal = 0;
  std::string out;        // standard output
  std::string err;        // standard error
};

// Runs body() in a forked child whose standard output and error are captured;
// the child exits with body's result (or dies of whatever body raises).
ChildResult RunInChild(const std::function<int()>& body);

// Runs a program with arguments (argv[0] included) and optional standard input.
ChildResult RunProgram(const std::vector<std::string>& argv,
                       const std::string& stdin_text = "");

}  // namespace mmfs_test
