// Which folder a preset belongs in, as the instrument's browser groups them.
//
// Sorting moves the files directly in a kind's root folder: RAM presets into the kind's user
// folder, where a file of the same name makes the move fail; ROM presets into a folder chosen by
// their data, where a file of the same name is deleted first. The "Default" preset stays. The tree
// in memory is not updated: reload the library afterwards.
//
// A sort that was stopped ends in the same places when it is repeated, also if in between a repair
// of names was stopped.
#pragma once

#include <cstdint>

#include "host/ResultCodes.h"

namespace cairnset {

class Preset;
class PresetList;

/// The folder for an effects preset, by its index within the thousand.
const char* effectsFolderFor(std::int32_t index);
/// The folder for a program, by the instrument of its keyset.
const char* programFolderFor(std::int32_t keyset);

/// Sorts the presets directly in the list's root folder, in tree order; `romFolder` returns the
/// folder for a ROM preset. A preset that cannot be moved stays. Returns the status of the last
/// folder look-up or move, which is 1 for a successful move.
OSStatus sortLoosePresets(PresetList& list, const char* (*romFolder)(const Preset&));

}  // namespace cairnset
