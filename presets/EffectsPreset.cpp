#include "presets/EffectsPreset.h"

#include "params/ParamTables.h"

namespace cairnset {

namespace {

constexpr std::uint32_t kDefaultAmbienceType = 0x736D6131;  // 'sma1'

float quantisedDefault(ParamTag tag) {
  return Param_Converters[tag]->quantizeIntrinsic(Param_Defaults[tag]);
}

}  // namespace

void EffectsFields::setDefaults() {
  eqOn = static_cast<std::uint8_t>(Param_Defaults[kParamEQEnable]);
  chorusOn = static_cast<std::uint8_t>(Param_Defaults[kParamChorusEnable]);
  ambienceOn = static_cast<std::uint8_t>(Param_Defaults[kParamAmbienceEnable]);
  highShelfFrequency = quantisedDefault(kParamEQHighShelfFrequency);
  lowShelfFrequency = quantisedDefault(kParamEQLowShelfFrequency);
  highShelfGain = Param_Defaults[kParamEQHighShelfGain];
  lowShelfGain = Param_Defaults[kParamEQLowShelfGain];
  chorusWetDry = Param_Defaults[kParamChorusWetDry];
  chorusDelay = Param_Defaults[kParamChorusDelay];
  chorusDetune = Param_Defaults[kParamChorusDetune];
  chorusFeedback = Param_Defaults[kParamChorusFeedback];
  chorusRate = Param_Defaults[kParamChorusRate];
  chorusDamping = quantisedDefault(kParamChorusDamping);
  ambienceType = kDefaultAmbienceType;
  ambienceWetDry = Param_Defaults[kParamAmbienceWetDry];
  ambienceSize = Param_Defaults[kParamAmbienceSize];
  ambiencePreDelay = Param_Defaults[kParamAmbiencePreDelay];
  ambienceDamping = quantisedDefault(kParamAmbienceDamping);
}

}  // namespace cairnset
