// Preset files made from the file format alone, so that the program does not vouch for itself.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace cairnset {

struct KindFormat {
  const char* folder;
  const char* code;
  std::size_t references;  // name fields of 64 bytes, first in the payload
  unsigned declared;       // payload length as stored
  std::size_t payload;     // payload length as it is, behind the stored one
};

inline const KindFormat& formatOf(const std::string& path) {
  static constexpr KindFormat kKinds[] = {{"Velocity Maps", "VMap", 0, 10, 10},
                                          {"Effects", "Effx", 0, 63, 63},
                                          {"Programs", "Prog", 1, 108, 172},
                                          {"Sessions", "Sess", 2, 150, 150}};
  for (const KindFormat& kind : kKinds) {
    if (path.substr(0, path.find('/')) == kind.folder) return kind;
  }
  throw std::runtime_error("in no kind's folder: " + path);
}

struct PresetFile {
  std::string path;  // from the kind's folder on; its end, with ":" for "/", is the stored name
  bool rom = false;
  long index = 0;
  std::vector<std::string> references{};  // those not given are to "Default"
  long keyset = -1;                       // of a program; -1 for filling like all other fields
  bool isZero = false;                    // instead of filling, references too

  std::string bytes() const {
    const auto big = [](unsigned long value) {
      std::string four;
      for (int shift = 24; shift >= 0; shift -= 8)
        four += static_cast<char>(value >> shift & 0xFF);
      return four;
    };
    const auto field = [](std::string text, std::size_t width) {
      text.resize(width, '\0');
      return text;
    };
    const KindFormat& kind = formatOf(path);
    std::string name = path.substr(path.rfind('/') + 1);
    for (char& c : name)
      c = c == ':' ? '/' : c;
    std::string payload;
    for (std::size_t i = 0; i < kind.references; ++i)
      payload += field(i < references.size() ? references[i] : "Default", 64);
    while (payload.size() < kind.payload)
      payload += static_cast<char>('!' + payload.size() % 64);  // no float of these is a NaN
    if (keyset >= 0) payload.replace(68, 4, big(static_cast<unsigned long>(keyset)));
    if (isZero) payload.assign(kind.payload, '\0');
    return std::string("OlPs") + kind.code + big(93 + kind.payload) +
           field(name.substr(0, 63), 64) + std::string(8, '\0') + (rom ? '\1' : '\0') +
           big(static_cast<unsigned long>(index)) + big(kind.declared) + payload;
  }
};

}  // namespace cairnset
