// Renaming presets and updating all references to them. A stop at any moment, by SIGKILL or loss of
// power, does no harm, and repeating the call completes the work.
//
// The order of the steps ensures this:
//
//   1. Each file gets its new name beside the old one, as a hard link, and the folders are flushed
//      to the disk.
//   2. Those that named it are rewritten, each by one write that no stop can cut in two, and
//      flushed.
//   3. The old names are removed. One that a referrer may still need is not: if a referrer
//      could not be written or flushed, or the load has passed over files of its kind. The next
//      call goes on from there.
//
// Old and new name both lead to the file until nothing needs the old one. After a stop, the next
// call still finds the preset under its old name, and sees that the new name is the same file.
//
// A repeated call must also end in the same bytes. A RAM preset is written with its place among all
// RAM presets as its index, so each partial set of writes must leave the places of the rest
// unchanged. So all referrers of one kind are written together, in the order of writesBefore. If
// two RAM presets have one index, such an order may not exist; then their places can differ, and
// nothing else.
//
// If a file cannot have a second name, its referrers are rewritten first and then it is renamed,
// one preset after the other. A stop in between leaves references to a name that the next call
// gives. If a referrer cannot be written, the others are put back; if one may have been passed
// over, nothing is done.
#pragma once

#include <string>
#include <vector>

#include "host/ResultCodes.h"

#pragma GCC visibility push(default)
namespace cairnset {

class Preset;
class PresetManager;
struct PresetReference;

struct NewName {
  Preset* preset;
  std::string name;
};

/// A preset whose reference to a renamed one was updated.
struct Relinked {
  Preset* preset;
  std::string name;       // its own, before the call, which may rename it too
  OSErr written = noErr;  // the result of the rewrite
  OSErr flushed = noErr;  // of the flush to the disk, if any
};

/// The result of one rename.
struct Renamed {
  Preset* preset;
  std::string oldName;
  std::string newName;
  std::vector<Relinked> referrers;  // in the order of their list's leaf walk
  /// Of the rename. catChangedErr if others have changed the file or its names meanwhile. The
  /// referrers are relinked even if it failed, but not after catChangedErr.
  OSErr result = noErr;
  /// The old name stays, since a referrer was not written or may have been passed over: beside the
  /// new one, or alone if the file cannot have two. Another call completes it.
  bool keepsOldName = false;
};

/// True if that result of a rename says that the file cannot have the name, and not that something
/// went wrong.
[[nodiscard]] bool isNameRefused(OSErr result);

/// Which references a rename updates.
enum class Relinks {
  kExactName,  // those that have exactly the old name
  kLedToIt,    // those that lead to the preset, as findPreset resolves them; indexes stay
};

/// Renames these presets of the library, of any kinds and each once, and rewrites all presets that
/// refer to them. Returns the results in the order of `names`. No failure ends it early. In
/// memory presets and references have their new names even if a file keeps its old one or could not
/// be written. With kExactName, referrers are relinked even if the new name is taken, on purpose:
/// it has always been so, and shows as a missing reference. With kLedToIt nothing is changed then.
///
/// Every reference is updated once: if presets of one kind share a name, the first in `names` gets
/// the referrers. A rename to a name that another preset gives up in the same call may fail.
///
/// Any signal can end the process between two steps, unless the caller holds signals back
/// (host/terminal/Process.h).
[[nodiscard]] std::vector<Renamed> renamePresets(PresetManager& library,
                                                 const std::vector<NewName>& names,
                                                 Relinks relinks = Relinks::kExactName);

/// Rewrites each reference of this sort whose name is `oldName`, case ignored, to `newName`, which
/// may be the same name in other letters. Indexes stay. A reference that has exactly `newName` is
/// left alone.
[[nodiscard]] std::vector<Relinked> relinkReferences(PresetManager& library,
                                                     const PresetReference& reference,
                                                     const std::string& oldName,
                                                     const std::string& newName);

/// The presets whose reference of this sort is to `name`, case ignored, in the order of their
/// list's leaf walk. A preset whose file is not whole and whose name is empty does not count: the
/// name may not have been read.
[[nodiscard]] std::vector<Preset*> referrersTo(PresetManager& library,
                                               const PresetReference& reference,
                                               const std::string& name);

}  // namespace cairnset
#pragma GCC visibility pop
