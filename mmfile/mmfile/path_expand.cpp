// Expansion of ~, ~user and $NAME in paths, separator conversion, the
// absolute-path test and the constant table.
#include "mmfile/path_expand.h"

#include <pwd.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "mmfile/mmfile_internal.h"
#include "mmfile/user_dirs.h"

namespace {

using morvellanth::mmfile_internal::failure;

// Index: value. 2..9 are the products' default data search paths, kept
// verbatim (trailing colons and short variable names included).
const char* const kConstants[] = {
    /* 0 */ "/",
    /* 1 */ "",
    /* 2 */ "$USERDATA/kitbase:$KITBASE_EXEC/../../data:$KITBASE_EXEC/../../data/res:$KITBASE_EXEC/../../data/xres",
    /* 3 */ "$USERDATA/panoply:$PANOPLY_EXEC/../../data:$PANOPLY_EXEC/../../data/res",
    /* 4 */ "$USERDATA/tessellant:$TESS_EXEC/../../data",
    /* 5 */ "$RAVINE_EXEC/../../data:$RAVINE_EXEC/../../uff:",
    /* 6 */ "$USERDATA/qvx:$QVX_EXEC/../../data:",
    /* 7 */ "$USERDATA/lumenta:$LUMENTA_EXEC:$LUMENTA_EXEC/../../data",
    /* 8 */ "$USERDATA/harrowmere:$ZKD_EXEC/../../data:$HARROWMERE_EXEC/../../data",
    /* 9 */ "$USERDATA/orbelle:$ORBELLE_EXEC/../../data:$KITBASE_EXEC/../../data/orbelle",
};
constexpr unsigned kConstantCount = sizeof kConstants / sizeof kConstants[0];

constexpr const char* kNameCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";

// Receives the pieces of an expansion: the caller's fixed buffer, which
// refuses a piece that would take the output past `size` characters ...
class BufferSink {
 public:
  BufferSink(char* buf, int size) : buf_(buf), size_(static_cast<std::size_t>(size)) {
    buf_[0] = '\0';
  }
  bool append(const char* piece, std::size_t length) {
    if (length_ + length > size_) return false;
    memcpy(buf_ + length_, piece, length);
    length_ += length;
    buf_[length_] = '\0';
    return true;
  }

 private:
  char* buf_;
  std::size_t size_;
  std::size_t length_ = 0;
};

// ... or a malloc'd string that grows by the piece and 32 characters of slack.
class AllocatedSink {
 public:
  explicit AllocatedSink(std::size_t capacity) : capacity_(capacity) {
    text_ = static_cast<char*>(malloc(capacity_ + 1));
    if (text_) text_[0] = '\0';
  }
  ~AllocatedSink() { free(text_); }
  bool ok() const { return text_ != nullptr; }
  bool append(const char* piece, std::size_t length) {
    if (length_ + length > capacity_) {
      const std::size_t capacity = capacity_ + length + 32;
      char* grown = static_cast<char*>(realloc(text_, capacity + 1));
      if (!grown) return false;
      text_ = grown;
      capacity_ = capacity;
    }
    memcpy(text_ + length_, piece, length);
    length_ += length;
    text_[length_] = '\0';
    return true;
  }
  char* release() {
    char* text = text_;
    text_ = nullptr;
    return text;
  }

