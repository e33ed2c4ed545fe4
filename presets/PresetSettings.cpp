#include "presets/PresetSettings.h"

#include <cstddef>
#include <type_traits>

#include "params/Keysets.h"
#include "params/ParamTables.h"
#include "presets/EffectsPreset.h"
#include "presets/ProgramPreset.h"
#include "presets/SessionPreset.h"
#include "presets/VelocityMapPreset.h"

namespace cairnset {

namespace {

using Each = std::function<void(const Setting&)>;

// What a field of text is, beside the parameters.
enum : ParamTag { kReference = kNumParams, kPianoKeysetName, kSynthKeysetName };

// In the order of each kind's forEach.
constexpr ParamTag kVelocityMapTags[] = {kParamVelocityMapType, kParamVelocityMapHardness,
                                         kParamVelocityMapMinVel, kParamVelocityMapMaxVel};
constexpr ParamTag kEffectsTags[] = {kParamEQEnable,
                                     kParamChorusEnable,
                                     kParamAmbienceEnable,
                                     kParamEQHighShelfFrequency,
                                     kParamEQLowShelfFrequency,
                                     kParamEQHighShelfGain,
                                     kParamEQLowShelfGain,
                                     kParamChorusWetDry,
                                     kParamChorusDelay,
                                     kParamChorusDetune,
                                     kParamChorusFeedback,
                                     kParamChorusRate,
                                     kParamChorusDamping,
                                     kParamAmbienceType,
                                     kParamAmbienceWetDry,
                                     kParamAmbienceSize,
                                     kParamAmbiencePreDelay,
                                     kParamAmbienceDamping};
constexpr ParamTag kProgramTags[] = {kReference,
                                     kParamSoftEnable,
                                     kParamReleasesEnable,
                                     kParamSynthEnable,
                                     kParamSustainResonanceEnable,
                                     kParamPianoKeyset,
                                     kParamSynthKeymap,
                                     kParamTimbre,
                                     kParamSustainResonancePreset,
                                     kParamDynamicRange,
                                     kParamKeyNoise,
                                     kParamStereoWidth,
                                     kParamReleaseTime,
                                     kParamSynthGain,
                                     kParamSustainResonanceGain,
                                     kPianoKeysetName,
                                     kSynthKeysetName};
constexpr ParamTag kSessionTags[] = {
    kReference,           kReference,       kParamStereoPerspective, kParamTuning,
    kParamNumberOfVoices, kParamBufferSize, kParamTuneOctave,        kParamTuneTranspose,
    kParamTuneFine,       kParamGain,       kParamTuneA440};

template <std::size_t kWidth>
void pass(ParamTag tag, const char (&field)[kWidth], const Each& each) {
  if (tag == kReference) return;
  const char* name = tag == kPianoKeysetName ? "Piano Keyset Name" : "Synth Keyset Name";
  each({kNumParams, name, "", nameInField(field)});
}

template <typename Number>
void pass(ParamTag tag, const Number& field, const Each& each) {
  Setting setting{tag, Param_Names_Long[tag], Param_Labels[tag], {}};
  if constexpr (std::is_floating_point_v<Number>) {
    setting.stored = field;
  } else if (tag == kParamTuneOctave || tag == kParamTuneTranspose) {
    setting.stored = std::int64_t{static_cast<std::int16_t>(field)};
  } else {
    setting.stored = std::int64_t{field};
  }
  each(setting);
}

template <typename Kind, std::size_t kCount>
void passAll(const Preset& preset, const ParamTag (&tags)[kCount], const Each& each) {
  const auto& fields = static_cast<const Kind&>(preset).fields;
  std::remove_cvref_t<decltype(fields)>::forEach(fields, [&](const auto&... field) {
    static_assert(sizeof...(field) == kCount);
    const ParamTag* tag = tags;
    (pass(*tag++, field, each), ...);
  });
}

}  // namespace

void forEachSetting(const Preset& preset, const Each& each) {
  switch (preset.getPresetType()) {
    case kVelocityMapKind:
      return passAll<VelocityMapPreset>(preset, kVelocityMapTags, each);
    case kEffectsKind:
      return passAll<EffectsPreset>(preset, kEffectsTags, each);
    case kProgramKind:
      return passAll<ProgramPreset>(preset, kProgramTags, each);
    default:
      return passAll<SessionPreset>(preset, kSessionTags, each);
  }
}

std::string shownValue(const Setting& setting) {
  if (const auto* text = std::get_if<std::string_view>(&setting.stored)) return std::string(*text);
  const ParamConverter& converter = *Param_Converters[setting.tag];
  char shown[kParamDisplaySize];
  float intrinsic = 0;
  if (const auto* real = std::get_if<float>(&setting.stored)) {
    intrinsic = setting.tag == kParamStereoWidth ? *real * 100.0F : *real;
  } else {
    const std::int64_t number = std::get<std::int64_t>(setting.stored);
    if (setting.tag == kParamVelocityMapType || setting.tag == kParamAmbienceType) {
      std::string code;
      for (int shift = 24; shift >= 0; shift -= 8)
        code += static_cast<char>(number >> shift & 0xFF);
      return code;
    }
    if (setting.tag == kParamPianoKeyset) {
      const char* keyset = findKeysetNameWithID(static_cast<int>(number));
      if (keyset != nullptr) return keyset;
    }
    if (setting.tag == kParamBufferSize) {
      converter.indexToDisplay(static_cast<long>(number), shown);
      return shown;
    }
    intrinsic = static_cast<float>(number);
  }
  converter.rawToDisplay(converter.intrinsicToRaw(intrinsic), shown);
  return shown;
}

}  // namespace cairnset
