// Implementation of the shared test helpers.
#include "support/test_support.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace mmfs_test {

TempDir::TempDir() {
  const char* base = getenv("TMPDIR");
  std::string model = std::string(base && *base ? base : "/tmp") + "/mmfs_test.XXXXXX";
  std::vector<char> buffer(model.begin(), model.end());
  buffer.push_back('\0');
  if (!mkdtemp(buffer.data())) throw std::runtime_error("mkdtemp failed");
  path_ = buffer.data();
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TempDir::operator/(const std::string& relative) const {
  return path_ + "/" + relative;
}

ScopedEnv::ScopedEnv(const std::string& name, const std::string& value) : name_(name) {
  if (const char* old = getenv(name.c_str())) {
    had_value_ = true;
    old_value_ = old;
  }
  setenv(name.c_str(), value.c_str(), 1);
}

ScopedEnv::ScopedEnv(const std::string& name) : name_(name) {
  if (const char* old = getenv(name.c_str())) {
    had_value_ = true;
    old_value_ = old;
  }
  unsetenv(name.c_str());
}

ScopedEnv::~ScopedEnv() {
  if (had_value_)
    setenv(name_.c_str(), old_value_.c_str(), 1);
  else
    unsetenv(name_.c_str());
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void WriteFile(const std::string& path, const std::string& contents) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << contents;
}

bool PathExists(const std::string& path) {
  struct stat st;
  return lstat(path.c_str(), &st) == 0;
}

namespace {

// Reads both pipes to their end without letting either fill up.
void DrainPipes(int out_fd, int err_fd, std::string& out, std::string& err) {
  fd_set fds;
  char chunk[4096];
  bool out_open = true, err_open = true;
  while (out_open || err_open) {
    FD_ZERO(&fds);
    if (out_open) FD_SET(out_fd, &fds);
    if (err_open) FD_SET(err_fd, &fds);
    if (select((out_fd > err_fd ? out_fd : err_fd) + 1, &fds, nullptr, nullptr, nullptr) < 0) {
      if (errno == EINTR) continue;
      break;
    }
    for (int pass = 0; pass < 2; ++pass) {
      int fd = pass == 0 ? out_fd : err_fd;
      bool& open = pass == 0 ? out_open : err_open;
      std::string& sink = pass == 0 ? out : err;
      if (!open || !FD_ISSET(fd, &fds)) continue;
      ssize_t n = read(fd, chunk, sizeof chunk);
      if (n <= 0)
        open = false;
      else
        sink.append(chunk, static_cast<size_t>(n));
    }
  }
}

ChildResult Spawn(const std::function<void()>& in_child, const std::string& stdin_text) {
  int out_pipe[2], err_pipe[2], in_pipe[2];
  if (pipe(out_pipe) || pipe(err_pipe) || pipe(in_pipe)) throw std::runtime_error("pipe failed");
  fflush(nullptr);
  pid_t pid = fork();
  if (pid < 0) throw std::runtime_error("fork failed");
  if (pid == 0) {
    dup2(in_pipe[0], 0);
    dup2(out_pipe[1], 1);
    dup2(err_pipe[1], 2);
    for (int fd : {out_pipe[0], out_pipe[1], err_pipe[0], err_pipe[1], in_pipe[0], in_pipe[1]})
      close(fd);
    in_child();
    _exit(127);
  }
  close(out_pipe[1]);
  close(err_pipe[1]);
  close(in_pipe[0]);
  if (!stdin_text.empty()) {
    ssize_t ignored = write(in_pipe[1], stdin_text.data(), stdin_text.size());
    (void)ignored;
  }
  close(in_pipe[1]);
  ChildResult result;
  DrainPipes(out_pipe[0], err_pipe[0], result.out, result.err);
  close(out_pipe[0]);
  close(err_pipe[0]);
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(status)) {
    result.exited = true;
    result.exit_code = WEXITSTATUS(status);
  } else if (WIFSIGNALED(status)) {
    result.signaled = true;
    result.signal = WTERMSIG(status);
  }
  return result;
}

}  // namespace

ChildResult RunInChild(const std::function<int()>& body) {
  return Spawn([&] {
    int code = body();
    fflush(nullptr);
    _exit(code);
  }, "");
}

ChildResult RunProgram(const std::vector<std::string>& argv, const std::string& stdin_text) {
  return Spawn([&] {
    std::vector<char*> args;
    for (const std::string& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    execv(args[0], args.data());
    _exit(127);
  }, stdin_text);
}

}  // namespace mmfs_test
