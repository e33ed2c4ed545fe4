// What the tests of presets share, and what holds of a preset file whatever its bytes are.
#pragma once

#include "host/text/PascalStrings.h"
#include "presets/PresetManager.h"
#include "presets/PresetReferences.h"
#include "tests/PresetFile.h"

namespace cairnset {

/// A Pascal string, which lasts until the next call.
inline unsigned char* pascal(const std::string& name) {
  static unsigned char buffer[256];
  C2PCopy(buffer, name.c_str());
  return buffer;
}

/// A preset of the kind with this code, or else a session; the rest is as its constructor has it.
inline std::unique_ptr<Preset> presetOf(const std::string& code, const FSRef& ref,
                                        const char* name = nullptr, bool create = false) {
  if (code == "VMap") return std::make_unique<VelocityMapPreset>(ref, name, create);
  if (code == "Effx") return std::make_unique<EffectsPreset>(ref, name, create);
  if (code == "Prog") return std::make_unique<ProgramPreset>(nullptr, ref, name, create);
  return std::make_unique<SessionPreset>(ref, name, create);
}

inline std::string imageOf(Preset& preset) {
  const auto size = static_cast<std::size_t>(preset.getFlattenedPreset(nullptr));
  return {preset.flattenedData(), size};
}

/// Loads a file of these bytes from the disk and from memory, compares, writes it out, loads it
/// again and relinks it. Answers how the first load went.
inline OSErr checkPresetFile(const TestFolder& folder, const std::string& bytes) {
  const auto from = [&bytes](std::size_t offset) {
    return bytes.substr(std::min(bytes.size(), offset));
  };
  folder.write("p", bytes);
  const FSRef ref = folder.ref("p");
  const std::string code = from(4).substr(0, 4);
  const auto preset = presetOf(code, ref), twin = presetOf(code, ref), blank = presetOf(code, ref);
  const OSErr status = preset->readIn();
  twin->setFlattenedPreset(bytes.data(), static_cast<long>(bytes.size()));
  const std::string image = imageOf(*preset);
  check(status == preset->status() && status == twin->status() && image == imageOf(*twin) &&
            twin->edited() && !preset->edited(),
        "disk and memory agree");
  check(status == noErr || image == imageOf(*blank), "what is refused changes nothing");
  if (status == noErr && bytes.size() == image.size()) {
    std::string same = bytes;  // but for the name and the declared length; what is reserved goes
    same.replace(12, 72, 72, '\0').replace(12, 1, "p").replace(89, 4, image, 89, 4);
    check(image == same, "a sound file is kept byte for byte");
  }
  const std::string tail = from(image.size());
  check(preset->writeOut() == noErr && folder.read("p") == image + tail, "the image, and a tail");
  preset->readIn();
  check(preset->status() == (tail.empty() ? noErr : OSErr{Preset::kWrongSize}),
        "its size is right");
  check(imageOf(*preset) == image && preset->equalParams(*twin), "what was written is read again");
  const std::string name = from(12).substr(0, 80).c_str();
  constexpr std::size_t kWidth = PresetReference::kWidth;
  for (const auto* reference :
       {&kProgramEffectsReference, &kSessionProgramReference, &kSessionVelocityMapReference}) {
    if (preset->getPresetType() != static_cast<long>(reference->from)) continue;
    const std::string before = imageOf(*preset);
    reference->setName(*preset, name.c_str());
    check(reference->name(*preset) == name.substr(0, kWidth), "a name is kept", name);
    const auto first = 93 + static_cast<std::size_t>(reference->field(*preset) -
                                                     static_cast<const char*>(preset->getData()));
    check(imageOf(*preset).replace(first, kWidth, before, first, kWidth) == before,
          "no other field is changed", name);
  }
  return status;
}

}  // namespace cairnset
