// Renaming presets together with all that name them, so that a stop at any moment, by SIGKILL or
// by a loss of power, harms nothing and the same call after it completes the work.
//
// The order of the steps does it:
//
//   1. Each file gets its new name beside the old one, as a hard link, and the folders are flushed
//      to the disk.
//   2. Those that named it are rewritten, each by one write that no stop can cut in two, and
//      flushed.
//   3. The old names are removed.
//
// Whatever a stop leaves behind, old and new names both lead to the file until nothing needs the
// old one. The next call finds the preset under its old name still, and the new name to be the
// file's own.
//
// So that it also ends in the same bytes, it must see the referrers in the same order: a RAM preset
// is written with its place among all RAM presets, which for the rest must stay what it was
// whichever of them have been written. That is why all referrers of one kind are written in one
// go, and in which order (writesBefore). With two RAM presets of one index there is not always
// such an order; then their places can differ, and nothing else.
//
// Where a file can have no second name the plain rename serves, one preset after the other. A stop
// between such a rename and the last rewrite leaves references to a name that is gone.
#pragma once

#include <string>
#include <vector>

#include "host/ResultCodes.h"

namespace cairnset {

class Preset;
class PresetManager;

/// What a preset is to be called.
struct NewName {
  Preset* preset;
  std::string name;
};

/// A preset that named a renamed one, and was made to name it anew.
struct Relinked {
  Preset* preset;
  std::string name;       // its own before the call, which may rename it too
  OSErr written = noErr;  // the result of the rewrite
  OSErr flushed = noErr;  // of the flush to the disk, where there was one
};

/// What came of one new name.
struct Renamed {
  Preset* preset;
  std::string oldName;
  std::string newName;
  std::vector<Relinked> referrers;  // in the order of their list's leaf walk
  OSErr result = noErr;             // of the rename; the referrers were relinked all the same
};

/// Renames these presets of the library, of any kinds and each once, and rewrites all presets that
/// name them exactly. Returns what happened, in the order of `names`. No failure ends it early or
/// undoes anything. That what names a preset is relinked although the rename failed is on purpose:
/// it has always been so, and then shows as a missing reference.
///
/// Every reference is set once: of presets of one kind that share a name, the first in `names` has
/// the referrers. A rename to a name that another preset gives up in the same call may fail.
///
/// A signal can end the process between two steps, as SIGKILL can. A caller that wants none to do
/// so holds signals back (host/terminal/Process.h).
[[nodiscard]] std::vector<Renamed> renamePresets(PresetManager& library,
                                                 const std::vector<NewName>& names);

}  // namespace cairnset
