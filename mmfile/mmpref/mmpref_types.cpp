// Texts of the preference enumerations and result codes.
#include "mmpref/mmpref_types.h"

#include <cstring>
#include <iterator>

namespace {

// Indexed by MMPREF_TYPE.
const char* const kTypeTexts[] = {"none", "int", "QString", "double", "bool"};

// Indexed by MMPREF_PLATFORM.
const char* const kPlatformWords[] = {"none", "windows", "linux", "darwin"};

}  // namespace

std::string format_error(int code) {
  switch (code) {
    case MMPREF_ACCESS_ERROR:
      return "Access error in using settings file. This might be due to permissions or a full disk.";
    case MMPREF_FORMAT_ERROR:
      return "Format error in using settings file. This might not be in proper .xml format.";
    case MMPREF_UNKNOWN_PRODUCT:
      return "The product is not recognized by the library.";
    case MMPREF_LOCK_FAILURE:
      return "Failure to set lock on given settings file.";
    default:
      return "";
  }
}

const char* mmpref_type_text(MMPREF_TYPE type) {
  return type >= 0 && type < static_cast<int>(std::size(kTypeTexts)) ? kTypeTexts[type] : kTypeTexts[0];
}

MMPREF_TYPE mmpref_type_from_text(const char* text) {
  for (int type = MMPREF_TYPE_INT; type < static_cast<int>(std::size(kTypeTexts)); ++type)
    if (std::strcmp(text, kTypeTexts[type]) == 0) return static_cast<MMPREF_TYPE>(type);
  return MMPREF_TYPE_NONE;
}

const char* mmpref_platform_word(MMPREF_PLATFORM platform) {
  return platform >= 0 && platform < static_cast<int>(std::size(kPlatformWords)) ? kPlatformWords[platform] : kPlatformWords[0];
}

MMPREF_PLATFORM mmpref_running_platform() {
#if defined(_WIN32)
  return MMPREF_PLATFORM_WINDOWS;
#elif defined(__APPLE__)
  return MMPREF_PLATFORM_DARWIN;
#else
  return MMPREF_PLATFORM_LINUX;
#endif
}
