// Libraries of any size to try the program on: the same files, byte for byte, on every machine.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "host/HostTypes.h"

namespace cairnset {

/// How a library is laid out. All but the first stress one part of the program.
enum class LibraryShape {
  kTypical,         // folders, nested ones too; a few faults of every sort that the tool reports
  kFewLarge,        // all presets of a kind loose in its root folder
  kManySmall,       // 20 presets in a folder
  kEqualIndices,    // as few-large, all with one index
  kReverseIndices,  // as few-large, indexes falling in the order of the names
  kSameName,        // all of a kind of one name, each in its own folder
  kOneHub,          // all refer to one preset
  kDefaults,        // all named "Default", with other capitals, each in its own folder
  kBadNames,        // up to 1,000 names that Windows rejects, each referred to by 20 programs
  kLoose,           // as typical, with one preset in five to be sorted into folders
};

/// Their names, in the order of the enumeration.
inline constexpr std::array<std::string_view, 10> kLibraryShapes = {
    "typical",   "few-large", "many-small", "equal-indices", "reverse-indices",
    "same-name", "one-hub",   "defaults",   "bad-names",     "loose"};

std::optional<LibraryShape> libraryShapeNamed(std::string_view name);

inline constexpr std::size_t kSmallestLibrary = 20;
inline constexpr std::size_t kLargestLibrary = 100000;

/// What was written.
struct LibrarySummary {
  std::array<std::size_t, 4> presets{};  // by kind: velocity maps, effects, programs, sessions
  std::size_t folders = 0;               // all of them, "Presets" included
  std::size_t loose = 0;                 // in the kinds' root folders, the "Default"s not counted
  std::size_t rejectedNames = 0;
  std::size_t lostReferences = 0;
};

/// Writes "Presets" with exactly `count` preset files, the four "Default"s included, into an empty
/// folder. Answers the first failure, upon which it stops; what was written by then stays.
OSStatus makeExampleLibrary(const FSRef& items, std::size_t count, LibraryShape shape,
                            LibrarySummary& summary);

}  // namespace cairnset
