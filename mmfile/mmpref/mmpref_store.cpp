// Operations of an open preference store: typed keys, the lookup chain
// through the fallback files, groups, platforms, removal and writing back.
#include "mmpref/mmpref_store.h"

#include <QStringList>
#include <QVariantMap>

#include <libxml/tree.h>

#include <set>

#include "mmerr/mmerr.h"
#include "mmpref/mmpref_protection.h"
#include "mmpref/mmpref_state_internal.h"

using namespace morvellanth::preferences::internal;

namespace {

const QString kTypeMember = QStringLiteral("dt");
const QString kValueMember = QStringLiteral("value");
const QString kCommentMember = QStringLiteral("comment");

// The suffix that limits a key to a platform: ":os=" and its word.
QString platformSuffix(MMPREF_PLATFORM platform) {
  return QStringLiteral(":os=") + QLatin1String(mmpref_platform_word(platform));
}

// The suffix looked for first by every read and removal.
const QString& runningSuffix() {
  static const QString suffix = platformSuffix(mmpref_running_platform());
  return suffix;
}

// The stored forms of a key, in lookup order: the running platform's, when
// any store may hold one, then the plain key.
struct LookupForms {
  QString forms[2];
  int count;
  const QString* begin() const { return forms; }
  const QString* end() const { return forms + count; }
};

LookupForms lookupForms(const QString& key) {
  if (!platform_keys_seen()) return {{key, QString()}, 1};
  return {{key + runningSuffix(), key}, 2};
}

MMPREF_TYPE typeOf(const QVariantMap& entry) {
  const QString text = entry.value(kTypeMember).toString();
  for (MMPREF_TYPE type : {MMPREF_TYPE_INT, MMPREF_TYPE_STRING, MMPREF_TYPE_DOUBLE})
    if (text == QLatin1String(mmpref_type_text(type))) return type;
  // Any other or a missing type text reads as bool.
  return MMPREF_TYPE_BOOL;
}

// How each value type is named in "dt" and converted from a stored value.
template <typename T>
struct ValueType;

template <>
struct ValueType<int> {
  static constexpr MMPREF_TYPE type = MMPREF_TYPE_INT;
  static int convert(const QVariant& value, bool* ok) { return value.toInt(ok); }
};

template <>
struct ValueType<double> {
  static constexpr MMPREF_TYPE type = MMPREF_TYPE_DOUBLE;
  static double convert(const QVariant& value, bool* ok) { return value.toDouble(ok); }
};

template <>
struct ValueType<bool> {
  static constexpr MMPREF_TYPE type = MMPREF_TYPE_BOOL;
  static bool convert(const QVariant& value, bool* ok) {
    QVariant converted = value;
    *ok = converted.convert(QMetaType::fromType<bool>());
    return *ok && converted.toBool();
  }
};

template <>
struct ValueType<QString> {
  static constexpr MMPREF_TYPE type = MMPREF_TYPE_STRING;
  static QString convert(const QVariant& value, bool* ok) {
    *ok = value.canConvert<QString>();
    return value.toString();
  }
};

template <typename T>
MMPREF::ListValue<T> listValue(const T& value) {
  if constexpr (std::is_same_v<T, QString>)
    return value.toStdString();
  else
    return value;
}

// The fallback stores in chain order, with the source each one stands for.
struct FallbackLevel {
  QSettings* settings;
  MMPrefSource source;
};

struct FallbackLevels {
  FallbackLevel levels[2];
  int count = 0;
  const FallbackLevel* begin() const { return levels; }
  const FallbackLevel* end() const { return levels + count; }
};

FallbackLevels fallbackLevels() {
  const SharedPreferenceState& state = shared_state();
  FallbackLevels chain;
  if (state.first_level_settings) chain.levels[chain.count++] = {state.first_level_settings, MMPREF_SOURCE_MACHINE};
  if (state.second_level_settings)
    chain.levels[chain.count++] = {state.second_level_settings, MMPREF_SOURCE_INSTALLATION};
  return chain;
}

// The keys below `group` (relative to the store's current group). The store's
// group is left alone: the fallback stores are shared by every store.
QStringList keysBelow(const QSettings& settings, const QString& group) {
  const QStringList all = settings.allKeys();
  if (group.isEmpty()) return all;
  const QString prefix = group + u'/';
  QStringList below;
  for (const QString& key : all)
    if (key.startsWith(prefix)) below.append(key.mid(prefix.size()));
  return below;
}

}  // namespace

