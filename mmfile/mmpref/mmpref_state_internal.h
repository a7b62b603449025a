// Process-wide state shared by every preference store of the process.
#ifndef MMFILESHARED_MMPREF_MMPREF_STATE_INTERNAL_H
#define MMFILESHARED_MMPREF_MMPREF_STATE_INTERNAL_H

#include <QReadWriteLock>
#include <QSettings>

#include <atomic>
#include <vector>

#include "mmpref/mmpref_types.h"

namespace morvellanth::preferences::internal {

// Made when the library is loaded and never destroyed. The fallback stores
// are replaced only under mmpref_mutex taken for writing (by an open) and
// dropped there by the last store's destructor; reads take no lock.
struct SharedPreferenceState {
  // Taken for writing while a store opens and while the last one tears the
  // fallback stores down; recursive.
  QReadWriteLock mmpref_mutex{QReadWriteLock::Recursive};
  // The machine file (first level of fallback), or null.
  QSettings* first_level_settings = nullptr;
  // The installation file (second level of fallback), or null.
  QSettings* second_level_settings = nullptr;
  // Fallback stores replaced by a rescan: a store of another thread may still
  // be reading one, so they are freed only with the current ones.
  std::vector<QSettings*> replaced_settings;
  // Set once the fallback files have been scanned; cleared by the teardown.
  bool mmpref_initialized = false;
  // Stores opened past the lock and the creation of the user's file and not
  // yet destroyed.
  std::atomic<int> nactivehandles{0};
  // Set for good once a file read in this process carried an "os" attribute
  // or a store wrote a platform key. Keys get a platform suffix only these two
  // ways, so while it is clear lookups skip the probe for one.
  std::atomic<bool> platform_keys_seen{false};
};

SharedPreferenceState& shared_state();

inline void note_platform_keys() { shared_state().platform_keys_seen.store(true, std::memory_order_relaxed); }
inline bool platform_keys_seen() { return shared_state().platform_keys_seen.load(std::memory_order_relaxed); }

// Counts one store out; the last one drops the fallback stores.
void release_active_handle();

// QSettings status as a code: access error 6, format error 7, otherwise 0.
MMpref_Err settings_status_code(QSettings::Status status);

}  // namespace morvellanth::preferences::internal

#endif  // MMFILESHARED_MMPREF_MMPREF_STATE_INTERNAL_H
