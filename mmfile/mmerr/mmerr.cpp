// Error handles: the process-wide handle table, the two built-in handles and
// the message dispatcher.
#include "mmerr/mmerr.h"

#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "mmerr/mmerr_internal.h"

namespace morvellanth::mmerr_internal {
bool thrown_from_fortran = false;
}  // namespace morvellanth::mmerr_internal

namespace {

using morvellanth::mmerr_internal::thrown_from_fortran;

constexpr uint32_t kMaxKnownLevel = 6;
constexpr uint32_t kUndefinedLevel = 7;

// Level words, indexed by level; every level above 6 uses entry 7.
const char* const code_name[8] = {
    "BUMMER",   // 0
    "OK",       // 1
    "DEBUG",    // 2
    "INFO",     // 3
    "WARNING",  // 4
    "FATAL",    // 5
    "OFF",      // 6
    "LEVEL UNDEFINED",  // 7 and above
};

const char* level_word(uint32_t level) {
  return code_name[level < kUndefinedLevel ? level : kUndefinedLevel];
}

MmerrHandler fresh_record(FILE* stream, uint32_t output_mode) {
  MmerrHandler record{};
  record.in_use = true;
  record.level = MMERR_LEVEL_WARNING;
  record.file.stream = stream;
  record.window = nullptr;
  record.maxlevel = MMERR_LEVEL_OK;
  record.accumulate = false;
  record.buffer = nullptr;
  record.prefix = nullptr;
  record.output_mode = output_mode;
  record.suppress_print = false;
  return record;
}

// User handles 1..count live in records[0..count-1]. Slots are never removed,
// only marked free, so handle numbers stay stable; the array only grows and is
// released at process exit.
struct HandleTable {
  MmerrHandler* records = nullptr;
  int count = 0;
  int capacity = 0;
};
HandleTable handle_table;

void release_handle_table() {
  for (int i = 0; i < handle_table.count; ++i) {
    free(handle_table.records[i].buffer);
    free(handle_table.records[i].prefix);
  }
  free(handle_table.records);
  handle_table = HandleTable{};
}

struct RegisterTableRelease {
  RegisterTableRelease() { atexit(release_handle_table); }
} register_table_release;

// Appends a record; returns its index or -1 when memory runs out.
int append_record() {
  if (handle_table.count == handle_table.capacity) {
    int capacity = handle_table.capacity ? handle_table.capacity * 2 : 8;
    void* grown = realloc(handle_table.records, sizeof(MmerrHandler) * capacity);
    if (!grown) return -1;
    handle_table.records = static_cast<MmerrHandler*>(grown);
    handle_table.capacity = capacity;
  }
  return handle_table.count++;
}

// Appends text to a handle's capture buffer; false when memory runs out (the
// buffer is then gone).
bool accumulate_text(MmerrHandler* handler, const char* text, size_t length) {
  size_t old_length = handler->buffer ? strlen(handler->buffer) : 0;
  char* grown = static_cast<char*>(realloc(handler->buffer, old_length + length + 1));
  if (!grown) {
    free(handler->buffer);
    handler->buffer = nullptr;
    return false;
  }
  memcpy(grown + old_length, text, length + 1);
  handler->buffer = grown;
  return true;
}

// Sends the formatted text to the handle's destination; false when a write
// or the callback failed.
bool print_text(int handle, MmerrHandler* handler, const char* text, int length) {
  namespace internal = morvellanth::mmerr_internal;
  if (handler->output_mode == MMERR_OUTPUT_STREAM) {
    FILE* stream = handler->file.stream;
    if (handle == -1 && stream == stderr && internal::python_redirect_active() &&
        internal::write_to_python_stderr(text, thrown_from_fortran)) {
      // Routed to the interpreter.
    } else if (stream) {
      if (fputs(text, stream) == EOF) return false;
      if (thrown_from_fortran) fputs("\n", stream);
    }
  } else if (handler->output_mode == MMERR_OUTPUT_FORTRAN) {
    int unit = handler->file.unit;
    fprint_line_(&unit, text, &length);
  }
  if (handler->window && handler->window(text) == -1) return false;
  return true;
}

}  // namespace

