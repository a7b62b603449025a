// Expands random text with both forms of path expansion, mmfile_dir_expand
// (allocating) and mmfile_dir_expand_buffer (in place, in a block of exactly
// size + 1 bytes), and runs the separator conversions and the absolute-path
// test on it. Input: two bytes giving `size`, then the text.
// The environment is fixed before the first run (HOME, the application-data
// override and a few variables of our own); the input only reads it.
// Checks: the allocating form gives what a plain model of the rules gives
// (~ and ~user at the start, $NAME from the environment, the three
// application-data names, a lone $ kept); where both forms succeed they
// agree; the buffer form succeeds whenever the allocating form's result fits
// and refuses inputs over 1024 characters untouched; results fit their
// buffers.
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz_support.h"
#include "mmfile/mmfile.h"

namespace {

constexpr std::size_t kBufferInputLimit = 1024;

// A scratch directory for HOME and the application-data directory when the
// runner has not given them (the expansion creates the latter).
void FixEnvironment() {
  if (!getenv("HOME") || !getenv("MORVELLANTH_APPDATA_OVERRIDE")) {
    static char scratch[] = "/tmp/mmfs_path_expand_fuzz.XXXXXX";
    if (!mkdtemp(scratch)) fuzz::Fail("cannot make a scratch directory");
    setenv("HOME", scratch, 1);
    setenv("MORVELLANTH_APPDATA_OVERRIDE", (std::string(scratch) + "/appdata").c_str(), 1);
  }
  setenv("FUZZ_DIR", "/opt/fuzz/dir", 1);
  setenv("FUZZ_EMPTY", "", 1);
  setenv("FUZZ_DOLLAR", "$HOME/~x", 1);  // not expanded again
  setenv("FUZZ_LONG", std::string(300, 'L').c_str(), 1);
  setenv("KITBASE_EXEC", "/opt/kitbase/bin", 1);
  unsetenv("USERDATA");
}

struct Expansion {
  int status;
  std::string text;
};

// The expansion rules written out plainly, for the fixed environment.
Expansion ModelExpand(const std::string& in) {
  static const std::string home = [] {
    char* dir = nullptr;
    mmfile_dir_home(&dir);
    std::string text = dir;
    std::free(dir);
    return text;
  }();
  static const std::string appdata = [] {
    char* dir = nullptr;
    if (mmfile_morvellanth_appdata_dir(&dir) != 0) fuzz::Fail("no application-data directory");
    std::string text = dir;
    std::free(dir);
    return text;
  }();
  static const std::string kNameCharacters =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";

  Expansion out{0, ""};
  std::size_t p = 0;
  if (!in.empty() && in[0] == '~') {
    const std::size_t end = std::min(in.find_first_of("/\\", 1), in.size());
    const std::string user = in.substr(1, end - 1);
    if (user.empty()) {
      out.text += home;
    } else {
      const struct passwd* entry = getpwnam(user.c_str());
      if (entry && entry->pw_dir && entry->pw_dir[0]) {
        out.text += entry->pw_dir;
      } else {
        out.status = -1;
      }
    }
    p = end;
  }
  for (std::size_t dollar; (dollar = in.find('$', p)) != std::string::npos;) {
    out.text += in.substr(p, dollar - p);
    std::size_t end = in.find_first_not_of(kNameCharacters, dollar + 1);
    if (end == std::string::npos) end = in.size();
    const std::string name = in.substr(dollar + 1, end - dollar - 1);
    p = end;
    if (name.empty()) {
      out.text += '$';
    } else if (name == "USERDATA" || name == "APPDATA" || name == "LOCAL_APPDATA") {
      out.text += appdata;
      out.status = 0;
    } else if (const char* value = getenv(name.c_str())) {
      out.text += value;
    }
  }
  out.text += in.substr(p);
  return out;
}

void ConvertSeparators(const std::string& text) {
  std::string copy = text;
  const int size = static_cast<int>(copy.size()) + 1;
  int rc = mmfile_path_to_windows(&copy[0], size);
  fuzz::Check(rc == (text.empty() ? -1 : 0), "to_windows refuses only the empty text");
  fuzz::Check(copy.find('/') == std::string::npos, "to_windows leaves no slash");
  rc = mmfile_path_to_unix(&copy[0], size);
  fuzz::Check(copy.find('\\') == std::string::npos, "to_unix leaves no backslash");
  mmfile_path_localize(&copy[0], size);
  int absolute = mmfile_path_is_absolute(text.c_str());
  fuzz::Check(absolute == 0 || absolute == -1, "is_absolute answers 0 or -1");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  FixEnvironment();
  fuzz::SilenceHandle(-1);
  fuzz::SilenceHandle(errHand_mmfile);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const int buffer_size = (data[0] | (data[1] << 8)) % 2200;
  const std::string text = fuzz::SplitFields(data + 2, size - 2, 1)[0];

  char* expanded = nullptr;
  const int rc = mmfile_dir_expand(text.c_str(), &expanded);
  fuzz::Check(rc == 0 || rc == -1, "mmfile_dir_expand answers 0 or -1");
  if (text.empty()) {
    fuzz::Check(rc == -1 && expanded == nullptr, "empty text is refused");
  } else {
    const Expansion model = ModelExpand(text);
    fuzz::Check(rc == model.status, "the status follows the rules");
    fuzz::Check(expanded != nullptr && model.text == expanded, "the expansion follows the rules");
  }

  // The buffer holds the text and room for `size` characters plus the NUL,
  // and not one byte more.
  const std::size_t room = std::max<std::size_t>(text.size(), buffer_size) + 1;
  char* buffer = static_cast<char*>(std::malloc(room));
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  const int buffer_rc = mmfile_dir_expand_buffer(buffer, buffer_size);
  fuzz::Check(buffer_rc == 0 || buffer_rc == -1, "mmfile_dir_expand_buffer answers 0 or -1");
  fuzz::Check(std::strlen(buffer) < room, "the buffer form stays inside its buffer");
  if (text.size() > kBufferInputLimit || buffer_size < 1) {
    fuzz::Check(buffer_rc == -1 && text == buffer, "a refused input is left untouched");
  }

  if (buffer_rc == 0) {
    fuzz::Check(std::strlen(buffer) <= static_cast<std::size_t>(buffer_size),
                "the buffer form's result has at most size characters");
    fuzz::Check(rc == 0 && expanded != nullptr && std::strcmp(buffer, expanded) == 0,
                "both forms expand alike");
  }
  if (rc == 0 && buffer_size >= 1 && text.size() <= kBufferInputLimit &&
      std::strlen(expanded) <= static_cast<std::size_t>(buffer_size)) {
    fuzz::Check(buffer_rc == 0, "the buffer form takes a result that fits");
  }
  std::free(buffer);
  std::free(expanded);

  ConvertSeparators(text);
  return 0;
}
