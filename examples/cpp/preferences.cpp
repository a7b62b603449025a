// Preferences and captured messages from C++.
//
// Opens the Panoply preferences through morvellanth::Preferences, writes and
// reads typed keys, shows that a refused key's message can be captured and
// attached to the program's own error, and lists where values come from.
#include <iostream>
#include <stdexcept>
#include <string>

#include "mmerr/capture.h"
#include "mmpref/mmpref.h"

int main() {
  morvellanth::Preferences prefs(MMPREF_PANOPLY);  // throws std::runtime_error
  prefs.set("recent/count", 10);
  prefs.set("recent/last", std::string("benzene.mae"));
  std::cout << "recent/count = " << prefs.get<int>("recent/count") << "\n"
            << "recent/last  = " << prefs.get<std::string>("recent/last") << "\n";

  try {
    prefs.get<int>("never/set");
  } catch (const std::out_of_range& missing) {
    std::cout << "reading a missing key throws: " << missing.what() << "\n";
  }

  // The store reports a refused key on error handle -1; capture it instead of
  // letting it reach standard error, and use it as the details of an error.
  {
    morvellanth::mmlibs::CaptureMMErr capture(-1);
    if (prefs.MMPREF::set("2nd try", QVariant(1), "") != MMPREF_SUCCESS)
      std::cout << capture.addMessagesAsDetails("could not store '2nd try'") << "\n";
  }

  std::string file;
  prefs.getSettingsFile(file);
  std::cout << "source of recent/count: "
            << mmpref_source_to_string(prefs.getKeySource("recent/count")) << " (" << file << ")\n";
  return prefs.syncSettings() == MMPREF_SUCCESS ? 0 : 1;
}
