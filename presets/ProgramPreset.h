// A playable piano: an effects preset by name, two keysets and their settings.
#pragma once

#include "presets/PresetKinds.h"
#include "presets/PresetOfKind.h"

#pragma GCC visibility push(default)
namespace cairnset {

/// The instrument's keymaps. This system has none: pointers to it are null and are not kept.
class KeymapManager;

/// Payload in the file, 176 bytes: declared length 108 (4), then all fields below in order. 108
/// does not cover the two keyset names, though they are written too: instruments in the field
/// expect it so.
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

  /// Calls `each` with all fields of the file, in its order.
  template <typename Self, typename Each>
  static void forEach(Self& f, Each each) {
    each(f.effectsName, f.softPedalSamplesOn, f.releaseSamplesOn, f.synthLayerOn,
         f.sustainResonanceOn, f.pianoKeyset, f.synthKeymap, f.timbre, f.sustainResonancePreset,
         f.dynamicRange, f.keyNoise, f.stereoWidth, f.releaseTime, f.synthGain,
         f.sustainResonanceGain, f.pianoKeysetName, f.synthKeysetName);
  }

  /// The defaults of the parameter table.
  void setDefaults();
};
static_assert(sizeof(ProgramFields) == 172);

class ProgramPreset : public PresetOfKind<ProgramFields> {
 public:
  ProgramPreset(KeymapManager*, const FSRef& ref, const char* name, bool create)
      : PresetOfKind(ref, name, create) {}
  ProgramPreset(KeymapManager*, const ProgramPreset& source, const unsigned char* newName,
                const FSRef* folder);
};

}  // namespace cairnset
#pragma GCC visibility pop
