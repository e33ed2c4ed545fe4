// The velocity maps of the library.
#pragma once

#include "presets/PresetListOfKind.h"
#include "presets/VelocityMapPreset.h"

namespace cairnset {

class VelocityMapPresetList : public PresetListOfKind<VelocityMapPreset> {
 public:
  using PresetListOfKind::PresetListOfKind;

  /// Unlike the other kinds, closes the file of a preset that is in the list already.
  Preset* openPreset(const FSRef& file, const FileStart* start = nullptr) override {
    if (!confirmed()) return nullptr;
    Preset* open = findPresetUsingFileSpec(file);
    if (open == nullptr) return PresetListOfKind::openPreset(file, start);
    open->close();
    return open;
  }

  OSStatus sortForBrowser() override;
};

}  // namespace cairnset
