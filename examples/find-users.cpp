// find-users FOLDER NAME: lists the presets of a library that use the preset whose file is called
// NAME.
#include <iostream>
#include <string>

#include "OpenLibrary.h"
#include "host/text/Names.h"
#include "host/text/PascalStrings.h"
#include "presets/PresetReferences.h"

int main(int argc, char** argv) {
  using namespace cairnset;
  if (argc != 3) {
    std::cerr << "usage: find-users FOLDER NAME\n";
    return 2;
  }
  PresetManager library(nullptr);
  if (!openLibrary(argv[1], library)) return 1;

  // UTF-8 on the volume and the terminal; Mac Roman in memory and inside the files.
  const std::string name = heldNameFromVolumeName(argv[2]);
  const struct {
    const PresetList& users;
    const PresetReference& reference;
    const char* use;
  } uses[] = {
      {library.programs(), kProgramEffectsReference, " as its effects preset"},
      {library.sessions(), kSessionProgramReference, " as its program"},
      {library.sessions(), kSessionVelocityMapReference, " as its velocity map"},
  };
  for (const auto& [users, reference, use] : uses) {
    for (const Preset* user : users.presets()) {
      // Case is ignored, as in the instrument's own lookups.
      if (fncmp(std::string(reference.name(*user)).c_str(), name.c_str()) != 0) continue;
      user->printTreeItemInfo(std::cout, 0);
      std::cout << use << '\n';
    }
  }
  return std::cout.flush() ? 0 : 1;
}
