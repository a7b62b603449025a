// Value types shared by every preference interface: products that own a
// preference file, value types, platforms, where a key was found, result
// codes, and the handle that names an open store. The enumerations are int
// wide so that any number a caller passes is a value that can be refused.
#ifndef MMFILESHARED_MMPREF_MMPREF_TYPES_H
#define MMFILESHARED_MMPREF_MMPREF_TYPES_H

#include <cstdint>
#include <string>

// The products that own a preference file (base names in mmpref_locations.h).
enum MMPREF_PRODUCTS : int {
  MMPREF_PAVANE = 0,
  MMPREF_HARROWMERE = 1,
  MMPREF_ORBELLE = 2,
  MMPREF_YARL = 3,
  MMPREF_RUBATO = 4,
  MMPREF_RAVINE = 5,
  MMPREF_WICKE = 6,
  MMPREF_TESSELLANT = 7,
  MMPREF_PANOPLY = 8,
  MMPREF_FJORD = 9,
  MMPREF_QVX = 10,
  MMPREF_ORVIK = 11,
  MMPREF_LUMENTA = 12,
  MMPREF_SCRIPTS = 13,
  MMPREF_SHARED = 14,
  MMPREF_TIDEMARK = 15
};

// Value types; a key's type is kept as the text of mmpref_type_text.
enum MMPREF_TYPE : int {
  MMPREF_TYPE_NONE = 0,  // "none": the key is absent
  MMPREF_TYPE_INT = 1,   // "int"
  MMPREF_TYPE_STRING = 2,  // "QString"
  MMPREF_TYPE_DOUBLE = 3,  // "double"
  MMPREF_TYPE_BOOL = 4   // "bool"
};

// Platforms a key may be limited to; keys carry ":os=" and the word.
enum MMPREF_PLATFORM : int {
  MMPREF_PLATFORM_NONE = 0,     // "none"
  MMPREF_PLATFORM_WINDOWS = 1,  // "windows"
  MMPREF_PLATFORM_LINUX = 2,    // "linux"
  MMPREF_PLATFORM_DARWIN = 3    // "darwin"
};

// Where a key was found through the fallback chain.
enum MMPrefSource : int {
  MMPREF_SOURCE_USER = 0,          // the user's file of the product
  MMPREF_SOURCE_MACHINE = 1,       // the machine file
  MMPREF_SOURCE_INSTALLATION = 2,  // the installation (site) file
  MMPREF_SOURCE_NOT_FOUND = 3
};

// Result codes of every preference operation; code 5 is unused.
enum MMpref_Err : int {
  MMPREF_SUCCESS = 0,
  MMPREF_FAILURE = 1,         // no store, a type conflict on set, no empty file made
  MMPREF_FALLBACK_VALUE = 2,  // value taken from the machine or installation file
  MMPREF_WRONG_TYPE = 3,      // stored type differs, or the text does not convert
  MMPREF_NOT_FOUND = 4,       // key absent, or a list is empty
  MMPREF_ACCESS_ERROR = 6,
  MMPREF_FORMAT_ERROR = 7,
  MMPREF_UNKNOWN_PRODUCT = 8,
  MMPREF_LOCK_FAILURE = 9,
  MMPREF_INVALID_KEY = 10
};

// A store handle: the address of the store, 0 is never valid.
typedef std::uintptr_t MMpref;

// The key of the programs' temporary-directory preference.
inline constexpr char MMPREF_TMPDIR_KEY[] = "tmpdir";

// The text of a result code; empty for codes without one (0 to 5, 10).
std::string format_error(int code);

// The type text kept in a key's "dt" attribute: "none", "int", "QString",
// "double", "bool"; "none" for values outside the enumeration.
const char* mmpref_type_text(MMPREF_TYPE type);

// The type whose text is exactly `text`; 0 (none) for any other text.
MMPREF_TYPE mmpref_type_from_text(const char* text);

// The platform word: "none", "windows", "linux", "darwin"; "none" for values
// outside the enumeration.
const char* mmpref_platform_word(MMPREF_PLATFORM platform);

// The platform this library was built for ("linux" here).
MMPREF_PLATFORM mmpref_running_platform();

#endif  // MMFILESHARED_MMPREF_MMPREF_TYPES_H
