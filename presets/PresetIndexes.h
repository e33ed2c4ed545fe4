// Finding the presets of a list by name or file, and the limbs of its tree by folder.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "host/HostTypes.h"

#pragma GCC visibility push(default)
namespace cairnset {

class Preset;
class PresetList;
class TreeLimb;

/// Each look-up returns what a walk would find first. An index is built on first use. All are
/// dropped once the list's revision has changed; but a list that adds something itself reports it
/// with add() and keeps its indexes. Owns nothing.
class PresetIndexes {
 public:
  explicit PresetIndexes(const PresetList& list) : _list(list) {}

  /// The first preset in list order whose name is the same to fncmp (host/text/PascalStrings.h).
  Preset* presetNamed(const char* name);
  /// The first preset in list order with the file, up to a null entry.
  Preset* presetOf(const FSRef& file);
  /// The first limb of the tree, in pre-order, with the ID.
  TreeLimb* limbWithID(unsigned long id);

  /// Drops outdated indexes. Call it right before an addition that add() reports.
  void bringUpToDate();
  /// Reports a preset appended to the list, anywhere in the tree.
  void add(Preset* preset);
  /// Reports a limb added anywhere in the tree.
  void add(TreeLimb* limb);

 private:
  // Open addressing, with a power of two of slots. It is 2 to 3 % faster than std::unordered_map
  // over a whole run of -d with 100,000 presets.
  struct NameSlot {
    std::uint32_t hash = 0;
    Preset* preset = nullptr;
    const char* name = nullptr;  // the preset's own
  };

  NameSlot& slotOf(const char* name, std::uint32_t hash);
  void putByName(Preset* preset);
  void putByFile(Preset* preset);

  const PresetList& _list;
  unsigned long _revision = 0;
  std::vector<NameSlot> _by_name;  // empty until built
  // The others have no value until built.
  std::optional<std::vector<Preset*>> _by_file;  // indexed by node; node numbers are dense
  bool _files_end_at_null = false;
  std::optional<std::unordered_map<unsigned long, TreeLimb*>> _by_id;
};

}  // namespace cairnset
#pragma GCC visibility pop
