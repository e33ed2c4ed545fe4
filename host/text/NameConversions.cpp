#include "host/text/NameConversions.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <string_view>

#include "host/ResultCodes.h"
#include "host/text/MacRoman.h"
#include "host/text/Names.h"

namespace cairnset {

namespace {

constexpr std::size_t kMostCharacters = 254;
constexpr std::size_t kMostUnits = 255;

OSErr fromMacRoman(const void* text, std::size_t length, HFSUniStr255* name) {
  const auto* bytes = static_cast<const unsigned char*>(text);
  length = std::min(length, kMostCharacters);
  std::transform(bytes, bytes + length, name->unicode, unicodeFromMacRoman);
  name->length = static_cast<std::uint16_t>(length);
  return length == 0 ? OSErr{kNameIsEmpty} : OSErr{noErr};
}

OSErr refused(HFSUniStr255* name) {
  name->length = 0;
  return kNameNotConverted;
}

}  // namespace

OSErr ConvertCStringToHFSUniStr(const char* text, HFSUniStr255* name) {
  return text == nullptr ? refused(name) : fromMacRoman(text, std::strlen(text), name);
}

OSErr ConvertPStringToHFSUniStr(const unsigned char* text, HFSUniStr255* name) {
  return text == nullptr ? refused(name) : fromMacRoman(text + 1, text[0], name);
}

OSErr ConvertCFStringRefToHFSUniStr(CFStringRef text, HFSUniStr255* name) {
  const std::u16string_view units = text == nullptr ? std::u16string_view() : *text;
  name->length = static_cast<std::uint16_t>(units.copy(name->unicode, kMostUnits));
  return name->length == 0 ? OSErr{kNameIsEmpty} : OSErr{noErr};
}

OSErr ConvertHFSUniStrToCString(const HFSUniStr255* name, char* text, long size) {
  if (text == nullptr || size <= 0) return -1;
  text[0] = '\0';
  if (name == nullptr) return -1;
  const std::size_t units = std::min<std::size_t>(name->length, kMostUnits);
  const std::string held = heldNameFromUnicode({name->unicode, units});
  text[held.copy(text, static_cast<std::size_t>(size) - 1)] = '\0';
  return noErr;
}

}  // namespace cairnset
