#include "host/text/MacRoman.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include "host/text/Utf8.h"

namespace cairnset {

namespace {

// The characters of the bytes 0x80 to 0xFF, 16 a line.
constexpr char16_t kUpperHalf[] =
    u"ÄÅÇÉÑÖÜáàâäãåçéè"
    u"êëíìîïñóòôöõúùûü"
    u"†°¢£§•¶ß®©™´¨≠ÆØ"
    u"∞±≤≥¥µ∂∑∏π∫ªºΩæø"
    u"¿¡¬√ƒ≈∆«»…\u00A0ÀÃÕŒœ"
    u"–—“”‘’÷◊ÿŸ⁄€‹›ﬁﬂ"
    u"‡·‚„‰ÂÊÁËÈÍÎÏÌÓÔ"
    u"\uF8FFÒÚÛÙıˆ˜¯˘˙˚¸˝˛ˇ";
static_assert(std::size(kUpperHalf) == 128 + 1);

// Each lower-case letter and its upper-case form.
constexpr char16_t kLetterPairs[] = u"áÁàÀâÂäÄãÃåÅçÇéÉèÈêÊëËíÍìÌîÎïÏñÑóÓòÒôÔöÖõÕúÚùÙûÛüÜæÆøØœŒÿŸ";

constexpr unsigned char upperHalfByte(char16_t character) {
  return static_cast<unsigned char>(
      0x80 + (std::find(std::begin(kUpperHalf), std::end(kUpperHalf) - 1, character) - kUpperHalf));
}

}  // namespace

constinit const std::array<unsigned char, 256> kMacRomanUpperCase = [] {
  std::array<unsigned char, 256> upper{};
  for (std::size_t i = 0; i < upper.size(); ++i) {
    const bool isLower = i >= 'a' && i <= 'z';
    upper[i] = static_cast<unsigned char>(isLower ? i - 'a' + 'A' : i);
  }
  for (std::size_t i = 0; i + 1 < std::size(kLetterPairs); i += 2) {
    upper[upperHalfByte(kLetterPairs[i])] = upperHalfByte(kLetterPairs[i + 1]);
  }
  return upper;
}();

UniChar unicodeFromMacRoman(unsigned char byte) {
  return byte < 0x80 ? UniChar{byte} : kUpperHalf[byte - 0x80];
}

std::optional<unsigned char> macRomanFromUnicode(char32_t character) {
  if (character < 0x80) return static_cast<unsigned char>(character);
  const auto end = std::end(kUpperHalf) - 1;
  const auto found = std::find(std::begin(kUpperHalf), end, character);
  if (found == end) return std::nullopt;
  return static_cast<unsigned char>(0x80 + (found - kUpperHalf));
}

void appendUtf8FromMacRoman(std::string_view text, std::string& out) {
  for (;;) {
    const std::size_t ascii = asciiLength(text);
    out.append(text.data(), ascii);
    if (ascii == text.size()) break;
    appendUtf8(unicodeFromMacRoman(static_cast<unsigned char>(text[ascii])), out);
    text.remove_prefix(ascii + 1);
  }
}

}  // namespace cairnset
