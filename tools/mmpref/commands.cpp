// The store commands of mmpref: get, set, list, remove and path, each going
// through the library's preference store exactly as a program of the suite
// would (user file, then machine file, then installation file).
#include <QString>
#include <QVariant>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "mmerr/capture.h"
#include "mmpref/mmpref.h"
#include "tool.h"

namespace mmpref_tool {

namespace {

namespace internal = morvellanth::preferences::internal;
using morvellanth::mmlibs::CaptureMMErr;

std::unique_ptr<MMPREF> OpenStore(const std::string& product_text) {
  MMPREF_PRODUCTS product = ParseProduct(product_text);
  try {
    return std::make_unique<MMPREF>(product, true);
  } catch (const std::exception& error) {
    throw ToolError(kFailure, "cannot open the preferences of " +
                                  internal::mmpref_product_name(product) + ": " + error.what());
  }
}

// The library's message without its level word and final newline.
std::string LibraryMessage(CaptureMMErr& capture, const std::string& fallback) {
  std::string text = capture.getMessages();
  std::size_t blank = text.find(' ');
  if (blank != std::string::npos) text.erase(0, blank + 1);
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
  return text.empty() ? fallback : text;
}

const char* TypeName(MMPREF_TYPE type) {
  switch (type) {
    case MMPREF_TYPE_INT: return "int";
    case MMPREF_TYPE_DOUBLE: return "double";
    case MMPREF_TYPE_BOOL: return "bool";
    case MMPREF_TYPE_STRING: return "string";
    default: return "none";
  }
}

// The value of a key of a known type as text; false when it does not read.
bool ValueText(const MMPREF& store, const std::string& key, MMPREF_TYPE type, std::string* text) {
  MMpref_Err err = MMPREF_SUCCESS;
  const char* name = key.c_str();
  switch (type) {
    case MMPREF_TYPE_INT: *text = std::to_string(store.get<int>(name, &err)); break;
    case MMPREF_TYPE_DOUBLE: *text = QVariant(store.get<double>(name, &err)).toString().toStdString(); break;
    case MMPREF_TYPE_BOOL: *text = store.get<bool>(name, &err) ? "true" : "false"; break;
    default: *text = store.get<QString>(name, &err).toStdString(); break;
  }
  if (err == MMPREF_WRONG_TYPE && type != MMPREF_TYPE_STRING)  // an unconvertible text
    return ValueText(store, key, MMPREF_TYPE_STRING, text);
  return err == MMPREF_SUCCESS || err == MMPREF_FALLBACK_VALUE;
}

// "<source>\t<file>\t" for --show-origin.
std::string Origin(const MMPREF& store, const std::string& key) {
  MMPrefSource source = store.getKeySource(key.c_str());
  std::string file;
  switch (source) {
    case MMPREF_SOURCE_USER: store.getSettingsFile(file); break;
    case MMPREF_SOURCE_MACHINE: file = internal::get_machine_preferences_path().toStdString(); break;
    case MMPREF_SOURCE_INSTALLATION: file = internal::get_suite_preferences_path().toStdString(); break;
    default: break;
  }
  return mmpref_source_to_string(source) + "\t" + file + "\t";
}

MMPREF_TYPE ParseType(const std::string& text) {
  if (text == "int") return MMPREF_TYPE_INT;
  if (text == "double") return MMPREF_TYPE_DOUBLE;
  if (text == "bool") return MMPREF_TYPE_BOOL;
  if (text == "string") return MMPREF_TYPE_STRING;
  throw ToolError(kUsage, "set: --type must be int, double, bool or string, not '" + text + "'");
}

MMPREF_PLATFORM ParsePlatform(const std::string& text) {
  for (MMPREF_PLATFORM platform : {MMPREF_PLATFORM_LINUX, MMPREF_PLATFORM_WINDOWS, MMPREF_PLATFORM_DARWIN})
    if (text == mmpref_platform_word(platform)) return platform;
  throw ToolError(kUsage, "set: --os must be linux, windows or darwin, not '" + text + "'");
}

// The command-line value as a typed QVariant; a usage error when it does not
// read as that type.
QVariant TypedValue(const std::string& text, MMPREF_TYPE type) {
  const char* start = text.c_str();
  char* end = nullptr;
  errno = 0;
  switch (type) {
    case MMPREF_TYPE_INT: {
      long value = std::strtol(start, &end, 10);
      if (text.empty() || *end || errno || value != static_cast<int>(value))
        throw ToolError(kUsage, "set: '" + text + "' is not an int");
      return QVariant(static_cast<int>(value));
    }
    case MMPREF_TYPE_DOUBLE: {
      double value = std::strtod(start, &end);
      if (text.empty() || *end || errno) throw ToolError(kUsage, "set: '" + text + "' is not a double");
      return QVariant(value);
    }
    case MMPREF_TYPE_BOOL:
      if (text == "true" || text == "1") return QVariant(true);
      if (text == "false" || text == "0") return QVariant(false);
      throw ToolError(kUsage, "set: '" + text + "' is not a bool (true, false, 1 or 0)");
    default:
      return QVariant(QString::fromStdString(text));
  }
}

void Sync(MMPREF& store) {
  MMpref_Err code = store.syncSettings();
  if (code == MMPREF_SUCCESS) return;
  std::string file;
  store.getSettingsFile(file);
  std::string reason = format_error(code);
  throw ToolError(kFailure, "cannot write " + file + (reason.empty() ? "" : ": " + reason));
}

}  // namespace

int RunGet(const Arguments& arguments) {
  std::unique_ptr<MMPREF> store = OpenStore(arguments.positional[0]);
  const std::string& key = arguments.positional[1];
  MMPREF_TYPE type = store->getType(key);
  std::string text;
  if (type == MMPREF_TYPE_NONE || !ValueText(*store, key, type, &text))
    throw ToolError(kNotFound, "key not found: " + key);
  if (arguments.has("show-origin")) fputs(Origin(*store, key).c_str(), stdout);
  printf("%s\n", text.c_str());
  return kSuccess;
}

int RunSet(const Arguments& arguments) {
  const std::string& key = arguments.positional[1];
  const std::string& value_text = arguments.positional[2];
  MMPREF_TYPE type = MMPREF_TYPE_STRING;
  if (arguments.has("type")) type = ParseType(arguments.options.at("type"));
  MMPREF_PLATFORM platform = MMPREF_PLATFORM_NONE;
  if (arguments.has("os")) platform = ParsePlatform(arguments.options.at("os"));

  std::unique_ptr<MMPREF> store = OpenStore(arguments.positional[0]);
  // Without --type an existing key keeps its type.
  if (!arguments.has("type")) {
    MMPREF_TYPE existing = store->getType(key);
    if (existing != MMPREF_TYPE_NONE) type = existing;
  }
  QVariant value = TypedValue(value_text, type);
  if (platform != MMPREF_PLATFORM_NONE) store->beginOsAttribute(platform);
  MMpref_Err code;
  {
    CaptureMMErr capture(-1);
    std::string comment = arguments.has("comment") ? arguments.options.at("comment") : "";
    code = store->set(key, value, comment);
    if (code != MMPREF_SUCCESS)
      throw ToolError(kFailure, LibraryMessage(capture, "cannot set " + key));
  }
  Sync(*store);
  return kSuccess;
}

int RunList(const Arguments& arguments) {
  std::unique_ptr<MMPREF> store = OpenStore(arguments.positional[0]);
  const bool in_group = arguments.positional.size() > 1;
  if (in_group) {
    CaptureMMErr capture(-1);
    if (store->beginGroup(arguments.positional[1]) != MMPREF_SUCCESS)
      throw ToolError(kUsage, LibraryMessage(capture, "invalid group " + arguments.positional[1]));
  }
  std::map<std::string, MMPREF_TYPE> stored;
  store->listKeys(stored);
  if (stored.empty() && in_group) throw ToolError(kNotFound, "no keys in " + arguments.positional[1]);
  // A key of the running platform is what its plain name reads here, so it
  // is listed under that name; other platforms' keys keep their suffix.
  const std::string running_suffix = std::string(":os=") + mmpref_platform_word(mmpref_running_platform());
  std::set<std::string> keys;
  for (const auto& entry : stored) {
    const std::string& key = entry.first;
    bool running = key.size() > running_suffix.size() &&
                   key.compare(key.size() - running_suffix.size(), std::string::npos, running_suffix) == 0;
    keys.insert(running ? key.substr(0, key.size() - running_suffix.size()) : key);
  }
  for (const std::string& key : keys) {
    const MMPREF_TYPE type = store->getType(key);
    std::string text;
    if (!ValueText(*store, key, type, &text)) continue;
    if (arguments.has("show-origin")) fputs(Origin(*store, key).c_str(), stdout);
    printf("%s\t%s\t%s\n", key.c_str(), TypeName(type), text.c_str());
  }
  return kSuccess;
}

int RunRemove(const Arguments& arguments) {
  std::unique_ptr<MMPREF> store = OpenStore(arguments.positional[0]);
  const std::string& key = arguments.positional[1];
  if (store->removeKey(key, MMPREF_TYPE_NONE) != MMPREF_SUCCESS) {
    MMPrefSource source = store->getKeySource(key.c_str());
    if (source == MMPREF_SOURCE_MACHINE || source == MMPREF_SOURCE_INSTALLATION)
      throw ToolError(kNotFound, key + " is not in the user file (it comes from the " +
                                     mmpref_source_to_string(source) + " file)");
    throw ToolError(kNotFound, "key not found: " + key);
  }
  Sync(*store);
  return kSuccess;
}

int RunPath(const Arguments& arguments) {
  std::unique_ptr<MMPREF> store = OpenStore(arguments.positional[0]);
  std::string file;
  store->getSettingsFile(file);
  printf("%s\n", file.c_str());
  return kSuccess;
}

}  // namespace mmpref_tool
