// Equaliser, chorus and ambience.
#pragma once

#include "presets/PresetKinds.h"
#include "presets/PresetOfKind.h"

#pragma GCC visibility push(default)
namespace cairnset {

/// Payload in the file, 67 bytes: declared length 63 (4), then the fields below in order without
/// the spare byte. High shelf comes before low shelf, and feedback before rate.
struct EffectsFields {
  static constexpr std::uint32_t kKind = kEffectsKind;
  static constexpr const char* kTypeName = "[Effx]";
  static constexpr std::uint32_t kDeclaredLength = 63;

  std::uint8_t eqOn;
  std::uint8_t chorusOn;
  std::uint8_t ambienceOn;
  std::uint8_t spare;
  float highShelfFrequency;
  float lowShelfFrequency;
  float highShelfGain;
  float lowShelfGain;
  float chorusWetDry;
  float chorusDelay;
  float chorusDetune;
  float chorusFeedback;
  float chorusRate;
  float chorusDamping;
  std::uint32_t ambienceType;  // a four-character code
  float ambienceWetDry;
  float ambienceSize;
  float ambiencePreDelay;
  float ambienceDamping;

  /// Calls `each` with all fields of the file, in its order.
  template <typename Self, typename Each>
  static void forEach(Self& f, Each each) {
    each(f.eqOn, f.chorusOn, f.ambienceOn, f.highShelfFrequency, f.lowShelfFrequency,
         f.highShelfGain, f.lowShelfGain, f.chorusWetDry, f.chorusDelay, f.chorusDetune,
         f.chorusFeedback, f.chorusRate, f.chorusDamping, f.ambienceType, f.ambienceWetDry,
         f.ambienceSize, f.ambiencePreDelay, f.ambienceDamping);
  }

  /// The defaults of the parameter table; frequencies and dampings at their next higher step.
  void setDefaults();
};
static_assert(sizeof(EffectsFields) == 64);

class EffectsPreset : public PresetOfKind<EffectsFields> {
 public:
  using PresetOfKind::PresetOfKind;
};

}  // namespace cairnset
#pragma GCC visibility pop
