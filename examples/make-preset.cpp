// make-preset FOLDER NAME: creates the effects preset NAME in the library's folder for the user's
// own effects: a copy of "Default" with a small room.
//
// cairnset/Library.h opens the library; the headers below it do the rest.
#include <string>

#include "OpenLibrary.h"
#include "host/text/FileNameRules.h"
#include "host/text/Names.h"
#include "host/text/PascalStrings.h"
#include "presets/PresetManager.h"

int main(int argc, char** argv) {
  using namespace cairnset;
  if (argc != 3) {
    std::cerr << "usage: make-preset FOLDER NAME\n";
    return 2;
  }
  Library library;
  if (!openLibrary(argv[1], library, Library::Access::kChange)) return 1;

  // UTF-8 on the volume and the terminal; Mac Roman in memory and inside the files.
  std::string name = heldNameFromVolumeName(argv[2]).substr(0, 255);
  RemoveAllIllegalFilenameCharsInPlace(name.data());
  Str255 pascalName;
  C2PCopy(pascalName, name.c_str());

  // References are by name alone, so a second preset of the same name would be ambiguous in any
  // folder. Unlike newPreset(), duplicatePreset() never takes over an existing file.
  EffectsPresetList& effects = library.manager()->effects();
  const Preset* original = effects.findPreset(Preset::_default_preset_name);
  const OSStatus status =
      original == nullptr ? fnfErr
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
