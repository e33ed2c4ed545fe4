// Equaliser, chorus and ambience.
#pragma once

#include "presets/PresetKinds.h"
#include "presets/PresetOfKind.h"

namespace cairnset {

/// Payload in the file, 67 bytes: declared length 63 (4), then the fields below in order without
/// the spare byte. High shelf stands before low shelf, and feedback before rate.
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

  /// Every field of the file, in its order.
  template <typename Self, typename Each>
  static void forEach(Self& f, Each each) {
    each(f.eqOn);
    each(f.chorusOn);
    each(f.ambienceOn);
    each(f.highShelfFrequency);
    each(f.lowShelfFrequency);
    each(f.highShelfGain);
    each(f.lowShelfGain);
    each(f.chorusWetDry);
    each(f.chorusDelay);
    each(f.chorusDetune);
    each(f.chorusFeedback);
    each(f.chorusRate);
    each(f.chorusDamping);
    each(f.ambienceType);
    each(f.ambienceWetDry);
    each(f.ambienceSize);
    each(f.ambiencePreDelay);
    each(f.ambienceDamping);
  }
};
static_assert(sizeof(EffectsFields) == 64);

class EffectsPreset : public PresetOfKind<EffectsFields> {
 public:
  /// As the base's constructor; a new preset has the defaults of the parameter table, frequencies
  /// and dampings at their steps, which are the next higher ones.
  EffectsPreset(const FSRef& ref, const char* name, bool create);
  EffectsPreset(const EffectsPreset& source, const unsigned char* newName, const FSRef* folder);
};

}  // namespace cairnset
