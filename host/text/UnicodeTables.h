// What host/text/Decomposition.h looks up: data only, of Unicode 3.2, so that no order ever
// changes. Made by scripts/make-unicode-tables. Each table is sorted by its first member.
#pragma once

#include <cstdint>
#include <span>

namespace cairnset {

/// One step of a canonical decomposition; `second` is 0 where there is one character only. The
/// parts may decompose further. Hangul syllables are not in the table: they follow a rule.
struct Decomposition {
  char32_t character, first, second;
};

/// Characters that join the one before them, with their canonical combining class.
struct JoiningRun {
  char32_t first, last;
  std::uint8_t combiningClass;
};

/// The class of a character that joins the one before but is never moved past another: the second
/// parts of decompositions that have no combining class, vowels and finals of Hangul among them.
inline constexpr std::uint8_t kJoinsInPlace = 255;

/// Every `step`-th character from `first` to `last` has its lower-case form `offset` further on.
/// Characters that decompose are left out.
struct LowerCaseRun {
  char32_t first, last;
  std::uint8_t step;
  std::int32_t offset;
};

extern const std::span<const Decomposition> kDecompositions;
extern const std::span<const JoiningRun> kJoiningRuns;
extern const std::span<const LowerCaseRun> kLowerCaseRuns;

}  // namespace cairnset
