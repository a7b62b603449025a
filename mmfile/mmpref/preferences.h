// morvellanth::Preferences: a product's preference store read with exceptions
// instead of result codes, for C++ programs.
//
//   morvellanth::Preferences prefs(MMPREF_PANOPLY);   // std::runtime_error
//   prefs.set("recent/count", 10);
//   int count = prefs.get<int>("recent/count");       // std::out_of_range if absent
#ifndef MMFILESHARED_MMPREF_PREFERENCES_H
#define MMFILESHARED_MMPREF_PREFERENCES_H

#include <QString>
#include <QVariant>

#include <stdexcept>
#include <string>
#include <type_traits>

#include "mmpref/mmpref_store.h"

namespace morvellanth {

class Preferences : public MMPREF {
 public:
  // Opens the product's store, filling a missing user file from the newest
  // past release that has keys; std::runtime_error when it cannot be opened.
  explicit Preferences(MMPREF_PRODUCTS product) : MMPREF(product, true) {}

  // Stores an int, bool, double, QString or text (kept as a QString)
  // with an empty comment; a refused key or type is reported on error handle
  // -1 and otherwise ignored.
  template <typename T>
  void set(const std::string& key, const T& value) {
    if constexpr (std::is_convertible_v<const T&, std::string>)
      MMPREF::set(key, QVariant(QString::fromStdString(value)), std::string());
    else
      MMPREF::set(key, QVariant::fromValue(value), std::string());
  }

  // The value through the fallback chain; std::out_of_range "No key: <key>"
  // when absent, T's zero value when the key holds another type.
  template <typename T>
  T get(const std::string& key) const {
    using Stored = std::conditional_t<std::is_same_v<T, std::string>, QString, T>;
    MMpref_Err err = MMPREF_SUCCESS;
    const Stored value = MMPREF::get<Stored>(key.c_str(), &err);
    if (err == MMPREF_NOT_FOUND) throw std::out_of_range("No key: " + key);
    if constexpr (std::is_same_v<T, std::string>)
      return value.toStdString();
    else
      return value;
  }

  // Whether the user's file holds the key.
  bool hasKey(const std::string& key) const { return MMPREF::hasKey(key); }
  // Removes the name whatever it holds, with every key below it.
  void removeKey(const std::string& key) { MMPREF::removeKey(key, MMPREF_TYPE_NONE); }
  // Removes every key of the user's file.
  void clear() { clearSettings(); }
};

}  // namespace morvellanth

#endif  // MMFILESHARED_MMPREF_PREFERENCES_H
