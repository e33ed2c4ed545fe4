// list-library FOLDER: lists the presets of a library kind by kind, in the order in which the
// instrument shows them: factory presets (ROM) first, then the user's own.
#include <initializer_list>
#include <iostream>

#include "OpenLibrary.h"

int main(int argc, char** argv) {
  using namespace cairnset;
  if (argc != 2) {
    std::cerr << "usage: list-library FOLDER\n";
    return 2;
  }
  PresetManager library(nullptr);
  if (!openLibrary(argv[1], library)) return 1;

  const std::initializer_list<const PresetList*> kinds = {
      &library.velocityMaps(), &library.effects(), &library.programs(), &library.sessions()};
  for (const PresetList* kind : kinds) {
    for (const Preset* preset : kind->presets()) {
      preset->printTreeItemInfo(std::cout, 0);
      // A file that starts like a preset but cannot be read is still in the library.
      if (preset->status() != noErr) std::cout << " cannot be read: " << preset->status();
      std::cout << '\n';
    }
  }
  return std::cout.flush() ? 0 : 1;
}
