// Deprecation reports: once per call site, only when the user asked for them.
#include <cstdarg>
#include <cstdlib>
#include <string>
#include <utility>

#include "absl/container/flat_hash_set.h"
#include "mmerr/mmerr.h"
#include "mmerr/mmerr_internal.h"

extern "C" int mmlog_deprecation_warning(const char* file, int line, const char* what,
                                         const char* format, ...) {
  // Read once: setting the variable later in the process changes nothing.
  static const bool deprecation_enabled = getenv("MORVELLANTH_DEPRECATION_WARNING") != nullptr;
  if (!deprecation_enabled) return 1;
  // A live MmerrSuppressDeprecation; the site is not recorded and may report later.
  if (get_handler_mmerr(0)->output_mode == MMERR_OUTPUT_NONE) return 1;

  // Keyed on the file argument's address: each call site passes its own literal.
  static absl::flat_hash_set<std::pair<const void*, int>> deprecation_message_ids;
  if (!deprecation_message_ids.insert({file, line}).second) return 1;

  std::string full_format = std::string("DEPRECATION for ") + what + " (" + file + ":" +
                            std::to_string(line) + "): " + format;
  va_list args;
  va_start(args, format);
  mmerr_vthrow(0, MMERR_LEVEL_WARNING, full_format.c_str(), args);
  va_end(args);
  return 1;
}
