// The global set-up: a velocity map and a program by name, tuning and engine settings.
#pragma once

#include "presets/PresetKinds.h"
#include "presets/PresetOfKind.h"

#pragma GCC visibility push(default)
namespace cairnset {

/// Payload in the file, 154 bytes: declared length 150 (4), then the fields below in order without
/// the spare bytes.
struct SessionFields {
  static constexpr std::uint32_t kKind = kSessionKind;
  static constexpr const char* kTypeName = "[Sess]";
  static constexpr std::uint32_t kDeclaredLength = 150;

  char velocityMapName[64];
  char programName[64];
  std::uint8_t stereoPerspective;
  std::uint8_t tuning;
  std::uint16_t voices;
  std::uint16_t bufferSize;  // the converter's index, not a size
  std::uint16_t octave;
  std::uint16_t transpose;
  std::uint8_t spare[2];
  std::int32_t fineTune;
  float gain;
  float a440;

  /// Calls `each` with all fields of the file, in its order.
  template <typename Self, typename Each>
  static void forEach(Self& f, Each each) {
    each(f.velocityMapName, f.programName, f.stereoPerspective, f.tuning, f.voices, f.bufferSize,
         f.octave, f.transpose, f.fineTune, f.gain, f.a440);
  }

  /// The defaults of the parameter table.
  void setDefaults();
};
static_assert(sizeof(SessionFields) == 152);

class SessionPreset : public PresetOfKind<SessionFields> {
 public:
  using PresetOfKind::PresetOfKind;
};

}  // namespace cairnset
#pragma GCC visibility pop
