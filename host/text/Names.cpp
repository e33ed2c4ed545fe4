#include "host/text/Names.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>

#include "host/ResultCodes.h"
#include "host/text/Decomposition.h"
#include "host/text/MacRoman.h"
#include "host/text/Utf8.h"

namespace cairnset {

namespace {

constexpr bool isAscii(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}

// Splits a volume name, so that the many ASCII characters of a library's 100,000 names need no
// tables: `other` gets each run of characters beyond ASCII with the ASCII character before it, to
// which a mark may belong, and `plain` gets the rest.
template <typename Plain, typename Other>
void takeInPieces(std::string_view name, Plain plain, Other other) {
  while (!name.empty()) {
    const std::size_t ascii = asciiLength(name);
    if (ascii == name.size()) return plain(name);
    const std::size_t count = ascii - (ascii > 0 ? 1 : 0);
    plain(name.substr(0, count));
    const auto end =
        std::find_if(name.begin() + static_cast<std::ptrdiff_t>(ascii), name.end(), isAscii);
    const auto taken = static_cast<std::size_t>(end - name.begin());
    other(name.substr(count, taken - count));
    name.remove_prefix(taken);
  }
}

template <typename Character>
constexpr Character swapSeparators(Character c) {
  return c == ':' ? Character{'/'} : c == '/' ? Character{':'} : c;
}

constexpr char asciiKey(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : swapSeparators(c);
}

constexpr bool isHigh(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}

constexpr bool isLow(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

// The unit for a byte that is not part of valid UTF-8.
constexpr bool isEscapedByte(char16_t unit) {
  return unit >= 0xDC80 && unit <= 0xDCFF;
}

constexpr char16_t highOf(char32_t character) {
  return static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
}

constexpr char16_t lowOf(char32_t character) {
  return static_cast<char16_t>(0xDC00 + (character & 0x3FF));
}

// The Mac Roman character that a base letter and one mark compose to.
std::optional<unsigned char> composed(char32_t base, char32_t mark) {
  using Pair = std::pair<char32_t, char32_t>;
  static const auto pairs = [] {
    std::array<Pair, 0x80> list{};
    for (std::size_t i = 0; i < list.size(); ++i) {
      const UniChar character = unicodeFromMacRoman(static_cast<unsigned char>(0x80 + i));
      const std::u32string parts = decomposed({&character, 1});
      if (parts.size() == 2) list[i] = {parts[0], parts[1]};
    }
    // Not decomposed by the instrument's host, but by others.
    list[*macRomanFromUnicode(0x2260) - 0x80u] = {U'=', 0x338};
    return list;
  }();
  const auto found = std::find(pairs.begin(), pairs.end(), Pair{base, mark});
  if (found == pairs.end()) return std::nullopt;
  return static_cast<unsigned char>(0x80 + (found - pairs.begin()));
}

// A mark never hides punctuation, a blank or a control byte, which the file-name rules must see,
// nor a byte that is not UTF-8.
bool takesMarks(char32_t base) {
  const bool isLetterOrDigit =
      (base >= '0' && base <= '9') || (base >= 'A' && base <= 'Z') || (base >= 'a' && base <= 'z');
  return isLetterOrDigit || (base >= 0x80 && !isLow(base));
}

}  // namespace

std::u16string unicodeFromVolumeName(std::string_view volumeName) {
  std::u16string name;
  name.reserve(volumeName.size());
  while (!volumeName.empty()) {
    const char32_t character = swapSeparators(takeUtf8(volumeName));
    if (character >= 0x10000) {
      name += highOf(character);
      name += lowOf(character);
    } else {
      name += static_cast<char16_t>(character);
    }
  }
  return name;
}

VolumeName volumeNameFromUnicode(std::u16string_view name) {
  constexpr std::size_t kMostBytes = 255;
  std::string bytes;
  bool hasEscapes = false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char16_t unit = name[i];
    if (unit == 0 || unit == ':') return {bdNamErr, {}};
    if (isHigh(unit) && i + 1 < name.size() && isLow(name[i + 1])) {
      appendUtf8(characterOfPair(unit, name[++i]), bytes);
    } else if (isEscapedByte(unit)) {
      bytes += static_cast<char>(unit - 0xDC00);
      hasEscapes = true;
    } else if (isHigh(unit) || isLow(unit)) {
      return {bdNamErr, {}};
    } else {
      appendUtf8(swapSeparators(unit), bytes);
    }
  }
  if (bytes.empty() || bytes == "." || bytes == ".." || bytes.size() > kMostBytes)
    return {bdNamErr, {}};
  // Escaped bytes that together are valid UTF-8 would be the volume name of another name.
  if (hasEscapes && unicodeFromVolumeName(bytes) != name) return {bdNamErr, {}};
  return {noErr, std::move(bytes)};
}

std::string heldNameFromUnicode(std::u16string_view name) {
  const std::u32string text = decomposed(name);
  std::string held;
  held.reserve(text.size());
  for (std::size_t start = 0, end; start < text.size(); start = end) {
    end = start + 1;
    while (end < text.size() && joinsPrevious(text[end]))
      ++end;
    const std::size_t marks = end - start - 1;
    const auto alone = macRomanFromUnicode(text[start]);
    const auto whole = marks == 0   ? alone
                       : marks == 1 ? composed(text[start], text[end - 1])
                                    : std::nullopt;
    if (!whole && marks > 0 && !takesMarks(text[start])) {
      held += static_cast<char>(alone.value_or('_'));
    }
    held += static_cast<char>(whole.value_or('_'));
  }
  return held;
}

void appendHeldNameFromVolumeName(std::string_view volumeName, std::string& held) {
  takeInPieces(
      volumeName,
      [&held](std::string_view ascii) {
        const std::size_t start = held.size();
        held.append(ascii);
        std::transform(ascii.begin(), ascii.end(), held.data() + start, swapSeparators<char>);
      },
      [&held](std::string_view other) {
        held += heldNameFromUnicode(unicodeFromVolumeName(other));
      });
}

std::string heldNameFromVolumeName(std::string_view volumeName) {
  std::string held;
  appendHeldNameFromVolumeName(volumeName, held);
  return held;
}

std::optional<std::string> heldNameFromShownText(std::string_view text) {
  std::string volumeName(text);
  std::transform(text.begin(), text.end(), volumeName.begin(), swapSeparators<char>);
  const std::u16string name = unicodeFromVolumeName(volumeName);
  std::string held = heldNameFromUnicode(name);
  std::u16string back;
  for (const char c : held)
    back += unicodeFromMacRoman(static_cast<unsigned char>(c));
  if (decomposed(back) != decomposed(name)) return std::nullopt;
  return held;
}

void appendSortKey(std::string_view volumeName, std::string& key) {
  takeInPieces(
      volumeName,
      [&key](std::string_view ascii) {
        const std::size_t start = key.size();
        key.append(ascii);
        std::transform(ascii.begin(), ascii.end(), key.data() + start, asciiKey);
      },
      [&key](std::string_view other) {
        // Surrogates go in as units of their own: the order is that of units, not of characters.
        for (const char32_t character : decomposed(unicodeFromVolumeName(other))) {
          const char32_t lower = lowerCase(character);
          if (lower >= 0x10000) appendUtf8(highOf(lower), key);
          appendUtf8(lower >= 0x10000 ? char32_t{lowOf(lower)} : lower, key);
        }
      });
}

}  // namespace cairnset