bool MMPREF::valueConverts(const QVariant& value, MMPREF_TYPE type) {
  bool ok = false;
  switch (type) {
    case MMPREF_TYPE_INT: ValueType<int>::convert(value, &ok); break;
    case MMPREF_TYPE_DOUBLE: ValueType<double>::convert(value, &ok); break;
    case MMPREF_TYPE_BOOL: ValueType<bool>::convert(value, &ok); break;
    case MMPREF_TYPE_STRING: ValueType<QString>::convert(value, &ok); break;
    default: break;
  }
  return ok;
}

int MMPREF::validate_key(const QString& key) {
  for (const QString& part : key.split(u'/')) {
    const QByteArray name = part.toUtf8();
    if (xmlValidateName(reinterpret_cast<const xmlChar*>(name.constData()), 0) != 0) {
      mmerr_throw(-1, MMERR_LEVEL_WARNING,
                  "%s: Invalid character in the mmpref key '%s'. See w3.org for valid xml element tag rules.",
                  "validate_key", name.constData());
      return MMPREF_INVALID_KEY;
    }
  }
  return MMPREF_SUCCESS;
}

bool MMPREF::userEntry(const QString& key, QVariantMap* entry) const {
  if (!settings_) return false;
  for (const QString& candidate : lookupForms(key)) {
    const QVariant value = settings_->value(candidate);
    if (!value.isValid()) continue;
    if (entry) *entry = value.toMap();
    return true;
  }
  return false;
}

MMPrefSource MMPREF::lookup(const QString& key, QVariantMap* entry) const {
  if (userEntry(key, entry)) return MMPREF_SOURCE_USER;
  // The fallback stores stay at the root: the current group goes in front.
  const QString group = settings_ ? settings_->group() : QString();
  const QString full = group.isEmpty() ? key : group + u'/' + key;
  for (const FallbackLevel& level : fallbackLevels()) {
    for (const QString& candidate : lookupForms(full)) {
      const QVariant value = level.settings->value(candidate);
      if (!value.isValid()) continue;
      *entry = value.toMap();
      return level.source;
    }
  }
  return MMPREF_SOURCE_NOT_FOUND;
}

template <typename T>
T MMPREF::read(const char* key, MMpref_Err* err, MMPrefSource* source) const {
  *err = MMPREF_SUCCESS;
  QVariantMap entry;
  *source = lookup(QString::fromUtf8(key ? key : ""), &entry);
  if (*source == MMPREF_SOURCE_NOT_FOUND) {
    *err = MMPREF_NOT_FOUND;
    return T();
  }
  if (entry.value(kTypeMember).toString() != QLatin1String(mmpref_type_text(ValueType<T>::type))) {
    *err = MMPREF_WRONG_TYPE;
    return T();
  }
  bool converted = false;
  const T value = ValueType<T>::convert(entry.value(kValueMember), &converted);
  if (!converted) {
    *err = MMPREF_WRONG_TYPE;
    return T();
  }
  return value;
}

template <typename T>
T MMPREF::get(const char* key, MMpref_Err* err) const {
  MMpref_Err ignored;
  MMPrefSource source;
  return read<T>(key, err ? err : &ignored, &source);
}

template <typename T>
T MMPREF::get_or_use_value(const char* key, T value, MMpref_Err* err) const {
  MMpref_Err ignored;
  if (!err) err = &ignored;
  MMPrefSource source;
  const T found = read<T>(key, err, &source);
  if (*err != MMPREF_SUCCESS) return value;
  if (source != MMPREF_SOURCE_USER) *err = MMPREF_FALLBACK_VALUE;
  return found;
}

template <typename T>
MMpref_Err MMPREF::get_list(const std::string& group, std::map<std::string, ListValue<T>>& out) {
  if (!settings_) return MMPREF_FAILURE;
  if (const MMpref_Err code = beginGroup(group)) return code;
  QStringList keys = settings_->allKeys();
  const QString current = settings_->group();
  for (const FallbackLevel& level : fallbackLevels()) keys += keysBelow(*level.settings, current);
  if (keys.isEmpty()) {
    endGroup();
    return MMPREF_NOT_FOUND;
  }
  std::set<QString> names;
  for (const QString& key : keys) names.insert(key.section(u':', 0, 0));
  // Each name is read through the chain; only a value of type T comes out.
  for (const QString& name : names) {
    const QByteArray utf8 = name.toUtf8();
    MMpref_Err code;
    const T value = get<T>(utf8.constData(), &code);
    if (code == MMPREF_SUCCESS) out[utf8.toStdString()] = listValue(value);
  }
  endGroup();
  return MMPREF_SUCCESS;
}

MMPREF_TYPE MMPREF::getType(const std::string& key) const {
  QVariantMap entry;
  if (lookup(QString::fromStdString(key), &entry) == MMPREF_SOURCE_NOT_FOUND) return MMPREF_TYPE_NONE;
  return typeOf(entry);
}

