#include "host/text/FileNameRules.h"

#include <cstddef>
#include <cstring>

#include "host/text/PascalStrings.h"

namespace cairnset {

namespace {

bool isIllegal(char c) {
  return (c >= 0x01 && c <= 0x1F) || (c != '\0' && std::strchr("\"*/<>?\\|", c) != nullptr);
}

void applyToPascal(unsigned char* name, void (*rule)(char*)) {
  P2CInPlace(name);
  rule(reinterpret_cast<char*>(name));
  C2PInPlace(name);
}

}  // namespace

void RemoveIllegalFilenameCharsInPlace(char* name) {
  for (; *name != '\0'; ++name) {
    if (isIllegal(*name)) *name = '_';
  }
}

void RemoveIllegalTrailingFilenameCharsInPlace(char* name) {
  std::size_t length = std::strlen(name);
  while (length > 0 && (name[length - 1] == ' ' || name[length - 1] == '.'))
    name[--length] = '\0';
}

void RemoveAllIllegalFilenameCharsInPlace(char* name) {
  RemoveIllegalFilenameCharsInPlace(name);
  RemoveIllegalTrailingFilenameCharsInPlace(name);
}

void RemoveIllegalFilenameCharsInPlace(unsigned char* name) {
  applyToPascal(name, RemoveIllegalFilenameCharsInPlace);
}

void RemoveIllegalTrailingFilenameCharsInPlace(unsigned char* name) {
  applyToPascal(name, RemoveIllegalTrailingFilenameCharsInPlace);
}

void RemoveAllIllegalFilenameCharsInPlace(unsigned char* name) {
  applyToPascal(name, RemoveAllIllegalFilenameCharsInPlace);
}

}  // namespace cairnset
