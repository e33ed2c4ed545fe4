#include "tool/BulkMaintenance.h"

#include <iostream>

#include "host/terminal/Process.h"
#include "presets/PresetManager.h"
#include "tool/Reports.h"
#include "tool/Session.h"

namespace cairnset {

namespace {

void setAll(bool rom, const char* done) {
  const OutlivesReader outlives(std::cout);
  for (PresetList* list : {_v, _e, _p, _s})
    setROM(list, rom);
  std::cout << done;
}

}  // namespace

void sortIntoSubdirectories() {
  const OutlivesReader outlives(std::cout);
  if (_pm != nullptr) _pm->sortAllForBrowser();
  (void)instantiate();  // on failure it has reported why, and no library is left
  std::cout << "Sorting presets has finished.\n";
}

void setROM(PresetList* list, bool rom) {
  forEachPreset(list, [rom](Preset& preset) {
    if (preset.romByte() == (rom ? 1 : 0)) return;
    preset.setROM(rom);
    (void)preset.writeOut();  // 0 also if the file could not be opened
    reportWriteFailure(preset, preset.status());
  });
}

void makeAllROM() {
  setAll(true, "Setting all presets to ROM has finished.\n");
}

void makeAllRAM() {
  setAll(false, "Setting all presets to RAM has finished.\n");
}

}  // namespace cairnset
