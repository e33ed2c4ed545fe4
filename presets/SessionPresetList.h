// The sessions of the library.
#pragma once

#include "presets/PresetListOfKind.h"
#include "presets/SessionPreset.h"

namespace cairnset {

class SessionPresetList : public PresetListOfKind<SessionPreset> {
 public:
  using PresetListOfKind::PresetListOfKind;

  /// Unlike the other kinds, deletes only in a confirmed list.
  void deletePreset(long index) override {
    if (confirmed()) PresetListOfKind::deletePreset(index);
  }

  /// Does nothing: sessions are never sorted.
  OSStatus sortForBrowser() override { return noErr; }
};

}  // namespace cairnset
