#include "tool/BulkMaintenance.h"

#include <iostream>

#include "host/terminal/Process.h"
#include "presets/LeafIteration.h"
#include "presets/PresetManager.h"
#include "tool/Session.h"
#include "tool/WriteFailures.h"

namespace cairnset {

void sortIntoSubdirectories() {
  const OutlivesReader outlives(std::cout);
  if (_pm != nullptr) _pm->sortAllForBrowser();
  (void)instantiate();  // where this fails there is no library left to report on
  std::cout << "Sorting presets has finished.\n";
}

void setROM(PresetList* list, bool rom) {
  forEachPreset(list, [rom](Preset& preset) {
    if (preset.romByte() == (rom ? 1 : 0)) return;
    preset.setROM(rom);
    (void)preset.writeOut();  // 0 also where the file could not be opened
    reportWriteFailure(preset, preset.status());
  });
}

void makeAllROM() {
  const OutlivesReader outlives(std::cout);
  for (PresetList* list : {_v, _e, _p, _s})
    setROM(list, true);
  std::cout << "Setting all presets to ROM has finished.\n";
}

void makeAllRAM() {
  const OutlivesReader outlives(std::cout);
  for (PresetList* list : {_v, _e, _p, _s})
    setROM(list, false);
  std::cout << "Setting all presets to RAM has finished.\n";
}

}  // namespace cairnset