MMPrefSource MMPREF::getKeySource(const char* key) const {
  QVariantMap entry;
  return lookup(QString::fromUtf8(key ? key : ""), &entry);
}

void MMPREF::listKeys(std::map<std::string, MMPREF_TYPE>& out) const {
  if (!settings_) return;
  for (const QString& key : settings_->allKeys())
    out.emplace(key.toStdString(), typeOf(settings_->value(key).toMap()));
  // The fallback stores stay at the root: their keys are read below the group.
  const QString group = settings_->group();
  const QString prefix = group.isEmpty() ? QString() : group + u'/';
  for (const FallbackLevel& level : fallbackLevels()) {
    for (const QString& key : keysBelow(*level.settings, group))
      out.emplace(key.toStdString(), typeOf(level.settings->value(prefix + key).toMap()));
  }
}

bool MMPREF::hasKey(const std::string& key) const {
  return userEntry(QString::fromStdString(key), nullptr);
}

MMpref_Err MMPREF::hasKey(const std::string& key, MMPREF_TYPE type) const {
  if (type == MMPREF_TYPE_NONE) return MMPREF_FAILURE;
  QVariantMap entry;
  if (!userEntry(QString::fromStdString(key), &entry)) return MMPREF_NOT_FOUND;
  return entry.value(kTypeMember).toString() == QLatin1String(mmpref_type_text(type)) ? MMPREF_SUCCESS
                                                                                      : MMPREF_FAILURE;
}

void MMPREF::getSubgroups(std::vector<std::string>& out, const std::string& group) {
  if (!settings_) return;
  settings_->beginGroup(QString::fromStdString(group));
  for (const QString& child : settings_->childGroups()) out.push_back(child.toStdString());
  settings_->endGroup();
}

void MMPREF::getSettingsFile(std::string& out) const {
  out = settings_ ? settings_->fileName().toStdString() : std::string();
}

MMpref_Err MMPREF::set(const std::string& key, QVariant value, const std::string& comment) {
  if (!settings_) return MMPREF_FAILURE;
  const QString name = QString::fromStdString(key);
  if (validate_key(name) != MMPREF_SUCCESS) return MMPREF_INVALID_KEY;

  const char* type = value.typeName() ? value.typeName() : "";
  const MMPREF_TYPE existing = getType(key);
  if (existing != MMPREF_TYPE_NONE && qstrcmp(mmpref_type_text(existing), type) != 0) {
    mmerr_throw(-1, MMERR_LEVEL_WARNING,
                "%s: Incorrect value of type '%s' is being set for existing '%s' type key('%s')\n", "set", type,
                mmpref_type_text(existing), key.c_str());
    return MMPREF_FAILURE;
  }

  if (platform_ != MMPREF_PLATFORM_NONE) note_platform_keys();
  const QString stored = platform_ == MMPREF_PLATFORM_NONE ? name : name + platformSuffix(platform_);
  QVariantMap entry = settings_->value(stored).toMap();
  entry.insert(kTypeMember, QString::fromLatin1(type));
  entry.insert(kValueMember, value);
  if (!comment.empty()) entry.insert(kCommentMember, QString::fromStdString(comment));
  settings_->setValue(stored, entry);
  return MMPREF_SUCCESS;
}

MMpref_Err MMPREF::syncSettings() {
  if (!settings_) return MMPREF_FAILURE;
  MMprefProtection writing(settings_->fileName(), 1);
  if (const int code = writing.lock()) return static_cast<MMpref_Err>(code);
  settings_->sync();
  return settings_status_code(settings_->status());
}

void MMPREF::clearSettings() {
  if (settings_) settings_->clear();
}

MMpref_Err MMPREF::removeKey(const std::string& key, MMPREF_TYPE type) {
  if (!settings_) return MMPREF_FAILURE;
  const QString name = QString::fromStdString(key);
  // To QSettings an empty name means the whole current group.
  if (name.isEmpty()) return MMPREF_NOT_FOUND;

  if (type == MMPREF_TYPE_NONE) {
    const bool present = settings_->contains(name) || !keysBelow(*settings_, name).isEmpty();
    settings_->remove(name);
    return present ? MMPREF_SUCCESS : MMPREF_NOT_FOUND;
  }
  bool present = false;
  for (const QString& candidate : lookupForms(name)) {
    const QVariant value = settings_->value(candidate);
    if (!value.isValid()) continue;
    present = true;
    if (value.toMap().value(kTypeMember).toString() == QLatin1String(mmpref_type_text(type))) {
      settings_->remove(candidate);
      return MMPREF_SUCCESS;
    }
  }
  return present ? MMPREF_WRONG_TYPE : MMPREF_NOT_FOUND;
}

