#include "presets/PresetReferences.h"

#include "presets/ProgramPreset.h"
#include "presets/SessionPreset.h"

namespace cairnset {

namespace {

using Field = char (&)[PresetReference::kWidth];

Field effectsName(Preset& preset) {
  return static_cast<ProgramPreset&>(preset).fields.effectsName;
}

Field programName(Preset& preset) {
  return static_cast<SessionPreset&>(preset).fields.programName;
}

Field velocityMapName(Preset& preset) {
  return static_cast<SessionPreset&>(preset).fields.velocityMapName;
}

}  // namespace

const PresetReference kProgramEffectsReference{kProgramKind, kEffectsKind, effectsName};
const PresetReference kSessionProgramReference{kSessionKind, kProgramKind, programName};
const PresetReference kSessionVelocityMapReference{kSessionKind, kVelocityMapKind, velocityMapName};

const PresetReference* referenceTo(const Preset& preset) {
  for (const auto* reference :
       {&kProgramEffectsReference, &kSessionProgramReference, &kSessionVelocityMapReference}) {
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
