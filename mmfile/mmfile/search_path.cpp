// The process-wide data search path and file lookup through it.
#include "mmfile/search_path.h"

#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "mmerr/mmerr.h"
#include "mmfile/dir_stack.h"
#include "mmfile/mmfile.h"
#include "mmfile/mmfile_internal.h"
#include "mmfile/path_expand.h"
#include "mmfile/user_dirs.h"

namespace {

namespace internal = morvellanth::mmfile_internal;

// Owns the one search path: items are calloc'd, their `dir` malloc'd; `found`
// points into the list or is null. Freed at process exit.
class SearchPath {
 public:
  SearchPath();
  ~SearchPath() { clear(); }
  search_path_type* get() { return &path_; }

  void clear() {
    free_items(path_.first);
    path_.first = nullptr;
    path_.found = nullptr;
  }

 private:
  // Each item after its successors.
  static void free_items(search_path_item* item) {
    while (item) {
      search_path_item* next = item->next;
      free(item->dir);
      free(item);
      item = next;
    }
  }

  search_path_type path_{};
};

bool contains(const search_path_type* path, const char* dir) {
  for (const search_path_item* item = path->first; item; item = item->next)
    if (item->dir && strcmp(item->dir, dir) == 0) return true;
  return false;
}

// Appends an item unless one with that text exists.
void append(search_path_type* path, const char* dir, int cwd, int home) {
  if (contains(path, dir)) return;
  auto* item = static_cast<search_path_item*>(calloc(1, sizeof(search_path_item)));
  if (!item || !(item->dir = strdup(dir))) {
    free(item);
    return;
  }
  item->cwd = cwd;
  item->home = home;
  search_path_item** tail = &path->first;
  while (*tail) tail = &(*tail)->next;
  *tail = item;
}

int add_components(search_path_type* path, const char* text) {
  if (!text || !text[0]) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_WARNING,
                "MMFILE: empty string was given as a search path\n");
    return -1;
  }
  const std::string list = text;
  std::size_t start = 0;
  while (start <= list.size()) {
    std::size_t end = list.find(':', start);
    if (end == std::string::npos) end = list.size();
    const std::size_t length = end - start;
    // A component the buffer cannot hold is skipped: expansion would refuse
    // it anyway.
    if (length > 0 && length <= static_cast<std::size_t>(internal::kPathBufferChars)) {
      char buffer[internal::kPathBufferChars + 1];
      memcpy(buffer, list.data() + start, length);
      buffer[length] = '\0';
      // An unset variable leaves its part of the component out; the
      // component is still added.
      mmfile_dir_expand_buffer(buffer, internal::kPathBufferChars);
      internal::backslashes_to_slashes(buffer);
      append(path, buffer, 0, 0);
    }
    start = end + 1;
  }
  return 0;
}

SearchPath::SearchPath() {
  internal::clear_open_file_table();
  internal::clear_dos_files();
  add_components(&path_, ".");
  add_components(&path_, mmfile_get_constant(2));
}

SearchPath& search_path() {
  static SearchPath instance;
  return instance;
}

bool has_type(const char* path, int type) {
  struct stat st;
  if (stat(path, &st) != 0) return false;
  if (type == 0) return S_ISREG(st.st_mode);
  if (type == 1) return S_ISDIR(st.st_mode);
  return false;
}

}  // namespace

namespace morvellanth::mmfile_internal {
search_path_type* search_path_instance() { return search_path().get(); }
}  // namespace morvellanth::mmfile_internal

int mmfile_path_clear(void) {
  search_path().clear();
  return 0;
}

int mmfile_path_set(const char* path) {
  search_path().clear();
  return add_components(search_path().get(), path);
}

int mmfile_path_add(const char* path) { return add_components(search_path().get(), path); }

int mmfile_path_add_cwd(void) {
  search_path_type* path = search_path().get();
  char* cwd = nullptr;
  if (mmfile_dir_current_get(&cwd) != 0 || !cwd) return -1;
  append(path, cwd, 1, 0);
  free(cwd);
  return 0;
}

int mmfile_path_add_home(void) {
  append(search_path().get(), morvellanth::path::home().c_str(), 0, 1);
  return 0;
}

int mmfile_path_get(char** out) {
  const search_path_type* path = search_path().get();
  std::size_t size = 1;
  for (const search_path_item* item = path->first; item; item = item->next)
    size += strlen(item->dir ? item->dir : "") + 1;
  *out = static_cast<char*>(malloc(size));
  if (!*out) return -1;
  char* end = *out;
  for (const search_path_item* item = path->first; item; item = item->next) {
    const char* dir = item->dir ? item->dir : "";
    const std::size_t length = strlen(dir);
    memcpy(end, dir, length);
    end += length;
    *end++ = ':';
  }
  if (end != *out) --end;  // the last colon
  *end = '\0';
  return 0;
}

int mmfile_path_print(FILE* stream) {
  print_search_path(stream, search_path().get());
  return 0;
}

int print_search_path(FILE* stream, search_path_type* path) {
  if (!path) return fprintf(stream, "** null object passed to print_search_path **\n");
  int result = fprintf(stream, "MMFILE search path:  id = %d\n", 0);
  int number = 1;
  for (const search_path_item* item = path->first; item; item = item->next, ++number)
    result = fprintf(stream, "item:%d  cwd:%d home:%d  dir:%s\n", number, item->cwd, item->home,
                     item->dir ? item->dir : "");
  return result;
}

int mmfile_file_exists(const char* path, int type) {
  return path && has_type(path, type) ? 0 : -1;
}

int mmfile_exists(const char* name, int type) {
  search_path_type* path = search_path().get();
  path->found = nullptr;
  if (!name) return -1;
  if (internal::is_absolute(name)) return mmfile_file_exists(name, type) == 0 ? 0 : -1;
  if (!path->first) {
    mmerr_throw(errHand_mmfile, MMERR_LEVEL_FATAL,
                "MMFILE: there are no directories in the search path\n");
    return -1;
  }
  std::string candidate;
  for (search_path_item* item = path->first; item; item = item->next) {
    if (!item->dir || !item->dir[0]) continue;
    candidate.assign(item->dir);
    if (candidate.back() != '/') candidate += '/';
    candidate += name;
    if (has_type(candidate.c_str(), type)) {
      path->found = item;
      return 0;
    }
  }
  return -1;
}

int mmfile_find(const char* name, int type, char** out) {
  *out = nullptr;
  const int status = mmfile_exists(name, type);
  if (status != 0) return status;
  const search_path_item* found = search_path().get()->found;
  if (!found) {
    *out = strdup(name);
    return 0;
  }
  // dir, "/", name
  const std::size_t dir_length = strlen(found->dir);
  const std::size_t name_length = strlen(name);
  *out = static_cast<char*>(malloc(dir_length + name_length + 2));
  if (!*out) return -1;
  memcpy(*out, found->dir, dir_length);
  (*out)[dir_length] = '/';
  memcpy(*out + dir_length + 1, name, name_length + 1);
  return 0;
}

std::string join_path(std::string a, std::string b) {
  if (b.empty()) return a;
  if (a.empty()) return b;
  return a + ":" + b;
}
