// Which folder a preset belongs in, as the instrument's browser groups them.
//
// Sorting moves what lies loose in a kind's root folder: RAM presets into the kind's user folder,
// where a file of the same name makes the move fail; ROM presets into a folder by their own
// data, where a file of the same name is deleted first. The "Default" preset stays. Only files are
// moved: the tree in memory no longer matches them, and the library is to be read again.
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

/// Sorts the presets that lie in the list's root folder, in tree order; `romFolder` answers the
/// folder for a ROM preset. A preset that cannot be moved stays. Answers the status of the last
/// folder look-up or move; of a move that succeeded this is 1.
OSStatus sortLoosePresets(PresetList& list, const char* (*romFolder)(const Preset&));

}  // namespace cairnset
