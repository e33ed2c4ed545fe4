#include "presets/ProgramPreset.h"

#include "params/ParamTables.h"
#include "presets/PresetFields.h"

namespace cairnset {

void ProgramFields::setDefaults() {
  setNameInField(effectsName, Preset::_default_preset_name);
  softPedalSamplesOn = static_cast<std::uint8_t>(Param_Defaults[kParamSoftEnable]);
  releaseSamplesOn = static_cast<std::uint8_t>(Param_Defaults[kParamReleasesEnable]);
  synthLayerOn = static_cast<std::uint8_t>(Param_Defaults[kParamSynthEnable]);
  sustainResonanceOn = static_cast<std::uint8_t>(Param_Defaults[kParamSustainResonanceEnable]);
  pianoKeyset = 0;
  synthKeymap = 0;
  timbre = static_cast<std::int32_t>(Param_Defaults[kParamTimbre]);
  sustainResonancePreset = static_cast<std::int32_t>(Param_Defaults[kParamSustainResonancePreset]);
  dynamicRange = Param_Defaults[kParamDynamicRange];
  keyNoise = Param_Defaults[kParamKeyNoise];
  stereoWidth = static_cast<float>(Param_Defaults[kParamStereoWidth] * 0.01);
  releaseTime = Param_Defaults[kParamReleaseTime];
  synthGain = Param_Defaults[kParamSynthGain];
  sustainResonanceGain = Param_Defaults[kParamSustainResonanceGain];
  setNameInField(pianoKeysetName, "No Piano Keyset");
  setNameInField(synthKeysetName, "No Synth Keyset");
}

ProgramPreset::ProgramPreset(KeymapManager* /*keymaps*/, const ProgramPreset& source,
                             const unsigned char* newName, const FSRef* folder)
    : PresetOfKind(source, newName, folder) {
  // Copy names only up to their terminators: bytes that a file held after them are dropped.
  setNameInField(fields.effectsName, nameInField(source.fields.effectsName));
  setNameInField(fields.pianoKeysetName, nameInField(source.fields.pianoKeysetName));
  setNameInField(fields.synthKeysetName, nameInField(source.fields.synthKeysetName));
}

}  // namespace cairnset
