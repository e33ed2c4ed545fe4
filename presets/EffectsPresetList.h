// The effects presets of the library.
#pragma once

#include "presets/EffectsPreset.h"
#include "presets/PresetListOfKind.h"

namespace cairnset {

class EffectsPresetList : public PresetListOfKind<EffectsPreset> {
 public:
  using PresetListOfKind::PresetListOfKind;

  OSStatus sortForBrowser() override;
};

}  // namespace cairnset
