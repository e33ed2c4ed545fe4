#include "host/text/Decomposition.h"

#include <algorithm>
#include <cstdint>
#include <span>

#include "host/text/UnicodeTables.h"
#include "host/text/Utf8.h"

namespace cairnset {

namespace {

// The run that holds the character, in a table of runs sorted by their first.
template <typename Run>
const Run* findRun(std::span<const Run> runs, char32_t character) {
  const auto next =
      std::upper_bound(runs.begin(), runs.end(), character,
                       [](char32_t wanted, const Run& run) { return wanted < run.first; });
  if (next == runs.begin()) return nullptr;
  const Run& run = *std::prev(next);
  return character <= run.last ? &run : nullptr;
}

constexpr char32_t kFirstDecomposed = 0xC0;

// 0 for a character that joins nothing.
std::uint8_t combiningClass(char32_t character) {
  if (character < 0x300) return 0;
  const JoiningRun* run = findRun(kJoiningRuns, character);
  return run != nullptr ? run->combiningClass : std::uint8_t{0};
}

// Names that differ only in the order of marks of different classes are the same.
void appendInOrder(char32_t character, std::u32string& out) {
  const std::uint8_t own = combiningClass(character);
  std::size_t at = out.size();
  if (own != 0 && own != kJoinsInPlace) {
    for (; at > 0; --at) {
      const std::uint8_t before = combiningClass(out[at - 1]);
      if (before == kJoinsInPlace || before <= own) break;
    }
  }
  out.insert(at, 1, character);
}

void appendSyllable(char32_t index, std::u32string& out) {
  constexpr char32_t kVowels = 21, kFinals = 28;
  out += static_cast<char32_t>(U'\u1100' + index / (kVowels * kFinals));
  out += U'\u1161' + index / kFinals % kVowels;
  if (index % kFinals != 0) out += U'\u11A7' + index % kFinals;
}

// A character's parts have parts of their own three times over at most.
// NOLINTNEXTLINE(misc-no-recursion)
void appendDecomposed(char32_t character, std::u32string& out) {
  constexpr char32_t kFirstSyllable = 0xAC00, kLastSyllable = 0xD7A3;
  if (character < kFirstDecomposed) {
    out += character;
    return;
  }
  if (character >= kFirstSyllable && character <= kLastSyllable) {
    appendSyllable(character - kFirstSyllable, out);
    return;
  }
  const auto found = std::lower_bound(
      kDecompositions.begin(), kDecompositions.end(), character,
      [](const Decomposition& entry, char32_t wanted) { return entry.character < wanted; });
  if (found == kDecompositions.end() || found->character != character) {
    appendInOrder(character, out);
    return;
  }
  appendDecomposed(found->first, out);
  if (found->second != 0) appendDecomposed(found->second, out);
}

}  // namespace

std::u32string decomposed(std::u16string_view text) {
  std::u32string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t character = text[i];
    if (character >= 0xD800 && character < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
        text[i + 1] < 0xE000) {
      character = characterOfPair(character, text[++i]);
    }
    if (character < kFirstDecomposed) {
      out += character;
    } else {
      appendDecomposed(character, out);
    }
  }
  return out;
}

bool joinsPrevious(char32_t character) {
  return combiningClass(character) != 0;
}

char32_t lowerCase(char32_t character) {
  if (character < 0x80) return character >= 'A' && character <= 'Z' ? character + 0x20 : character;
  const LowerCaseRun* run = findRun(kLowerCaseRuns, character);
  if (run == nullptr || (character - run->first) % run->step != 0) return character;
  return character + static_cast<char32_t>(run->offset);
}

}  // namespace cairnset
