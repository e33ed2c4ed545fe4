#include "presets/PresetReferences.h"

#include "presets/ProgramPreset.h"
#include "presets/SessionPreset.h"

namespace cairnset {

using Field = char (&)[PresetReference::kWidth];

const PresetReference kProgramEffectsReference{
    kProgramKind, kEffectsKind,
    [](Preset& p) -> Field { return static_cast<ProgramPreset&>(p).fields.effectsName; }};
const PresetReference kSessionProgramReference{
    kSessionKind, kProgramKind,
    [](Preset& p) -> Field { return static_cast<SessionPreset&>(p).fields.programName; }};
const PresetReference kSessionVelocityMapReference{
    kSessionKind, kVelocityMapKind,
    [](Preset& p) -> Field { return static_cast<SessionPreset&>(p).fields.velocityMapName; }};

const std::array<const PresetReference*, 3> kPresetReferences{
    &kProgramEffectsReference, &kSessionProgramReference, &kSessionVelocityMapReference};

const PresetReference* referenceTo(const Preset& preset) {
  for (const PresetReference* reference : kPresetReferences) {
    if (static_cast<long>(reference->to) == preset.getPresetType()) return reference;
  }
  return nullptr;
}

std::string_view PresetReference::name(const Preset& preset) const {
  return nameInField(field(const_cast<Preset&>(preset)));
}

void PresetReference::setName(Preset& preset, const char* name) const {
  setNameInField(field(preset), name);
}

}  // namespace cairnset
