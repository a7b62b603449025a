// Opening and closing preference stores: the shared fallback stores, the
// user's file of the current release, its creation, its filling from a past
// release and the repair of a corrupt one.
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QWriteLocker>

#include <stdexcept>

#include "mmerr/mmerr.h"
#include "mmfile/mmfile.h"
#include "mmpref/mmpref_locations.h"
#include "mmpref/mmpref_protection.h"
#include "mmpref/mmpref_state_internal.h"
#include "mmpref/mmpref_store.h"
#include "mmpref/xml_settings_format.h"

namespace morvellanth::preferences::internal {

SharedPreferenceState& shared_state() {
  static SharedPreferenceState* const state = new SharedPreferenceState;
  return *state;
}

MMpref_Err settings_status_code(QSettings::Status status) {
  switch (status) {
    case QSettings::AccessError:
      return MMPREF_ACCESS_ERROR;
    case QSettings::FormatError:
      return MMPREF_FORMAT_ERROR;
    default:
      return MMPREF_SUCCESS;
  }
}

void release_active_handle() {
  SharedPreferenceState& state = shared_state();
  --state.nactivehandles;
  QWriteLocker guard(&state.mmpref_mutex);
  // Opens count themselves in under the same lock, so a zero seen here means
  // that no store can be reading the fallback stores.
  if (state.nactivehandles.load() != 0) return;
  delete state.first_level_settings;
  delete state.second_level_settings;
  state.first_level_settings = nullptr;
  state.second_level_settings = nullptr;
  for (QSettings* replaced : state.replaced_settings) delete replaced;
  state.replaced_settings.clear();
  state.mmpref_initialized = false;
}

namespace {

// Made when the library is loaded, together with the settings format.
SharedPreferenceState& loadTimeState = shared_state();

const QString kCurrentRelease = QStringLiteral(MMFILE_CURRENT_RELEASE);

// Opens one fallback file into `slot` when it exists; one that cannot be read
// is reported and leaves the level empty.
void scanFallback(QSettings*& slot, const QString& path, const char* level) {
  if (path.isEmpty() || !QFile::exists(path)) return;
  if (slot) shared_state().replaced_settings.push_back(slot);
  slot = new QSettings(path, getQSettingsFormat());
  if (slot->status() == QSettings::NoError) return;
  qWarning() << "scan_profile" << level << " setting(" << path << ") failed. "
             << format_error(settings_status_code(slot->status())).c_str();
  delete slot;
  slot = nullptr;
}

// Keeps the default error handle from printing for a scope: trying past
// releases may raise messages that mean nothing to the user.
class SilencedErrors {
 public:
  SilencedErrors() {
    if (!mmerr_print_state(-1, &printing_)) printing_ = 0;
    mmerr_suppress_print(-1);
  }
  ~SilencedErrors() {
    if (printing_) mmerr_restore_print(-1);
  }
  SilencedErrors(const SilencedErrors&) = delete;
  SilencedErrors& operator=(const SilencedErrors&) = delete;

 private:
  int printing_ = 0;
};

}  // namespace
}  // namespace morvellanth::preferences::internal

using namespace morvellanth::preferences::internal;

MMPREF::MMPREF(MMPREF_PRODUCTS product, bool load_previous_release)
    : product_(product), platform_(MMPREF_PLATFORM_NONE), settings_(nullptr) {
  const MMpref_Err code = initialize_handle(load_previous_release);
  if (code == MMPREF_SUCCESS) return;
  delete settings_;
  settings_ = nullptr;
  // A file that opened with an error was already counted as an open store.
  if (code == MMPREF_ACCESS_ERROR || code == MMPREF_FORMAT_ERROR) release_active_handle();
  throw std::runtime_error(format_error(code));
}

MMPREF::~MMPREF() {
  syncSettings();
  delete settings_;
  settings_ = nullptr;
  release_active_handle();
}

MMpref_Err MMPREF::initialize_handle(bool load_previous_release) {
  if (product_ < 0 || product_ >= mmpref_product_count()) return MMPREF_UNKNOWN_PRODUCT;

  SharedPreferenceState& state = shared_state();
  QWriteLocker exclusive(&state.mmpref_mutex);
  if (!state.mmpref_initialized || qEnvironmentVariableIsSet("MORVELLANTH_MMPREF_TEST")) {
    scanFallback(state.first_level_settings, get_machine_preferences_path(), ": Loading first level fallback ");
    scanFallback(state.second_level_settings, get_suite_preferences_path(), ": Loading second level fallback ");
    state.mmpref_initialized = true;
  }

  platform_ = MMPREF_PLATFORM_NONE;
  const QString file = get_mmpref_file(product_, kCurrentRelease);
  MMprefProtection reading(file, 0);
  if (const int code = reading.lock()) return static_cast<MMpref_Err>(code);

  delete settings_;
  settings_ = new QSettings(file, getQSettingsFormat());
  if (!QFile::exists(file)) {
    if (!load_previous_release) {
      QFile empty(file);
      if (createEmptyPreferenceFile(empty) != 0) return MMPREF_FAILURE;
    } else {
      // The file itself is made by the first write.
      SilencedErrors quiet;
      for (const std::string& release : mmfile_get_past_release_names()) {
        loadFromRelease(release);
        if (!settings_->allKeys().isEmpty()) break;
      }
    }
  }
  ++state.nactivehandles;

  if (settings_->status() == QSettings::NoError) return MMPREF_SUCCESS;
  qWarning() << "initialize_handle" << ": Loading setting(" << file << ") failed. "
             << format_error(settings_status_code(settings_->status())).c_str();
  if (settings_->status() == QSettings::FormatError) {
    // A corrupt file is deleted, once, by whichever process gets here first;
    // the others read it again under the lock and keep what the first made.
    MMprefProtection repairing(file + ".corrupt", 1);
    if (repairing.lock() == 0) {
      delete settings_;
      settings_ = new QSettings(file, getQSettingsFormat());
      if (settings_->status() == QSettings::FormatError) {
        delete settings_;
        QFile::remove(file);
        settings_ = new QSettings(file, getQSettingsFormat());
      }
      if (settings_->status() == QSettings::NoError) return MMPREF_SUCCESS;
    }
  }
  return settings_status_code(settings_->status());
}

int MMPREF::createEmptyPreferenceFile(QFile& file) {
  QDir().mkpath(QString::fromStdString(get_mmpref_directory(MMFILE_CURRENT_RELEASE)));
  // Another process may remove a corrupt file between the failed creation and
  // the check; then the file is made again.
  for (int attempt = 0; attempt < 3; ++attempt) {
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
      file.close();
      return 0;
    }
    if (file.exists()) return 0;
  }
  return 1;
}

void MMPREF::loadFromRelease(const std::string& release) {
  const QString path = get_mmpref_file(product_, QString::fromStdString(release));
  if (!QFile::exists(path)) return;
  const QSettings earlier(path, getQSettingsFormat());
  if (earlier.status() != QSettings::NoError) return;
  for (const QString& key : earlier.allKeys()) settings_->setValue(key, earlier.value(key));
}
