#include "params/ParamTables.h"

namespace cairnset {

constinit const RawParamConverter StaticRawParamConverter;
constinit const AmpTableParamConverter StaticAmpTableParamConverter;
constinit const FreqTableParamConverter StaticFreqTableParamConverter;
constinit const OnOffParamConverter StaticOnOffParamConverter;
constinit const StereoPerspectiveParamConverter StaticStereoPerspectiveParamConverter;
constinit const TuningParamConverter StaticTuningParamConverter;
constinit const BufferSizeParamConverter StaticBufferSizeParamConverter;
constinit const StepParamConverter StaticAmpVTConverter(0, 60, 1, 0);
constinit const StepParamConverter StaticNVoicesConverter(4, 160, 4, 0);
constinit const StepParamConverter StaticSusRampIncConverter(0.0001, 0.01, 0.0001, 4);
constinit const StepParamConverter StaticXPose8vsConverter(-4, 4, 1, 0);
constinit const StepParamConverter StaticXPoseSemisConverter(-11, 11, 1, 0);
constinit const StepParamConverter StaticXPoseCentsConverter(-99, 99, 1, 0);
constinit const StepParamConverter StaticXPoseARefConverter(420, 460, 0.5, 1);
constinit const StepParamConverter StaticVelFreqOffsetConverter(-99, 99, 1, 0);
constinit const StepParamConverter StaticPercentConverter(0, 100, 1, 0);
constinit const BipolarPercentParamConverter StaticBipolarPercentConverter;
constinit const StepParamConverter Static300msDelayConverter(0, 300, 0.1, 1);
constinit const StepParamConverter Static100msDelayConverter(0, 100, 0.1, 1);
constinit const StepParamConverter Static30msDelayConverter(0, 30, 0.1, 1);
constinit const StepParamConverter Static5msDelayConverter(0, 5, 0.01, 2);
constinit const StepParamConverter Static2msDelayConverter(0, 2, 0.01, 2);
constinit const StepParamConverter StaticLFORateConverter(0, 4, 0.01, 2);
constinit const StepParamConverter StaticSlowLFORateConverter(0, 2, 0.01, 2);
constinit const AmpTable6dBParamConverter StaticBVGainConverter;
constinit const StepParamConverter StaticRVSizeConverter(0.5, 2, 0.01, 2);
constinit const StepParamConverter StaticReleaseConverter(0.2, 3, 0.01, 2);
constinit const StepParamConverter StaticVelocityConverter(0, 127, 1, 0);
constinit const AmpTable24dBParamConverter Static24dBGainConverter;

namespace {

struct Row {
  const char* longName;
  const char* name;
  const char* label;
  const ParamConverter* converter;
  float byDefault;
};

// In the order of ParamTag. "VMap Arc" is the short name of "Velocity Map Type", on purpose.
constexpr std::array<Row, kNumParams> kRows = {{
    {"Gain", "Gain", "dB", &Static24dBGainConverter, 0},
    {"Number of Voices", "Num Voices", "", &StaticNVoicesConverter, 24},
    {"Buffer Size", "Buf Size", "", &StaticBufferSizeParamConverter, 0.5F},
    {"Stereo Perspective", "Perspective", "", &StaticStereoPerspectiveParamConverter, 0},
    {"Tuning", "Tuning", "", &StaticTuningParamConverter, 0},
    {"Tune Octave", "Octave", "Oct", &StaticXPose8vsConverter, 0},
    {"Tune Transpose", "Transpose", "ST", &StaticXPoseSemisConverter, 0},
    {"Tune Fine", "Tune", "cts", &StaticXPoseCentsConverter, 0},
    {"Tune A440", "A440 Ref", "Hz", &StaticXPoseARefConverter, 440},
    {"Piano Keyset", "Piano Keyset", "", &StaticRawParamConverter, 0},
    {"Soft Enable", "Soft", "", &StaticOnOffParamConverter, 0},
    {"Releases Enable", "Releases", "", &StaticOnOffParamConverter, 0},
    {"Dynamic Range", "Dyn Range", "dB", &StaticAmpVTConverter, 30},
    {"Timbre", "Timbre", "", &StaticVelFreqOffsetConverter, 99},
    {"Key Noise", "Key Noise", "dB", &Static24dBGainConverter, 0},
    {"Stereo Width", "Stereo Width", "%", &StaticPercentConverter, 100},
    {"Release Time", "Release Time", "x", &StaticReleaseConverter, 1},
    {"Synth Enable", "Synth", "", &StaticOnOffParamConverter, 0},
    {"Synth Keymap", "Synth Keymap", "", &StaticRawParamConverter, 0},
    {"Synth Gain", "Synth Gain", "dB", &Static24dBGainConverter, 0},
    {"Chorus Enable", "Chorus", "", &StaticOnOffParamConverter, 0},
    {"Chorus WetDry", "Ch WetDry", "%", &StaticBipolarPercentConverter, -50},
    {"Chorus Delay", "Ch Delay", "ms", &Static30msDelayConverter, 15},
    {"Chorus Detune", "Ch Detune", "%", &StaticPercentConverter, 50},
    {"Chorus Rate", "Ch Rate", "Hz", &StaticLFORateConverter, 1},
    {"Chorus Feedback", "Ch Feedback", "%", &StaticBipolarPercentConverter, 20},
    {"Chorus Damping", "Ch Damping", "", &StaticFreqTableParamConverter, 10000},
    {"EQ Enable", "EQ", "", &StaticOnOffParamConverter, 0},
    {"EQ Low Shelf Frequency", "LowShelf F", "", &StaticFreqTableParamConverter, 80},
    {"EQ Low Shelf Gain", "LowShelf G", "dB", &Static24dBGainConverter, 0},
    {"EQ High Shelf Frequency", "HiShelf F", "", &StaticFreqTableParamConverter, 11200},
    {"EQ High Shelf Gain", "HiShelf G", "dB", &Static24dBGainConverter, 0},
    {"Sustain Resonance Enable", "Sustain Res", "", &StaticOnOffParamConverter, 1},
    {"Sustain Resonance Preset", "SusRes Preset", "", &StaticRawParamConverter, 0},
    {"Sustain Resonance Gain", "SusRes Gain", "dB", &StaticBVGainConverter, 0},
    {"Ambience Enable", "Ambience", "", &StaticOnOffParamConverter, 0},
    {"Ambience Type", "Amb Type", "", &StaticRawParamConverter, 0},
    {"Ambience Wet/Dry", "Amb Wet/Dry", "%", &StaticBipolarPercentConverter, 17},
    {"Ambience Size", "Amb Size", "x", &StaticRVSizeConverter, 1},
    {"Ambience Pre-Delay", "Amb Predelay", "ms", &Static100msDelayConverter, 50},
    {"Ambience Damping", "Amb Damping", "", &StaticFreqTableParamConverter, 10000},
    {"Velocity Map Type", "VMap Arc", "", &StaticRawParamConverter, 0},
    {"Velocity Map Hardness", "VMap Hard", "%", &StaticBipolarPercentConverter, 0},
    {"Velocity Map Min Vel", "VMap Min", "", &StaticVelocityConverter, 0},
    {"Velocity Map Max Vel", "VMap Max", "", &StaticVelocityConverter, 127},
}};

template <class Field>
constexpr std::array<Field, kNumParams> column(Field Row::*field) {
  std::array<Field, kNumParams> fields = {};
  for (ParamTag tag = 0; tag < kRows.size(); ++tag)
    fields[tag] = kRows[tag].*field;
  return fields;
}

}  // namespace

constinit const std::array<const char*, kNumParams> Param_Names_Long = column(&Row::longName);
constinit const std::array<const char*, kNumParams> Param_Names = column(&Row::name);
constinit const std::array<const char*, kNumParams> Param_Labels = column(&Row::label);
constinit const std::array<const ParamConverter*, kNumParams> Param_Converters =
    column(&Row::converter);
constinit const std::array<float, kNumParams> Param_Defaults = column(&Row::byDefault);

}  // namespace cairnset
