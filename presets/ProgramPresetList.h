// The programs of the library.
#pragma once

#include "presets/PresetListOfKind.h"
#include "presets/ProgramPreset.h"

namespace cairnset {

class ProgramPresetList : public PresetListOfKind<ProgramPreset> {
 public:
  using PresetListOfKind::PresetListOfKind;

  OSStatus sortForBrowser() override;
};

}  // namespace cairnset
