// Names between the volume, Unicode and Mac Roman, the order of a folder, and the rules for file
// names. Every buffer has exactly the room that the headers ask for.
#include "fuzz/Fuzz.h"
#include "host/ResultCodes.h"
#include "host/text/Decomposition.h"
#include "host/text/FileNameRules.h"
#include "host/text/NameConversions.h"
#include "host/text/Names.h"
#include "host/text/PascalStrings.h"
#include "host/text/Utf8.h"
#include "tool/FilenameRepair.h"

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

void checkAnyUnits(const std::string& text) {
  std::u16string any(text.size() / 2, u'\0');
  if (!any.empty()) std::memcpy(any.data(), text.data(), 2 * any.size());
  std::string volume;
  if (volumeNameFromUnicode(any, volume) == noErr)
    check(unicodeFromVolumeName(volume) == any, "exact inverses", volume);
  (void)heldNameFromUnicode(any);
}

void checkRules(const std::string& name) {
  const auto corrected = exactCopy(name), pascal = exactCopy(name);
  RemoveAllIllegalFilenameCharsInPlace(corrected.get());
  std::string want = name;
  for (char& c : want)
    if ((c >= 1 && c < ' ') || std::string("\"*/<>?\\|").find(c) != want.npos) c = '_';
  want.resize(want.find_last_not_of(" .") + 1);
  check(want == corrected.get(), "corrected", name);
  if (name.size() > 255) return;
  const char* reported = isIllegalFilename(name.c_str());
  check(name == want ? reported == nullptr : want == reported, "illegal is what would change",
        name);
  CtoPstr(pascal.get());  // the NUL's place makes room for the length
  RemoveAllIllegalFilenameCharsInPlace(reinterpret_cast<unsigned char*>(pascal.get()));
  PtoCstr(pascal.get());
  check(want == pascal.get(), "Pascal strings have the same rules", name);
}

}  // namespace
}  // namespace cairnset

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace cairnset;
  FuzzedDataProvider input(data, size);
  const auto bufferSize = input.ConsumeIntegralInRange<std::size_t>(0, 300);
  std::string text = takeText(input, 400);
  checkRules(text);
  checkHeldName(text, bufferSize);
  checkAnyUnits(text);
  std::erase(text, '/');
  checkVolumeName(text);
  return 0;
}
