// MMPREF: one open preference store, the user's file of one product for the
// current release, read through the machine and installation files.
//
// Keys are "/"-separated paths below the current group; each component must be
// a valid XML name. Values are typed (int, double, bool, QString); a key may be
// limited to one platform. Changes stay in memory until syncSettings() or the
// destructor writes them under an exclusive lock between processes.
//
//   MMPREF store(MMPREF_PAVANE, true);   // throws std::runtime_error
//   store.set("panel/width", 640, "");
//   MMpref_Err err;
//   int width = store.get<int>("panel/width", &err);
#ifndef MMFILESHARED_MMPREF_MMPREF_STORE_H
#define MMFILESHARED_MMPREF_MMPREF_STORE_H

#include <QFile>
#include <QSettings>
#include <QString>
#include <QVariant>

#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "mmpref/mmpref_types.h"

class MMPREF {
 public:
  // The value type of get_list<T> results: std::string for QString.
  template <typename T>
  using ListValue = std::conditional_t<std::is_same_v<T, QString>, std::string, T>;

  // Opens the product's store (initialize_handle). Throws std::runtime_error
  // with the format_error text of the failing code.
  MMPREF(MMPREF_PRODUCTS product, bool load_previous_release);
  // Writes pending changes back; the last store alive also drops the shared
  // machine and installation stores, which the next open reads again.
  virtual ~MMPREF();
  MMPREF(const MMPREF&) = delete;
  MMPREF& operator=(const MMPREF&) = delete;

  // Opening. initialize_handle opens the fallback files (once per process, or
  // at every open when MORVELLANTH_MMPREF_TEST is set) and the user's file; a
  // missing user file is created empty, or, with load_previous_release, filled
  // from the newest past release that has keys. A corrupt user file is deleted.
  MMpref_Err initialize_handle(bool load_previous_release);
  // Creates `file` empty (and the current release's directory) unless it
  // exists; 0 when the file exists afterwards, else 1.
  static int createEmptyPreferenceFile(QFile& file);
  // Copies every entry of this product's file of `release`, when it exists and
  // reads cleanly, into the user settings.
  void loadFromRelease(const std::string& release);

  // Writing. set refuses invalid keys (10) and a value whose type differs
  // from the key's existing type anywhere in the chain (1), both with a
  // message on error handle -1. An empty comment keeps an earlier one.
  MMpref_Err set(const std::string& key, QVariant value, const std::string& comment);
  // Writes the user settings under the exclusive file lock: 1 without a store,
  // 9 when the lock fails, 6 or 7 for the file's status, else 0.
  MMpref_Err syncSettings();
  // Removes every key of the user settings (fallback files are never changed).
  void clearSettings();
  // Type 0 removes the name with everything below it; another type removes
  // the platform-suffixed or plain key holding that type. 0 when something was
  // removed, 3 when the key holds another type, 4 when it is absent.
  MMpref_Err removeKey(const std::string& key, MMPREF_TYPE type);

  // Reading, through the user file, then the machine, then the installation
  // file; in each the running platform's key before the plain one.
  // get<T> (int, double, bool, QString): the value, or T's zero value with 4
  // (absent) or 3 (other type, or text that does not convert).
  template <typename T>
  T get(const char* key, MMpref_Err* err) const;
  // As get<T>, but `value` is returned when nothing is found or converts, and
  // a value from a fallback file comes with code 2.
  template <typename T>
  T get_or_use_value(const char* key, T value, MMpref_Err* err) const;
  // Fills `out` with the keys below `group` (through the chain, subgroup paths
  // included, platform suffix removed) whose type is T. 4 when the group holds
  // no key at all, 10 for an invalid group name.
  template <typename T>
  MMpref_Err get_list(const std::string& group, std::map<std::string, ListValue<T>>& out);
  // The child groups of `group` (the current group when empty) in the user's
  // file.
  void getSubgroups(std::vector<std::string>& out, const std::string& group = std::string());
  // 0 when absent; 1 int, 2 QString, 3 double, 4 any other type text.
  MMPREF_TYPE getType(const std::string& key) const;
  // Whether the user's file holds the key (running platform's or plain).
  bool hasKey(const std::string& key) const;
  // In the user's file: 1 for type 0 (nothing searched), 4 absent, 0 when the
  // key holds `type`, 1 when it holds another.
  MMpref_Err hasKey(const std::string& key, MMPREF_TYPE type) const;
  // Which file of the chain holds the key.
  MMPrefSource getKeySource(const char* key) const;
  // Every key of the chain below the current group, platform suffix kept,
  // with its type; a key of the user's file hides the same key further down.
  void listKeys(std::map<std::string, MMPREF_TYPE>& out) const;
  // The path of the user's file.
  void getSettingsFile(std::string& out) const;

  // Groups and platforms. beginGroup refuses an invalid non-empty name with
  // 10 and leaves the group unchanged.
  MMpref_Err beginGroup(const std::string& group);
  void endGroup();
  std::string getGroup() const;
  // Limits keys written by set to `platform` (0: the running platform);
  // returns the platform in effect.
  MMPREF_PLATFORM beginOsAttribute(MMPREF_PLATFORM platform);
  void endOsAttribute();

  // 0 when every "/"-separated part of `key` is an XML name; otherwise 10,
  // after a level-4 message on error handle -1 naming the first bad part.
  static int validate_key(const QString& key);
  // Whether a stored value (text, as read from a file) converts to `type` the
  // way get<T> converts it.
  static bool valueConverts(const QVariant& value, MMPREF_TYPE type);

  // Convenience forms: the same codes as get<T> and get_or_use_value<T>.
  MMpref_Err getInt(const std::string& key, int* value);
  MMpref_Err getDouble(const std::string& key, double* value);
  MMpref_Err getBool(const std::string& key, bool* value);
  MMpref_Err getString(const std::string& key, std::string& value);  // UTF-8
  MMpref_Err getInt(const std::string& key, int* value, int fallback);
  MMpref_Err getDouble(const std::string& key, double* value, double fallback);
  MMpref_Err getBool(const std::string& key, bool* value, bool fallback);
  MMpref_Err getString(const std::string& key, std::string& value, const std::string& fallback);
  MMpref_Err get(const std::string& key, int& value);
  MMpref_Err get(const std::string& key, double& value);
  MMpref_Err get(const std::string& key, bool& value);
  MMpref_Err get(const std::string& key, std::string& value);
  MMpref_Err getIntList(const std::string& group, std::map<std::string, int>& out);
  MMpref_Err getDoubleList(const std::string& group, std::map<std::string, double>& out);
  MMpref_Err getBoolList(const std::string& group, std::map<std::string, bool>& out);
  MMpref_Err getStringList(const std::string& group, std::map<std::string, std::string>& out);
  // Removes the name whatever it holds (removeKey with type 0).
  MMpref_Err remove_key(const char* key);

 private:
  // Finds a key through the chain; fills `entry` with its attribute map.
  MMPrefSource lookup(const QString& key, QVariantMap* entry) const;
  // Finds the key (running platform's form first) in the user settings.
  bool userEntry(const QString& key, QVariantMap* entry) const;
  template <typename T>
  T read(const char* key, MMpref_Err* err, MMPrefSource* source) const;

  MMPREF_PRODUCTS product_;
  MMPREF_PLATFORM platform_;
  QSettings* settings_;
};

#endif  // MMFILESHARED_MMPREF_MMPREF_STORE_H
