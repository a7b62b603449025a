// Splits and joins random paths with mmfile_get_last_component,
// mmfile_remove_component, mmfile_add_component and mmfile_parse_path.
// Input: the path, a NUL, the component to add.
// Checks: the last component is a suffix and the removed form a prefix of the
// path; joining keeps both parts; parse_path's parts come from the path's
// first line, the file name holds no "/" and the directory ends in none
// unless it is the root.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "mmfile/mmfile.h"

namespace {

bool EndsWith(const std::string& text, const std::string& tail) {
  return text.size() >= tail.size() &&
         text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

bool StartsWith(const std::string& text, const std::string& head) {
  return text.compare(0, head.size(), head) == 0;
}

void CheckComponents(const std::string& path) {
  char* last = mmfile_get_last_component(path.c_str());
  char* removed = mmfile_remove_component(path.c_str());
  if (path.empty()) {
    fuzz::Check(last == nullptr && removed == nullptr, "an empty path has no components");
    return;
  }
  fuzz::Check(last != nullptr && removed != nullptr, "a path has components");
  fuzz::Check(std::strchr(last, '/') == nullptr, "the last component holds no slash");
  fuzz::Check(EndsWith(path, last), "the last component ends the path");
  fuzz::Check(StartsWith(path, removed), "the removed form begins the path");
  if (path.find('/') != std::string::npos) {
    fuzz::Check(std::strlen(removed) + 1 + std::strlen(last) == path.size(),
                "the two parts and one slash make the path");
  }
  mmfile_free_component_string(last);
  mmfile_free_component_string(removed);
}

void CheckJoin(const std::string& path, const std::string& component) {
  char* joined = mmfile_add_component(path.c_str(), component.c_str());
  if (path.empty() && component.empty()) {
    fuzz::Check(joined == nullptr, "joining nothing gives null");
    return;
  }
  fuzz::Check(joined != nullptr, "joining gives a string");
  fuzz::Check(StartsWith(joined, path), "the joined path begins with the path");
  std::string tail = component;
  if (!path.empty() && path.back() == '/' && !tail.empty() && tail[0] == '/') tail.erase(0, 1);
  fuzz::Check(EndsWith(joined, tail), "the joined path ends with the component");
  fuzz::Check(std::strlen(joined) <= path.size() + 1 + component.size(),
              "joining adds at most one slash");
  mmfile_free_component_string(joined);

  // The null forms are copies of the other part.
  char* alone = mmfile_add_component(path.c_str(), nullptr);
  fuzz::Check(path.empty() ? alone == nullptr : std::strcmp(alone, path.c_str()) == 0,
              "a null component gives the path");
  mmfile_free_component_string(alone);
}

void CheckParse(const std::string& path) {
  char* directory = reinterpret_cast<char*>(1);
  char* file = reinterpret_cast<char*>(1);
  mmfile_parse_path(path.c_str(), &directory, &file);
  const std::string line = path.substr(0, path.find('\n'));
  if (line.empty()) {
    fuzz::Check(directory == nullptr && file == nullptr, "an empty line has no parts");
    return;
  }
  const std::size_t slash = line.rfind('/');
  if (slash == std::string::npos) {
    fuzz::Check(directory == nullptr, "a bare name has no directory");
    fuzz::Check(file != nullptr && line == file, "a bare name is the file name");
  } else {
    fuzz::Check(file == nullptr ? slash + 1 == line.size() : line.substr(slash + 1) == file,
                "the file name follows the last slash");
    fuzz::Check(directory != nullptr, "a path with a slash has a directory");
    const std::string dir = directory;
    fuzz::Check(StartsWith(line, dir), "the directory begins the line");
    const bool root = line.find_first_not_of('/') >= slash;
    if (!root) {
      fuzz::Check(!dir.empty() && dir.back() != '/', "the directory has no trailing slash");
    }
    if (root) fuzz::Check(dir == line.substr(0, slash + 1), "a root directory keeps its slashes");
  }
  mmfile_free_component_string(directory);
  mmfile_free_component_string(file);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::SilenceHandle(-1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<std::string> fields = fuzz::SplitFields(data, size, 2);
  const std::string& path = fields[0];
  const std::string component = fields.size() > 1 ? fields[1] : std::string();
  CheckComponents(path);
  CheckJoin(path, component);
  CheckParse(path);
  return 0;
}
