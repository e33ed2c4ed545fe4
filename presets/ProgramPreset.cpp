#include "presets/ProgramPreset.h"

#include "params/ParamTables.h"
#include "presets/PresetFields.h"

namespace cairnset {

ProgramPreset::ProgramPreset(KeymapManager* keymaps, const FSRef& ref, const char* name,
                             bool create)
    : PresetOfKind(ref, name, create), _keymaps(keymaps) {
  if (!create) return;
  setNameInField(fields.effectsName, _default_preset_name);
  fields.softPedalSamplesOn = static_cast<std::uint8_t>(Param_Defaults[kParamSoftEnable]);
  fields.releaseSamplesOn = static_cast<std::uint8_t>(Param_Defaults[kParamReleasesEnable]);
  fields.synthLayerOn = static_cast<std::uint8_t>(Param_Defaults[kParamSynthEnable]);
  fields.sustainResonanceOn =
      static_cast<std::uint8_t>(Param_Defaults[kParamSustainResonanceEnable]);
  fields.pianoKeyset = 0;
  fields.synthKeymap = 0;
  fields.timbre = static_cast<std::int32_t>(Param_Defaults[kParamTimbre]);
  fields.sustainResonancePreset =
      static_cast<std::int32_t>(Param_Defaults[kParamSustainResonancePreset]);
  fields.dynamicRange = Param_Defaults[kParamDynamicRange];
  fields.keyNoise = Param_Defaults[kParamKeyNoise];
  fields.stereoWidth = static_cast<float>(Param_Defaults[kParamStereoWidth] * 0.01);
  fields.releaseTime = Param_Defaults[kParamReleaseTime];
  fields.synthGain = Param_Defaults[kParamSynthGain];
  fields.sustainResonanceGain = Param_Defaults[kParamSustainResonanceGain];
  setNameInField(fields.pianoKeysetName, "No Piano Keyset");
  setNameInField(fields.synthKeysetName, "No Synth Keyset");
}

ProgramPreset::ProgramPreset(KeymapManager* keymaps, const ProgramPreset& source,
                             const unsigned char* newName, const FSRef* folder)
    : PresetOfKind(source, newName, folder), _keymaps(keymaps) {
  // Names are copied up to their terminators: what a file held behind one stays behind.
  setNameInField(fields.effectsName, nameInField(source.fields.effectsName));
  setNameInField(fields.pianoKeysetName, nameInField(source.fields.pianoKeysetName));
  setNameInField(fields.synthKeysetName, nameInField(source.fields.synthKeysetName));
}

}  // namespace cairnset
