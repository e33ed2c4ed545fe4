// Changing many presets at once.
#pragma once

namespace cairnset {

class PresetList;

/// Moves the presets directly in the kinds' root folders into sub-folders, and reloads the library.
/// Sessions stay. Preset files of the same name in a category folder are replaced.
void sortIntoSubdirectories();

/// Makes every preset of the list ROM or RAM and writes those that were not. One that cannot be
/// written is reported on standard error and stays changed in memory. Ignores a null list.
void setROM(PresetList* list, bool rom);
/// All four lists. No option leads to these two.
void makeAllROM();
void makeAllRAM();

}  // namespace cairnset
