// Routing of messages to an embedded interpreter's sys.stderr.
//
// The interpreter's entry points are looked up at run time in the running
// process, so that programs which never embed the interpreter do not need its
// library at link or load time.
#include <dlfcn.h>

#include <cstring>

#include "mmerr/mmerr_internal.h"

namespace morvellanth::mmerr_internal {
namespace {

struct PythonApi {
  int (*is_initialized)() = nullptr;
  int (*gil_ensure)() = nullptr;  // PyGILState_STATE is an enum
  void (*gil_release)(int) = nullptr;
  void (*write_stderr)(const char* format, ...) = nullptr;
  bool complete() const { return is_initialized && gil_ensure && gil_release && write_stderr; }
};

template <typename Function>
void look_up(Function& target, const char* name) {
  target = reinterpret_cast<Function>(dlsym(RTLD_DEFAULT, name));
}

// Looks the entry points up until they are all found; the interpreter may be
// loaded into the process after the first message.
const PythonApi* python_api() {
  static PythonApi api;
  if (!api.complete()) {
    look_up(api.is_initialized, "Py_IsInitialized");
    look_up(api.gil_ensure, "PyGILState_Ensure");
    look_up(api.gil_release, "PyGILState_Release");
    look_up(api.write_stderr, "PySys_WriteStderr");
  }
  return api.complete() ? &api : nullptr;
}

// The interpreter's writer cuts its output at 1000 bytes; longer messages go
// out in pieces below that.
constexpr int kPieceLength = 900;

}  // namespace

bool write_to_python_stderr(const char* text, bool add_newline) {
  const PythonApi* api = python_api();
  if (!api || !api->is_initialized()) return false;
  int state = api->gil_ensure();
  size_t length = strlen(text);
  for (size_t offset = 0; offset < length; offset += kPieceLength) {
    size_t remaining = length - offset;
    int piece = static_cast<int>(remaining < kPieceLength ? remaining : kPieceLength);
    api->write_stderr("%.*s", piece, text + offset);
  }
  if (add_newline) api->write_stderr("\n");
  api->gil_release(state);
  return true;
}

}  // namespace morvellanth::mmerr_internal
