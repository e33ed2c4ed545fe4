// A playable piano: an effects preset by name, two keysets and their settings.
#pragma once

#include "presets/PresetKinds.h"
#include "presets/PresetOfKind.h"

namespace cairnset {

/// The instrument's keymaps. This system has none and hands out null.
class KeymapManager;

/// Payload in the file, 176 bytes: declared length 108 (4), then all fields below in order. 108
/// covers them only up to the two keyset names, though these are written too; instruments in the
/// field expect it so.
struct ProgramFields {
  static constexpr std::uint32_t kKind = kProgramKind;
  static constexpr const char* kTypeName = "[Prog]";
  static constexpr std::uint32_t kDeclaredLength = 108;

  char effectsName[64];
  std::uint8_t softPedalSamplesOn;
  std::uint8_t releaseSamplesOn;
  std::uint8_t synthLayerOn;
  std::uint8_t sustainResonanceOn;
  std::int32_t pianoKeyset;
  std::int32_t synthKeymap;
  std::int32_t timbre;
  std::int32_t sustainResonancePreset;
  float dynamicRange;
  float keyNoise;
  float stereoWidth;  // a fraction: 1 is 100 %
  float releaseTime;
  float synthGain;
  float sustainResonanceGain;
  char pianoKeysetName[32];
  char synthKeysetName[32];

  /// Every field of the file, in its order.
  template <typename Self, typename Each>
  static void forEach(Self& f, Each each) {
    each(f.effectsName);
    each(f.softPedalSamplesOn);
    each(f.releaseSamplesOn);
    each(f.synthLayerOn);
    each(f.sustainResonanceOn);
    each(f.pianoKeyset);
    each(f.synthKeymap);
    each(f.timbre);
    each(f.sustainResonancePreset);
    each(f.dynamicRange);
    each(f.keyNoise);
    each(f.stereoWidth);
    each(f.releaseTime);
    each(f.synthGain);
    each(f.sustainResonanceGain);
    each(f.pianoKeysetName);
    each(f.synthKeysetName);
  }
};
static_assert(sizeof(ProgramFields) == 172);

class ProgramPreset : public PresetOfKind<ProgramFields> {
 public:
  /// As the base's constructor; a new preset has the defaults of the parameter table. `keymaps` may
  /// be null and is not owned.
  ProgramPreset(KeymapManager* keymaps, const FSRef& ref, const char* name, bool create);
  ProgramPreset(KeymapManager* keymaps, const ProgramPreset& source, const unsigned char* newName,
                const FSRef* folder);

 private:
  [[maybe_unused]] KeymapManager* _keymaps;
};

}  // namespace cairnset