 private:
  char* text_;
  std::size_t capacity_;
  std::size_t length_ = 0;
};

// The home directory of a named user, or empty (with the warning) when the
// password database has none.
std::string user_home(const std::string& user) {
  const struct passwd* entry = getpwnam(user.c_str());
  if (!entry || !entry->pw_dir || !entry->pw_dir[0]) {
    failure("mmfile_dir_user_home: Unable to get home directory for user '%s'\n", user.c_str());
    return {};
  }
  return entry->pw_dir;
}

// The one expansion algorithm behind both storage forms. Names are read into
// std::string, so a name of any length is handled whole.
template <typename Sink>
int expand(const char* in, Sink& out) {
  int pending = 0;
  const char* p = in;
  if (*p == '~') {
    const std::size_t name_length = strcspn(p + 1, "/\\");
    const std::string user(p + 1, name_length);
    std::string home;
    if (user.empty()) {
      home = morvellanth::path::home();
    } else {
      home = user_home(user);
      if (home.empty()) pending = -1;
    }
    if (!out.append(home.data(), home.size())) return -1;
    p += 1 + name_length;
  }
  while (const char* dollar = strchr(p, '$')) {
    if (!out.append(p, static_cast<std::size_t>(dollar - p))) return -1;
    const std::size_t name_length = strspn(dollar + 1, kNameCharacters);
    if (name_length == 0) {
      if (!out.append("$", 1)) return -1;
      p = dollar + 1;
      continue;
    }
    const std::string name(dollar + 1, name_length);
    p = dollar + 1 + name_length;
    if (name == "USERDATA" || name == "APPDATA" || name == "LOCAL_APPDATA") {
      // Each such reference decides the pending result anew: a success here
      // wipes an earlier failure.
      char* appdata = nullptr;
      pending = mmfile_morvellanth_appdata_dir(&appdata);
      const bool fits = !appdata || out.append(appdata, strlen(appdata));
      free(appdata);
      if (!fits) return -1;
    } else if (const char* value = getenv(name.c_str())) {
      if (!out.append(value, strlen(value))) return -1;
    }
  }
  if (!out.append(p, strlen(p))) return -1;
  return pending;
}

int convert_separators(char* path, int size, char from, char to) {
  if (!path || size < 2 || !path[0]) return -1;
  for (; *path; ++path)
    if (*path == from) *path = to;
  return 0;
}

}  // namespace

int mmfile_initialize(void) { return 0; }

void mmfile_terminate(void) {}

int mmfile_dir_home(char** home) {
  *home = strdup(morvellanth::path::home().c_str());
  return *home ? 0 : -1;
}

int mmfile_dir_user_home(const char* user, char** home) {
  *home = nullptr;
  if (!user || !user[0]) {
    failure("mmfile_dir_user_home: null user name given\n");
    return -1;
  }
  const std::string dir = user_home(user);
  if (dir.empty()) return -1;
  *home = strdup(dir.c_str());
  if (!*home) {
    failure("mmfile_dir_user_home: Unable to get home directory for user '%s'\n", user);
    return -1;
  }
  return 0;
}

int mmfile_dir_expand_buffer(char* buf, int size) {
  constexpr std::size_t kInputLimit = morvellanth::mmfile_internal::kPathBufferChars;
  if (!buf || !buf[0] || size < 1) return -1;
  const std::size_t length = strnlen(buf, kInputLimit + 1);
  if (length > kInputLimit) return -1;
  char work[kInputLimit + 1];
  memcpy(work, buf, length + 1);
  BufferSink sink(buf, size);
  return expand(work, sink);
}

int mmfile_dir_expand(const char* in, char** out) {
  *out = nullptr;
  if (!in || !in[0]) return -1;
  AllocatedSink sink(strlen(in));
  if (!sink.ok()) return -1;
  const int status = expand(in, sink);
  *out = sink.release();
  return status;
}

int mmfile_path_is_absolute(const char* path) {
  return morvellanth::mmfile_internal::is_absolute(path) ? 0 : -1;
}

int mmfile_path_to_unix(char* path, int size) { return convert_separators(path, size, '\\', '/'); }

int mmfile_path_to_windows(char* path, int size) {
  return convert_separators(path, size, '/', '\\');
}

int mmfile_path_localize(char* path, int size) { return mmfile_path_to_unix(path, size); }

char mmfile_get_filesep_char(void) { return '/'; }

char _mmfile_get_filesep_char(void) { return mmfile_get_filesep_char(); }

const char* mmfile_get_constant(int index) {
  const unsigned position = static_cast<unsigned>(index);
  return position < kConstantCount ? kConstants[position] : nullptr;
}

const char* _mmfile_get_constant(int index) { return mmfile_get_constant(index); }
