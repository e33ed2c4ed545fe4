// Preset files, made from the file format alone so that the program does not vouch for itself.
#pragma once

#include "tests/TestFolder.h"

namespace cairnset {

struct KindFormat {
  const char* folder;
  const char* code;
  std::size_t references;  // name fields of 64 bytes at the start of the payload
  unsigned declared;       // payload length as stored
  std::size_t payload;     // and as it is, without its own 4 bytes
  const char* refersTo[2];
};

inline constexpr KindFormat kKinds[] = {
    {"Velocity Maps", "VMap", 0, 10, 10, {}},
    {"Effects", "Effx", 0, 63, 63, {}},
    {"Programs", "Prog", 1, 108, 172, {"Effects"}},
    {"Sessions", "Sess", 2, 150, 150, {"Velocity Maps", "Programs"}}};

/// Of the kind in whose folder a path leads.
inline const KindFormat& formatOf(const std::string& path) {
  for (const KindFormat& kind : kKinds)
    if (path.substr(0, path.find('/')) == kind.folder) return kind;
  throw std::runtime_error("in no kind's folder: " + path);
}

inline std::string bigEndian(unsigned long value) {
  std::string four;
  for (int shift = 24; shift >= 0; shift -= 8)
    four += static_cast<char>(value >> shift & 0xFF);
  return four;
}

/// Zeros behind it, or what does not fit cut off.
inline std::string padded(std::string text, std::size_t width) {
  text.resize(width, '\0');
  return text;
}

struct PresetFile {
  std::string path;  // from the kind's folder on; its end, with ":" for "/", is the stored name
  bool rom = false;
  unsigned index = 0;
  std::vector<std::string> references{};  // those not given are to "Default"

  std::string bytes() const {
    const KindFormat& kind = formatOf(path);
    std::string name = path.substr(path.rfind('/') + 1, 63);
    std::replace(name.begin(), name.end(), ':', '/');
    std::string payload;
    for (std::size_t i = 0; i < kind.references; ++i)
      payload += padded(i < references.size() ? references[i] : "Default", 64);
    while (payload.size() < kind.payload)
      payload += static_cast<char>('!' + payload.size() % 61);  // no float of these is a NaN
    return std::string("OlPs") + kind.code + bigEndian(93 + kind.payload) + padded(name, 64) +
           std::string(8, '\0') + (rom ? '\1' : '\0') + bigEndian(index) +
           bigEndian(kind.declared) + payload;
  }
};

inline void put(const TestFolder& folder, const PresetFile& preset) {
  folder.write("lib/Presets/" + preset.path, preset.bytes());
}

}  // namespace cairnset
