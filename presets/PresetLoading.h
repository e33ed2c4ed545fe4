// The last of the three steps of a load: presets and limbs from what the walk found
// (host/files/FolderWalk.h) and what the reading brought (host/files/FileReading.h).
#pragma once

#include "host/HostTypes.h"
#include "host/ResultCodes.h"

namespace cairnset {

class PresetLimb;
class PresetList;

struct LoadResult {
  OSErr listed;     // how the listing of the folder itself went
  OSStatus status;  // of the last file that was closed, or folder that was listed
};

/// Adds all presets of the list's kind that lie in the folder or below it, and a limb for each
/// folder below it, in load order. What the list knows already stays, but known limbs are set anew.
/// Files that cannot be opened for writing or read, and those of no or another kind, are passed
/// over.
LoadResult loadFolder(PresetList& list, const FSRef& folder, PresetLimb& limb);

/// Makes the first preset named "Default", case ignored, the kind's ROM preset of index 0, and
/// writes it where it was not; makes one in the root folder where there is none.
void makeSureOfDefault(PresetList& list);

}  // namespace cairnset
