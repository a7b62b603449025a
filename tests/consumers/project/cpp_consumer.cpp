// A C++ program using the installed library: captured messages.
#include <iostream>
#include <string>

#include "mmerr/capture.h"
#include "mmerr/mmerr.h"

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
  std::cout << "cpp consumer ok\n";
  return 0;
}
