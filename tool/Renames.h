// Renaming presets together with all that name them, so that a stop at any moment, by SIGKILL or
// by a loss of power, harms nothing and the next repair completes the work.
//
// The order of the steps is what does it:
//
//   1. Each file gets its new name beside the old one, as a hard link, and the folders are flushed
//      to the disk.
//   2. Those that named it are rewritten, each by one write that no stop can cut in two, and
//      flushed.
//   3. The old names are taken away.
//
// Whatever a stop leaves behind, old and new names both lead to the file until nothing needs the
// old one. The next repair finds the old name illegal still, and the new one to be the file's own.
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

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace cairnset {

class Preset;
struct PresetReference;

/// One preset that is to be renamed.
struct Rename {
  Preset* preset;
  std::string newName;
  std::vector<Preset*> referrers;    // in the order of the report
  const PresetReference* reference;  // through which they name it; null where nobody does
  std::vector<std::size_t> told;     // for each referrer, where in the report a failure is told
};

/// What was told on standard error, by the position in the report that it belongs to.
using Failures = std::map<std::size_t, std::string>;

/// Renames, and makes all referrers name the new names. That a rename fails is not noticed, and the
/// references are rewritten all the same. Meant so: the tool has always behaved like this, and what
/// was broken shows in -d. All referrers must be of one kind, of which none is itself renamed.
void renameAll(const std::vector<Rename*>& renames, Failures& failures);

}  // namespace cairnset
