// The instrument's 45 sound parameters, and the converter objects that they share.
//
// Five parallel tables, indexed by ParamTag without a range check. Tables and converters are
// constant-initialised, so static initialisers in other files may use them.
#pragma once

#include <array>
#include <cstdint>

#include "params/ParamConverter.h"

namespace cairnset {

/// The number of a parameter, 0 to 44: its index in the tables.
using ParamTag = std::uint32_t;

enum : ParamTag {
  kParamGain = 0,
  kParamNumberOfVoices = 1,
  kParamBufferSize = 2,
  kParamStereoPerspective = 3,
  kParamTuning = 4,
  kParamTuneOctave = 5,
  kParamTuneTranspose = 6,
  kParamTuneFine = 7,
  kParamTuneA440 = 8,
  kParamPianoKeyset = 9,
  kParamSoftEnable = 10,
  kParamReleasesEnable = 11,
  kParamDynamicRange = 12,
  kParamTimbre = 13,
  kParamKeyNoise = 14,
  kParamStereoWidth = 15,
  kParamReleaseTime = 16,
  kParamSynthEnable = 17,
  kParamSynthKeymap = 18,
  kParamSynthGain = 19,
  kParamChorusEnable = 20,
  kParamChorusWetDry = 21,
  kParamChorusDelay = 22,
  kParamChorusDetune = 23,
  kParamChorusRate = 24,
  kParamChorusFeedback = 25,
  kParamChorusDamping = 26,
  kParamEQEnable = 27,
  kParamEQLowShelfFrequency = 28,
  kParamEQLowShelfGain = 29,
  kParamEQHighShelfFrequency = 30,
  kParamEQHighShelfGain = 31,
  kParamSustainResonanceEnable = 32,
  kParamSustainResonancePreset = 33,
  kParamSustainResonanceGain = 34,
  kParamAmbienceEnable = 35,
  kParamAmbienceType = 36,
  kParamAmbienceWetDry = 37,
  kParamAmbienceSize = 38,
  kParamAmbiencePreDelay = 39,
  kParamAmbienceDamping = 40,
  kParamVelocityMapType = 41,
  kParamVelocityMapHardness = 42,
  kParamVelocityMapMinVel = 43,
  kParamVelocityMapMaxVel = 44,
  kNumParams
};

// Created in this order and destroyed in reverse. No parameter uses six of them.
extern const RawParamConverter StaticRawParamConverter;
extern const AmpTableParamConverter StaticAmpTableParamConverter;
extern const FreqTableParamConverter StaticFreqTableParamConverter;
extern const OnOffParamConverter StaticOnOffParamConverter;
extern const StereoPerspectiveParamConverter StaticStereoPerspectiveParamConverter;
extern const TuningParamConverter StaticTuningParamConverter;
extern const BufferSizeParamConverter StaticBufferSizeParamConverter;
extern const StepParamConverter StaticAmpVTConverter;
extern const StepParamConverter StaticNVoicesConverter;
extern const StepParamConverter StaticSusRampIncConverter;
extern const StepParamConverter StaticXPose8vsConverter;
extern const StepParamConverter StaticXPoseSemisConverter;
extern const StepParamConverter StaticXPoseCentsConverter;
extern const StepParamConverter StaticXPoseARefConverter;
extern const StepParamConverter StaticVelFreqOffsetConverter;
extern const StepParamConverter StaticPercentConverter;
extern const BipolarPercentParamConverter StaticBipolarPercentConverter;
extern const StepParamConverter Static300msDelayConverter;
extern const StepParamConverter Static100msDelayConverter;
extern const StepParamConverter Static30msDelayConverter;
extern const StepParamConverter Static5msDelayConverter;
extern const StepParamConverter Static2msDelayConverter;
extern const StepParamConverter StaticLFORateConverter;
extern const StepParamConverter StaticSlowLFORateConverter;
extern const AmpTable6dBParamConverter StaticBVGainConverter;
extern const StepParamConverter StaticRVSizeConverter;
extern const StepParamConverter StaticReleaseConverter;
extern const StepParamConverter StaticVelocityConverter;
extern const AmpTable24dBParamConverter Static24dBGainConverter;

/// Full display name.
extern const std::array<const char*, kNumParams> Param_Names_Long;
/// Short display name.
extern const std::array<const char*, kNumParams> Param_Names;
/// The unit shown after a value, or an empty text.
extern const std::array<const char*, kNumParams> Param_Labels;
/// Not owned.
extern const std::array<const ParamConverter*, kNumParams> Param_Converters;
/// In the units of the label.
extern const std::array<float, kNumParams> Param_Defaults;

}  // namespace cairnset
