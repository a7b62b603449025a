// A C++ program using the installed library: captured messages and a
// preference store (which brings QtCore in through the package).
#include <iostream>
#include <string>

#include "mmerr/capture.h"
#include "mmerr/mmerr.h"
#include "mmpref/mmpref.h"

int main() {
  int handle;
  if (!mmerr_new(&handle)) return 1;
  std::string details;
  {
    morvellanth::mmlibs::CaptureMMErr capture(handle);
    mmerr_throw(handle, MMERR_LEVEL_WARNING, "captured\n");
    details = capture.addMessagesAsDetails("operation failed");
  }
  if (details != "operation failed:\n WARNING captured\n") return 2;

  morvellanth::Preferences prefs(MMPREF_PANOPLY);
  prefs.set("consumer/count", 3);
  if (prefs.get<int>("consumer/count") != 3) return 3;
  std::cout << "cpp consumer ok\n";
  return 0;
}
