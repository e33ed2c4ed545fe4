// make-preset FOLDER NAME: makes the effects preset NAME in the library's folder for the user's
// own effects: what "Default" says, with a small room.
#include <iostream>
#include <string>

#include "host/FileManager.h"
#include "host/FileNameRules.h"
#include "host/Names.h"
#include "host/PascalStrings.h"
#include "presets/PresetManager.h"

int main(int argc, char** argv) {
  using namespace cairnset;
  if (argc != 3) {
    std::cerr << "usage: make-preset FOLDER NAME\n";
    return 2;
  }
  PresetManager library(nullptr);
  FSRef items;
  OSStatus status = FSPathMakeRef(argv[1], &items, nullptr);
  if (status == noErr) status = library.setOlvanItemsFSRef(items);
  if (status != noErr) {
    std::cerr << "make-preset: no library at " << argv[1] << ": error " << status << '\n';
    return 1;
  }
  library.openAllPresets();

  std::string name = heldNameFromVolumeName(argv[2]).substr(0, 255);  // Mac Roman from here on
  RemoveAllIllegalFilenameCharsInPlace(name.data());
  Str255 pascalName;
  C2PCopy(pascalName, name.c_str());

  // Presets are referred to by name alone, so a second one of a name would be ambiguous wherever it
  // lay. A copy never takes over a file that is there already, as newPreset() does.
  EffectsPresetList& effects = library.effects();
  const Preset* original = effects.findPreset(Preset::_default_preset_name);
  status = original == nullptr ? fnfErr
           : effects.findPreset(name.c_str()) != nullptr
               ? dupFNErr
               : effects.duplicatePreset(effects.findPresetIndex(original), pascalName);
  if (status != noErr) {
    std::cerr << "make-preset: not made: error " << status << '\n';
    return 1;
  }
  auto& made = static_cast<EffectsPreset&>(*effects.presetAt(effects.count() - 1));
  made.fields.ambienceOn = 1;
  made.fields.ambienceWetDry = -30;  // per cent, -100 to 100
  made.fields.ambienceSize = 0.6F;   // 0.5 to 2
  made.writeOut();
  if (made.status() != noErr) {
    std::cerr << "make-preset: not written: error " << made.status() << '\n';
    return 1;
  }
  made.printTreeItemInfo(std::cout, 0);
  std::cout << '\n';
  return std::cout.flush() ? 0 : 1;
}
