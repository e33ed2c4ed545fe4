// Conversions of names between the volume, Unicode and Mac Roman, the order of a folder, and the
// rules for file names.
#include "fuzz/Fuzz.h"
#include "host/ResultCodes.h"
#include "host/text/Decomposition.h"
#include "host/text/Names.h"
#include "host/text/PascalStrings.h"
#include "host/text/Utf8.h"
#include "tool/FilenameRepair.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace cairnset;
  FuzzedDataProvider input(data, size);
  std::string name = takeText(input, 300);
  if (const char* corrected = isIllegalFilename(name.c_str()); corrected != nullptr)
    check(isIllegalFilename(std::string(corrected).c_str()) == nullptr, "it is corrected", name);
  std::u16string any(name.size() / 2, u'\0');
  std::memcpy(any.data(), name.data(), 2 * any.size());
  std::string other, key, otherKey;
  if (const auto [result, volume] = volumeNameFromUnicode(any); result == noErr)
    check(unicodeFromVolumeName(volume) == any, "exact inverses", volume);
  std::erase(name, '/');
  const std::u16string unicode = unicodeFromVolumeName(name);
  const bool isPossible = !name.empty() && name != "." && name != ".." && name.size() <= 255;
  const auto [made, back] = volumeNameFromUnicode(unicode);
  check((made == noErr) == isPossible, "which names can be", name);
  check(back == (isPossible ? name : ""), "a name comes back", name);
  for (const char32_t c : decomposed(unicode)) {
    if (c >= 0xDC80 && c <= 0xDCFF) other += static_cast<char>(c - 0xDC00);  // not UTF-8
    if (c < 0xDC80 || c > 0xDCFF) appendUtf8(c == ':' ? U'/' : c == '/' ? U':' : c, other);
  }
  const std::string held = heldNameFromVolumeName(name);
  check(held == heldNameFromUnicode(unicode) && held.find('\0') == held.npos, "held", name);
  check(heldNameFromVolumeName(other) == held, "held alike in both spellings", name);
  appendSortKey(name, key), appendSortKey(other, otherKey);
  check(key == otherKey, "ordered alike in both spellings", name);
  return 0;
}
