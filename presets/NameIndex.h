// Finding a preset by its name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace cairnset {

class Preset;

/// The first preset that was added for each name, names being the same as fncmp
/// (host/PascalStrings.h) has it. It owns neither the presets nor their names, of which it keeps
/// the addresses, and it knows no later change: whoever keeps it makes it anew before it is asked
/// again.
class NameIndex {
 public:
  void clear();
  /// Makes room for `count` presets at once.
  void reserve(std::size_t count);
  /// Adds the preset unless there is one of its name already.
  void add(Preset* preset);
  /// Null where no preset of the name was added.
  Preset* find(const char* name) const;

 private:
  struct Slot {
    std::uint32_t hash = 0;
    Preset* preset = nullptr;
    const char* name = nullptr;  // the preset's own, so that a look-up need not touch the preset
  };

  std::size_t slotOf(const char* name, std::uint32_t hash) const;

  std::vector<Slot> _slots;  // open addressing, a power of two in size or none
  std::size_t _count = 0;
};

}  // namespace cairnset
