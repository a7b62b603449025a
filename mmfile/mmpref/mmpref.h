// mmpref: typed, grouped, per-platform preferences of the suite's products,
// kept in one XML file per user, product and release, read through a machine
// file and an installation file, written under locks between processes.
//
// Programs name an open store by a handle; strings handed out are malloc'd
// copies the caller frees, and every function returns an MMpref_Err code
// (1 for a handle that names no store).
//
//   MMpref prefs;
//   if (mmpref_new(&prefs, MMPREF_PAVANE) == 0) {
//     int width = 0;
//     mmpref_get_int(prefs, "panel/width", &width);  // 0, or 2 from a fallback file
//     mmpref_set_int(prefs, "panel/width", 800);
//     mmpref_delete(prefs);                           // writes the file back
//   }
#ifndef MMFILESHARED_MMPREF_MMPREF_H
#define MMFILESHARED_MMPREF_MMPREF_H

#include <QVariant>

#include "mmpref/mmpref_locations.h"
#include "mmpref/mmpref_store.h"
#include "mmpref/mmpref_types.h"
#include "mmpref/preferences.h"
#include "mmpref/xml_settings_format.h"

extern "C" {

// Opens the product's store, filling a missing user file from the newest past
// release that has keys. 0 and the handle; 1 and handle 0 on failure (logged).
MMpref_Err mmpref_new(MMpref* handle, MMPREF_PRODUCTS product);
// Forgets the handle; the store is written back and destroyed once no call
// still uses it.
MMpref_Err mmpref_delete(MMpref handle);

// Store a typed value under `key` (codes of MMPREF::set: 10 invalid key, 1 a
// key of another type).
MMpref_Err mmpref_set_int(MMpref handle, const char* key, int value);
MMpref_Err mmpref_set_string(MMpref handle, const char* key, const char* value);
MMpref_Err mmpref_set_double(MMpref handle, const char* key, double value);
MMpref_Err mmpref_set_bool(MMpref handle, const char* key, bool value);
// Stores any QVariant with an empty comment; `unused` is ignored.
MMpref_Err mmpref_set_variant(MMpref handle, const char* key, QVariant value, const char* unused);

// Read a typed value into *value (its zero value on failure): 0, 3 other type,
// 4 absent. *value of mmpref_get_string is a malloc'd copy, also on failure.
MMpref_Err mmpref_get_int(MMpref handle, const char* key, int* value);
MMpref_Err mmpref_get_double(MMpref handle, const char* key, double* value);
MMpref_Err mmpref_get_bool(MMpref handle, const char* key, bool* value);
MMpref_Err mmpref_get_string(MMpref handle, const char* key, char** value);
// The key's type through the fallback chain; 0 when absent or no store.
MMPREF_TYPE mmpref_get_type(MMpref handle, const char* key);

// The keys of one type below `group`: *names and *values are malloc'd arrays
// of *count entries in name order (names and string values malloc'd too).
MMpref_Err mmpref_get_int_list(MMpref handle, const char* group, char*** names, int** values, int* count);
MMpref_Err mmpref_get_double_list(MMpref handle, const char* group, char*** names, double** values,
                                  int* count);
MMpref_Err mmpref_get_bool_list(MMpref handle, const char* group, char*** names, bool** values, int* count);
MMpref_Err mmpref_get_string_list(MMpref handle, const char* group, char*** names, char*** values,
                                  int* count);
// The child groups of `group` (null or "" for the current group), as above.
MMpref_Err mmpref_get_subgroups(MMpref handle, const char* group, char*** names, int* count);

// Removes a key of that type (0: the name and everything below it).
MMpref_Err mmpref_remove(MMpref handle, const char* key, MMPREF_TYPE type);
// 0 the user's file holds the key with that type, 1 another type (or type 0),
// 4 absent.
MMpref_Err mmpref_contains(MMpref handle, const char* key, MMPREF_TYPE type);
// Removes every key of the user's file.
MMpref_Err mmpref_clear(MMpref handle);
// Writes the user's file under the exclusive lock.
MMpref_Err mmpref_sync(MMpref handle);

// Groups: keys are read and written below the current group.
MMpref_Err mmpref_begin_group(MMpref handle, const char* group);
MMpref_Err mmpref_end_group(MMpref handle);
// The current group as a malloc'd copy; null for an unknown handle.
char* mmpref_get_group(MMpref handle);

// Limit keys written from now on to the running platform, or to `platform`
// (0: the running one), until mmpref_end_os_attribute.
MMpref_Err mmpref_begin_os_attribute(MMpref handle);
MMpref_Err mmpref_begin_os_attribute2(MMpref handle, MMPREF_PLATFORM platform);
MMpref_Err mmpref_end_os_attribute(MMpref handle);

// The path of the user's file as a malloc'd copy; null for an unknown handle.
char* mmpref_get_settings_file(MMpref handle);
// Which file of the chain holds the key (3, not found, for an unknown handle);
// the machine and installation paths are those of mmpref_locations.h.
MMPrefSource mmpref_get_key_source(MMpref handle, const char* key);

}  // extern "C"

#endif  // MMFILESHARED_MMPREF_MMPREF_H
