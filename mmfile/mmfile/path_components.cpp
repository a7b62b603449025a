// Splitting and joining path components.
#include "mmfile/path_components.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

char* copy_of(const std::string& text) { return strdup(text.c_str()); }

}  // namespace

char* mmfile_get_last_component(const char* path) {
  if (!path || !path[0]) return nullptr;
  const char* slash = strrchr(path, '/');
  return strdup(slash ? slash + 1 : path);
}

char* mmfile_remove_component(const char* path) {
  if (!path || !path[0]) return nullptr;
  const char* slash = strrchr(path, '/');
  return copy_of(std::string(path, slash ? static_cast<std::size_t>(slash - path) : 0));
}

char* mmfile_add_component(const char* path, const char* component) {
  const bool have_path = path && path[0];
  const bool have_component = component && component[0];
  if (!have_path) return have_component ? strdup(component) : nullptr;
  if (!have_component) return strdup(path);
  std::string joined = path;
  const bool path_ends_in_slash = joined.back() == '/';
  if (path_ends_in_slash && component[0] == '/')
    ++component;
  else if (!path_ends_in_slash && component[0] != '/')
    joined += '/';
  joined += component;
  return copy_of(joined);
}

void mmfile_parse_path(const char* path, char** directory, char** file) {
  *directory = nullptr;
  *file = nullptr;
  if (!path || !path[0]) return;
  std::string text = path;
  text = text.substr(0, text.find('\n'));
  if (text.empty()) return;
  const std::size_t slash = text.rfind('/');
  if (slash == std::string::npos) {
    *file = copy_of(text);
    return;
  }
  if (slash + 1 < text.size()) *file = copy_of(text.substr(slash + 1));
  std::size_t end = slash;
  while (end > 0 && text[end - 1] == '/') --end;
  // A path at the root keeps its slashes up to and including the last one.
  *directory = copy_of(end == 0 ? text.substr(0, slash + 1) : text.substr(0, end));
}

void mmfile_free_component_string(char* text) { free(text); }