MMpref_Err MMPREF::beginGroup(const std::string& group) {
  const QString name = QString::fromStdString(group);
  if (!name.isEmpty() && validate_key(name) != MMPREF_SUCCESS) return MMPREF_INVALID_KEY;
  if (settings_) settings_->beginGroup(name);
  return MMPREF_SUCCESS;
}

void MMPREF::endGroup() {
  if (settings_) settings_->endGroup();
}

std::string MMPREF::getGroup() const { return settings_ ? settings_->group().toStdString() : std::string(); }

MMPREF_PLATFORM MMPREF::beginOsAttribute(MMPREF_PLATFORM platform) {
  const bool known = platform > MMPREF_PLATFORM_NONE && platform <= MMPREF_PLATFORM_DARWIN;
  platform_ = known ? platform : mmpref_running_platform();
  return platform_;
}

void MMPREF::endOsAttribute() { platform_ = MMPREF_PLATFORM_NONE; }

// Convenience forms.

MMpref_Err MMPREF::getInt(const std::string& key, int* value) { return get(key, *value); }
MMpref_Err MMPREF::getDouble(const std::string& key, double* value) { return get(key, *value); }
MMpref_Err MMPREF::getBool(const std::string& key, bool* value) { return get(key, *value); }
MMpref_Err MMPREF::getString(const std::string& key, std::string& value) { return get(key, value); }

MMpref_Err MMPREF::getInt(const std::string& key, int* value, int fallback) {
  MMpref_Err err;
  *value = get_or_use_value<int>(key.c_str(), fallback, &err);
  return err;
}

MMpref_Err MMPREF::getDouble(const std::string& key, double* value, double fallback) {
  MMpref_Err err;
  *value = get_or_use_value<double>(key.c_str(), fallback, &err);
  return err;
}

MMpref_Err MMPREF::getBool(const std::string& key, bool* value, bool fallback) {
  MMpref_Err err;
  *value = get_or_use_value<bool>(key.c_str(), fallback, &err);
  return err;
}

MMpref_Err MMPREF::getString(const std::string& key, std::string& value, const std::string& fallback) {
  MMpref_Err err;
  value = get_or_use_value<QString>(key.c_str(), QString::fromStdString(fallback), &err).toStdString();
  return err;
}

MMpref_Err MMPREF::get(const std::string& key, int& value) {
  MMpref_Err err;
  value = get<int>(key.c_str(), &err);
  return err;
}

MMpref_Err MMPREF::get(const std::string& key, double& value) {
  MMpref_Err err;
  value = get<double>(key.c_str(), &err);
  return err;
}

MMpref_Err MMPREF::get(const std::string& key, bool& value) {
  MMpref_Err err;
  value = get<bool>(key.c_str(), &err);
  return err;
}

MMpref_Err MMPREF::get(const std::string& key, std::string& value) {
  MMpref_Err err;
  value = get<QString>(key.c_str(), &err).toStdString();
  return err;
}

MMpref_Err MMPREF::getIntList(const std::string& group, std::map<std::string, int>& out) {
  return get_list<int>(group, out);
}
MMpref_Err MMPREF::getDoubleList(const std::string& group, std::map<std::string, double>& out) {
  return get_list<double>(group, out);
}
MMpref_Err MMPREF::getBoolList(const std::string& group, std::map<std::string, bool>& out) {
  return get_list<bool>(group, out);
}
MMpref_Err MMPREF::getStringList(const std::string& group, std::map<std::string, std::string>& out) {
  return get_list<QString>(group, out);
}

MMpref_Err MMPREF::remove_key(const char* key) { return removeKey(key ? key : "", MMPREF_TYPE_NONE); }

// The value types offered by the templates.
template int MMPREF::get<int>(const char*, MMpref_Err*) const;
template double MMPREF::get<double>(const char*, MMpref_Err*) const;
template bool MMPREF::get<bool>(const char*, MMpref_Err*) const;
template QString MMPREF::get<QString>(const char*, MMpref_Err*) const;
template int MMPREF::get_or_use_value<int>(const char*, int, MMpref_Err*) const;
template double MMPREF::get_or_use_value<double>(const char*, double, MMpref_Err*) const;
template bool MMPREF::get_or_use_value<bool>(const char*, bool, MMpref_Err*) const;
template QString MMPREF::get_or_use_value<QString>(const char*, QString, MMpref_Err*) const;
template MMpref_Err MMPREF::get_list<int>(const std::string&, std::map<std::string, int>&);
template MMpref_Err MMPREF::get_list<double>(const std::string&, std::map<std::string, double>&);
template MMpref_Err MMPREF::get_list<bool>(const std::string&, std::map<std::string, bool>&);
template MMpref_Err MMPREF::get_list<QString>(const std::string&, std::map<std::string, std::string>&);
