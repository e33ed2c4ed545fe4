// Which of several presets of one name references lead to, after a rename and the next load.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/HostTypes.h"

namespace cairnset {

class Preset;
class PresetList;

/// A rename gives a file another place in the order of loading. If presets have equal indexes, the
/// order of the list (presets/ExchangeOrder.h) can then be another one, also that of presets that
/// have nothing to do with the rename; and a reference leads to the first of its name. This
/// foresees the order. It costs next to nothing if no two presets of the list have one name.
class Namesakes {
 public:
  explicit Namesakes(const PresetList& list);

  /// Takes in one more rename. Returns a preset that would then be the first of its name but is not
  /// now; null if there is none.
  [[nodiscard]] const Preset* rename(const Preset& preset, const std::string& newName);

 private:
  struct Loaded {
    FSRef place;
    const Preset* preset;
    std::string name;
  };

  static bool isLoadedBefore(const Loaded& a, const Loaded& b);
  const Preset* firstMisled() const;

  std::vector<std::vector<const Preset*>> _groups;  // of one name, in list order
  std::unordered_map<const Preset*, std::size_t> _group_of;
  std::vector<Loaded> _loaded;  // in the order of loading; empty if no two have one name
};

}  // namespace cairnset
