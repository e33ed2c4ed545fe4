#include "tool/BulkMaintenance.h"

#include <algorithm>
#include <iostream>

#include "host/terminal/Process.h"
#include "presets/PresetManager.h"
#include "tool/Notes.h"
#include "tool/Reports.h"
#include "tool/Session.h"

namespace cairnset {

namespace {

void setAll(bool rom, const char* done) {
  const OutlivesReader outlives(std::cout);
  for (PresetList* list : {_v, _e, _p, _s})
    setROM(list, rom);
  std::cout << done;
  writeNotes(takeResultNotes());
}

}  // namespace

void sortIntoSubdirectories() {
  const OutlivesReader outlives(std::cout);
  NoteLines loaded;
  if (_pm != nullptr) {
    loaded = notesOfLoad(*_pm);
    _pm->sortAllForBrowser();
    writeNotes(notesOfSorting(*_pm));
  }
  const int status = reload();  // on failure it has reported why, and no library is left
  std::cout << "Sorting presets has finished.\n";
  if (status != kSuccess) return;
  NoteLines notes = notesOfLoad(*_pm);
  std::erase_if(notes, [&loaded](const std::string& note) {
    return std::find(loaded.begin(), loaded.end(), note) != loaded.end();
  });
  writeNotes(notes);
}

void setROM(PresetList* list, bool rom) {
  forEachPreset(list, [rom](Preset& preset) {
    if (preset.romByte() == (rom ? 1 : 0)) return;
    preset.setROM(rom);
    (void)preset.writeOut();  // 0 also if the file could not be opened
    reportFailure("writing", preset, preset.status());
  });
}

void makeAllROM() {
  setAll(true, "Setting all presets to ROM has finished.\n");
}

void makeAllRAM() {
  setAll(false, "Setting all presets to RAM has finished.\n");
}

}  // namespace cairnset