extern "C" {

MmerrHandler* get_handler_mmerr(int handle) {
  if (handle == -1) {
    static MmerrHandler default_handler = fresh_record(stderr, MMERR_OUTPUT_STREAM);
    return &default_handler;
  }
  if (handle == 0) {
    static MmerrHandler deprecation_handler = fresh_record(stderr, MMERR_OUTPUT_STREAM);
    return &deprecation_handler;
  }
  if (handle < -1 || handle > handle_table.count) return nullptr;
  MmerrHandler* record = &handle_table.records[handle - 1];
  return record->in_use ? record : nullptr;
}

int mmerr_new(int* handle) {
  *handle = -1;
  int slot = -1;
  for (int i = 0; i < handle_table.count; ++i) {
    if (!handle_table.records[i].in_use) {
      slot = i;
      break;
    }
  }
  if (slot < 0 && (slot = append_record()) < 0) return 0;
  handle_table.records[slot] = fresh_record(nullptr, MMERR_OUTPUT_NONE);
  *handle = slot + 1;
  return 1;
}

void mmerr_delete(int handle) {
  if (handle == 0 || handle == -1) {
    mmerr_throw(-1, MMERR_LEVEL_WARNING, "Default handler can not be deleted.\n");
    return;
  }
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler) return;
  free(handler->buffer);
  free(handler->prefix);
  handler->buffer = nullptr;
  handler->prefix = nullptr;
  handler->in_use = false;
}

int mmerr_throw(int handle, int level, const char* format, ...) {
  va_list args;
  va_start(args, format);
  int result = mmerr_vthrow(handle, level, format, args);
  va_end(args);
  return result;
}

int mmerr_vthrow(int handle, int level, const char* format, va_list args) {
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler) return 0;
  uint32_t message_level = static_cast<uint32_t>(level);
  if (message_level <= kMaxKnownLevel && message_level > handler->maxlevel)
    handler->maxlevel = message_level;
  if (handler->level > message_level) return 1;

  // Built on the stack: the dispatcher allocates nothing unless capturing.
  char text[MMERR_MESSAGE_BUFFER_SIZE];
  int head = snprintf(text, sizeof text, "%s%s ", handler->prefix ? handler->prefix : "",
                      level_word(message_level));
  if (head < 0) return 0;
  if (static_cast<size_t>(head) >= sizeof text) head = sizeof text - 1;
  int body = vsnprintf(text + head, sizeof text - head, format, args);
  if (body < 0) text[head] = '\0';
  int length = static_cast<int>(strlen(text));

  if (!handler->suppress_print && !print_text(handle, handler, text, length)) return 0;
  if (handler->accumulate && !accumulate_text(handler, text, static_cast<size_t>(length)))
    return 0;
  return 1;
}

int mmerr_level(int handle, int level) {
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler) return 0;
  handler->level = static_cast<uint32_t>(level);
  return 1;
}

int mmerr_get_level(int handle, int* level) {
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler) return 0;
  *level = static_cast<int>(handler->level);
  return 1;
}

int mmerr_maxlevel(int handle, int* maxlevel) {
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler) return 0;
  *maxlevel = static_cast<int>(handler->maxlevel);
  return 1;
}

int mmerr_errclear(int handle) {
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler) return 0;
  handler->maxlevel = MMERR_LEVEL_OK;
  free(handler->buffer);
  handler->buffer = nullptr;
  return 1;
}

int mmerr_file(int handle, FILE* file) {
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler) return 0;
  handler->file.stream = file;
  handler->output_mode = file ? MMERR_OUTPUT_STREAM : MMERR_OUTPUT_NONE;
  return 1;
}

int mmerr_window(int handle, int (*callback)(const char* message)) {
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler) return 0;
  handler->window = callback;
  return 1;
}

int mmerr_prefix(int handle, const char* prefix) {
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler || !prefix) return 0;
  free(handler->prefix);
  handler->prefix = nullptr;
  if (strlen(prefix) > MMERR_MAX_PREFIX_LENGTH) return 0;
  handler->prefix = strdup(prefix);
  return handler->prefix != nullptr;
}

int mmerr_suppress_print(int handle) {
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler) return 0;
  handler->suppress_print = true;
  return 1;
}

int mmerr_restore_print(int handle) {
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler) return 0;
  handler->suppress_print = false;
  return 1;
}

int mmerr_print_state(int handle, int* printing) {
  MmerrHandler* handler = get_handler_mmerr(handle);
  if (!handler) return 0;
  *printing = handler->suppress_print ? 0 : 1;
  return 1;
}

char* mmerr_return_code(int level) {
  // Ten results may be held at once; the first call uses buffer 1.
  static char buffers[10][512];
  static int index = 0;
  index = (index + 1) % 10;
  char* text = buffers[index];
  uint32_t code = static_cast<uint32_t>(level);
  if (code <= kUndefinedLevel)
    snprintf(text, sizeof buffers[0], "MMERR_%s", code_name[code]);
  else
    snprintf(text, sizeof buffers[0], "(bogus MMERR level)");
  return text;
}

void mmerr_assert(int condition, const char* file, int line) {
  if (!condition) fprintf(stderr, "Assert failed.  File: %s  Line: %d\n", file, line);
}

}  // extern "C"
