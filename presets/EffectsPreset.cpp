#include "presets/EffectsPreset.h"

#include "params/ParamTables.h"

namespace cairnset {

namespace {

constexpr std::uint32_t kDefaultAmbienceType = 0x736D6131;  // 'sma1'

float quantisedDefault(ParamTag tag) {
  return Param_Converters[tag]->quantizeIntrinsic(Param_Defaults[tag]);
}

}  // namespace

EffectsPreset::EffectsPreset(const FSRef& ref, const char* name, bool create)
    : PresetOfKind(ref, name, create) {
  if (!create) return;
  fields.eqOn = static_cast<std::uint8_t>(Param_Defaults[kParamEQEnable]);
  fields.chorusOn = static_cast<std::uint8_t>(Param_Defaults[kParamChorusEnable]);
  fields.ambienceOn = static_cast<std::uint8_t>(Param_Defaults[kParamAmbienceEnable]);
  fields.highShelfFrequency = quantisedDefault(kParamEQHighShelfFrequency);
  fields.lowShelfFrequency = quantisedDefault(kParamEQLowShelfFrequency);
  fields.highShelfGain = Param_Defaults[kParamEQHighShelfGain];
  fields.lowShelfGain = Param_Defaults[kParamEQLowShelfGain];
  fields.chorusWetDry = Param_Defaults[kParamChorusWetDry];
  fields.chorusDelay = Param_Defaults[kParamChorusDelay];
  fields.chorusDetune = Param_Defaults[kParamChorusDetune];
  fields.chorusFeedback = Param_Defaults[kParamChorusFeedback];
  fields.chorusRate = Param_Defaults[kParamChorusRate];
  fields.chorusDamping = quantisedDefault(kParamChorusDamping);
  fields.ambienceType = kDefaultAmbienceType;
  fields.ambienceWetDry = Param_Defaults[kParamAmbienceWetDry];
  fields.ambienceSize = Param_Defaults[kParamAmbienceSize];
  fields.ambiencePreDelay = Param_Defaults[kParamAmbiencePreDelay];
  fields.ambienceDamping = quantisedDefault(kParamAmbienceDamping);
}

EffectsPreset::EffectsPreset(const EffectsPreset& source, const unsigned char* newName,
                             const FSRef* folder)
    : PresetOfKind(source, newName, folder) {}

}  // namespace cairnset
