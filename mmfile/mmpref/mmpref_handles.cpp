// The handle interface: numbered access to shared preference stores.
#include <QDebug>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <map>
#include <string>
#include <vector>

#include "mmpref/mmpref.h"

namespace {

using StorePointer = boost::shared_ptr<MMPREF>;

// Every open store by handle (its address). Made on first use and never
// destroyed: a store still open at exit is not written back.
std::map<MMpref, StorePointer>& handleTable() {
  static auto* const table = new std::map<MMpref, StorePointer>;
  return *table;
}

// A copy of the store's pointer, held by the caller for the length of one
// call so that mmpref_delete cannot destroy the store under it.
StorePointer storeOf(MMpref handle) {
  const auto& table = handleTable();
  const auto found = table.find(handle);
  return found == table.end() ? StorePointer() : found->second;
}

char* copyText(const std::string& text) { return strdup(text.c_str()); }

// Runs an operation without a result on the handle's store: 0, or 1 when the
// handle names no store.
template <typename Operation>
MMpref_Err onStore(MMpref handle, Operation operation) {
  const StorePointer store = storeOf(handle);
  if (!store) return MMPREF_FAILURE;
  operation(*store);
  return MMPREF_SUCCESS;
}

const char* orEmpty(const char* text) { return text ? text : ""; }

// Copies each item's name into a malloc'd array; false, with nothing handed
// out, when memory runs out.
template <typename Range, typename NameOf>
bool handOutNames(const Range& items, NameOf nameOf, char*** names) {
  char** array = static_cast<char**>(calloc(items.size(), sizeof(char*)));
  if (!array) return false;
  size_t i = 0;
  for (const auto& item : items) {
    if (!(array[i++] = copyText(nameOf(item)))) {
      for (size_t j = 0; j < i; ++j) free(array[j]);
      free(array);
      return false;
    }
  }
  *names = array;
  return true;
}

// Hands out a name-ordered map as malloc'd arrays of names and values; false
// when memory runs out.
template <typename Value, typename Out, typename Convert>
bool handOut(const std::map<std::string, Value>& list, char*** names, Out** values, int* count,
             Convert convert) {
  if (list.empty()) return true;
  Out* array = static_cast<Out*>(malloc(list.size() * sizeof(Out)));
  if (!array || !handOutNames(list, [](const auto& entry) { return entry.first; }, names)) {
    free(array);
    return false;
  }
  size_t i = 0;
  for (const auto& entry : list) array[i++] = convert(entry.second);
  *values = array;
  *count = static_cast<int>(list.size());
  return true;
}

template <typename T>
MMpref_Err getValue(MMpref handle, const char* key, T* value) {
  const StorePointer store = storeOf(handle);
  if (!store) return MMPREF_FAILURE;
  MMpref_Err err;
  *value = store->get<T>(key, &err);
  return err;
}

template <typename T, typename Out, typename Convert>
MMpref_Err getList(MMpref handle, const char* group, char*** names, Out** values, int* count,
                   Convert convert) {
  *names = nullptr;
  *values = nullptr;
  *count = 0;
  const StorePointer store = storeOf(handle);
  if (!store) return MMPREF_FAILURE;
  std::map<std::string, MMPREF::ListValue<T>> list;
  const MMpref_Err err = store->get_list<T>(orEmpty(group), list);
  return handOut(list, names, values, count, convert) ? err : MMPREF_FAILURE;
}

template <typename T>
T same(const T& value) {
  return value;
}

}  // namespace

