// Names between the volume, Unicode and Mac Roman, and the order of a folder.
#include "fuzz/Fuzz.h"
#include "host/Decomposition.h"
#include "host/NameConversions.h"
#include "host/Names.h"
#include "host/ResultCodes.h"
#include "host/Utf8.h"

namespace cairnset {
namespace {

std::string keyOf(const std::string& volumeName) {
  std::string key;
  appendSortKey(volumeName, key);
  return key;
}

void checkVolumeName(const std::string& name) {
  const std::u16string unicode = unicodeFromVolumeName(name);
  const bool isPossible = !name.empty() && name != "." && name != ".." && name.size() <= 255;
  std::string back = "left over", other;
  check((volumeNameFromUnicode(unicode, back) == noErr) == isPossible, "which names can be", name);
  check(back == (isPossible ? name : ""), "a name comes back", name);
  for (const char32_t c : decomposed(unicode)) {
    if (c >= 0xDC80 && c <= 0xDCFF) other += static_cast<char>(c - 0xDC00);  // no UTF-8
    if (c < 0xDC80 || c > 0xDCFF) appendUtf8(c == ':' ? U'/' : c == '/' ? U':' : c, other);
  }
  const std::string held = heldNameFromVolumeName(name);
  check(held == heldNameFromUnicode(unicode) && held.find('\0') == held.npos, "held", name);
  check(heldNameFromVolumeName(other) == held, "held alike in both spellings", name);
  check(keyOf(other) == keyOf(name), "ordered alike in both spellings", name);
}

// A new name, Mac Roman, to the volume and back, and into a buffer of `size` bytes.
void checkHeldName(const std::string& held, std::size_t size) {
  HFSUniStr255 name;
  const auto text = exactCopy(held), buffer = exactCopy("", size);
  const OSErr made = ConvertCStringToHFSUniStr(text.get(), &name);
  check(made == (held.empty() ? OSErr{kNameIsEmpty} : OSErr{noErr}), "every text converts", held);
  std::string volume;
  if (volumeNameFromUnicode({name.unicode, name.length}, volume) == noErr)
    check(heldNameFromVolumeName(volume) == held.substr(0, 254), "a new name comes back", held);
  ConvertHFSUniStrToCString(&name, buffer.get(), static_cast<long>(size) + 1);
  check(buffer.get() == held.substr(0, std::min<std::size_t>(size, 254)), "cut to size", held);
}

}  // namespace
}  // namespace cairnset

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace cairnset;
  FuzzedDataProvider input(data, size);
  const auto bufferSize = input.ConsumeIntegralInRange<std::size_t>(0, 300);
  std::string first = takeText(input, 300), volume;
  checkHeldName(first, bufferSize);
  std::u16string any(first.size() / 2, u'\0');
  if (!any.empty()) std::memcpy(any.data(), first.data(), 2 * any.size());
  if (volumeNameFromUnicode(any, volume) == noErr)
    check(unicodeFromVolumeName(volume) == any, "exact inverses", volume);
  (void)heldNameFromUnicode(any);
  std::erase(first, '/');
  checkVolumeName(first);
  return 0;
}
