// find-users FOLDER NAME: tells which presets of a library use the preset whose file is called
// NAME.
#include <iostream>
#include <string>

#include "host/FileManager.h"
#include "host/Names.h"
#include "host/PascalStrings.h"
#include "presets/PresetManager.h"
#include "presets/PresetReferences.h"

int main(int argc, char** argv) {
  using namespace cairnset;
  if (argc != 3) {
    std::cerr << "usage: find-users FOLDER NAME\n";
    return 2;
  }
  PresetManager library(nullptr);
  FSRef items;
  OSStatus status = FSPathMakeRef(argv[1], &items, nullptr);
  if (status == noErr) status = library.setOlvanItemsFSRef(items);
  if (status != noErr) {
    std::cerr << "find-users: no library at " << argv[1] << ": error " << status << '\n';
    return 1;
  }
  library.openAllPresets();

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
      // As the instrument looks names up: without regard to case.
      if (fncmp(reference.name(*user).c_str(), name.c_str()) != 0) continue;
      user->printTreeItemInfo(std::cout, 0);
      std::cout << use << '\n';
    }
  }
  return std::cout.flush() ? 0 : 1;
}
