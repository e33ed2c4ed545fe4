// The three references between presets, each a name in a field of 64 bytes.
#pragma once

#include <array>
#include <string_view>

#include "presets/Preset.h"
#include "presets/PresetKinds.h"

#pragma GCC visibility push(default)
namespace cairnset {

/// A preset of kind `from` names one of kind `to`.
struct PresetReference {
  static constexpr std::size_t kWidth = 64;

  PresetKind from;
  PresetKind to;
  /// The field, in a preset of kind `from`.
  char (&(*field)(Preset& preset))[kWidth];

  /// The name as stored, at most 64 bytes; valid until the reference is changed.
  std::string_view name(const Preset& preset) const;
  /// Stores a name, padded with zeros or truncated to 64 bytes. In memory only.
  void setName(Preset& preset, const char* name) const;
};

extern const PresetReference kProgramEffectsReference;
extern const PresetReference kSessionProgramReference;
extern const PresetReference kSessionVelocityMapReference;

/// All three, in the order in which the reports check them.
extern const std::array<const PresetReference*, 3> kPresetReferences;

/// The reference by which others name this preset; null for a kind that no other names.
[[nodiscard]] const PresetReference* referenceTo(const Preset& preset);

}  // namespace cairnset
#pragma GCC visibility pop
