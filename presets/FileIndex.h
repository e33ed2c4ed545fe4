// Finding a preset by its file.
#pragma once

#include <cstddef>
#include <vector>

#include "host/HostTypes.h"

namespace cairnset {

class Preset;

/// The first preset that was added for each file. Places are numbered one by one as they are met,
/// so that a plain row of all numbers is both smaller and quicker than anything that looks for
/// them.
class FileIndex {
 public:
  void clear() { _presets.clear(); }

  /// Adds the preset unless there is one for the file already.
  void add(const FSRef& file, Preset* preset) {
    if (file.node >= _presets.size()) _presets.resize(file.node + std::size_t{1}, nullptr);
    if (_presets[file.node] == nullptr) _presets[file.node] = preset;
  }

  /// Null where no preset was added for the file.
  Preset* find(const FSRef& file) const {
    return file.node < _presets.size() ? _presets[file.node] : nullptr;
  }

 private:
  std::vector<Preset*> _presets;  // by node number
};

}  // namespace cairnset