extern "C" {

MMpref_Err mmpref_new(MMpref* handle, MMPREF_PRODUCTS product) {
  try {
    const StorePointer store = boost::make_shared<MMPREF>(product, true);
    *handle = reinterpret_cast<MMpref>(store.get());
    handleTable()[*handle] = store;
    return MMPREF_SUCCESS;
  } catch (const std::exception& error) {
    qWarning() << "mmpref_new" << ": " << static_cast<int>(product) << " - " << error.what();
    *handle = 0;
    return MMPREF_FAILURE;
  }
}

MMpref_Err mmpref_delete(MMpref handle) {
  return handleTable().erase(handle) ? MMPREF_SUCCESS : MMPREF_FAILURE;
}

MMpref_Err mmpref_set_variant(MMpref handle, const char* key, QVariant value, const char* /*unused*/) {
  const StorePointer store = storeOf(handle);
  return store ? store->set(orEmpty(key), value, std::string()) : MMPREF_FAILURE;
}

MMpref_Err mmpref_set_int(MMpref handle, const char* key, int value) {
  return mmpref_set_variant(handle, key, QVariant(value), nullptr);
}

MMpref_Err mmpref_set_string(MMpref handle, const char* key, const char* value) {
  return mmpref_set_variant(handle, key, QVariant(QString::fromUtf8(orEmpty(value))), nullptr);
}

MMpref_Err mmpref_set_double(MMpref handle, const char* key, double value) {
  return mmpref_set_variant(handle, key, QVariant(value), nullptr);
}

MMpref_Err mmpref_set_bool(MMpref handle, const char* key, bool value) {
  return mmpref_set_variant(handle, key, QVariant(value), nullptr);
}

MMpref_Err mmpref_get_int(MMpref handle, const char* key, int* value) { return getValue(handle, key, value); }

MMpref_Err mmpref_get_double(MMpref handle, const char* key, double* value) {
  return getValue(handle, key, value);
}

MMpref_Err mmpref_get_bool(MMpref handle, const char* key, bool* value) { return getValue(handle, key, value); }

MMpref_Err mmpref_get_string(MMpref handle, const char* key, char** value) {
  QString text;
  const MMpref_Err err = getValue(handle, key, &text);
  *value = copyText(text.toStdString());
  return err;
}

MMPREF_TYPE mmpref_get_type(MMpref handle, const char* key) {
  const StorePointer store = storeOf(handle);
  return store ? store->getType(orEmpty(key)) : MMPREF_TYPE_NONE;
}

MMpref_Err mmpref_get_int_list(MMpref handle, const char* group, char*** names, int** values, int* count) {
  return getList<int>(handle, group, names, values, count, same<int>);
}

MMpref_Err mmpref_get_double_list(MMpref handle, const char* group, char*** names, double** values,
                                  int* count) {
  return getList<double>(handle, group, names, values, count, same<double>);
}

MMpref_Err mmpref_get_bool_list(MMpref handle, const char* group, char*** names, bool** values, int* count) {
  return getList<bool>(handle, group, names, values, count, same<bool>);
}

MMpref_Err mmpref_get_string_list(MMpref handle, const char* group, char*** names, char*** values,
                                  int* count) {
  return getList<QString>(handle, group, names, values, count, copyText);
}

MMpref_Err mmpref_get_subgroups(MMpref handle, const char* group, char*** names, int* count) {
  *names = nullptr;
  *count = 0;
  const StorePointer store = storeOf(handle);
  if (!store) return MMPREF_FAILURE;
  std::vector<std::string> groups;
  store->getSubgroups(groups, orEmpty(group));
  if (groups.empty()) return MMPREF_SUCCESS;
  if (!handOutNames(groups, [](const std::string& name) { return name; }, names)) return MMPREF_FAILURE;
  *count = static_cast<int>(groups.size());
  return MMPREF_SUCCESS;
}

MMpref_Err mmpref_remove(MMpref handle, const char* key, MMPREF_TYPE type) {
  const StorePointer store = storeOf(handle);
  return store ? store->removeKey(orEmpty(key), type) : MMPREF_FAILURE;
}

MMpref_Err mmpref_contains(MMpref handle, const char* key, MMPREF_TYPE type) {
  const StorePointer store = storeOf(handle);
  return store ? store->hasKey(orEmpty(key), type) : MMPREF_FAILURE;
}

MMpref_Err mmpref_clear(MMpref handle) {
  return onStore(handle, [&](MMPREF& store) { store.clearSettings(); });
}

MMpref_Err mmpref_sync(MMpref handle) {
  const StorePointer store = storeOf(handle);
  return store ? store->syncSettings() : MMPREF_FAILURE;
}

MMpref_Err mmpref_begin_group(MMpref handle, const char* group) {
  const StorePointer store = storeOf(handle);
  return store ? store->beginGroup(orEmpty(group)) : MMPREF_FAILURE;
}

MMpref_Err mmpref_end_group(MMpref handle) {
  return onStore(handle, [&](MMPREF& store) { store.endGroup(); });
}

char* mmpref_get_group(MMpref handle) {
  const StorePointer store = storeOf(handle);
  return store ? copyText(store->getGroup()) : nullptr;
}

MMpref_Err mmpref_begin_os_attribute(MMpref handle) {
  return mmpref_begin_os_attribute2(handle, MMPREF_PLATFORM_NONE);
}

MMpref_Err mmpref_begin_os_attribute2(MMpref handle, MMPREF_PLATFORM platform) {
  return onStore(handle, [&](MMPREF& store) { store.beginOsAttribute(platform); });
}

MMpref_Err mmpref_end_os_attribute(MMpref handle) {
  return onStore(handle, [&](MMPREF& store) { store.endOsAttribute(); });
}

char* mmpref_get_settings_file(MMpref handle) {
  const StorePointer store = storeOf(handle);
  if (!store) return nullptr;
  std::string file;
  store->getSettingsFile(file);
  return copyText(file);
}

MMPrefSource mmpref_get_key_source(MMpref handle, const char* key) {
  const StorePointer store = storeOf(handle);
  return store ? store->getKeySource(key) : MMPREF_SOURCE_NOT_FOUND;
}

}  // extern "C"
