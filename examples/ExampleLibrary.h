// Example libraries of any size: the same files, byte for byte, on every machine.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "host/HostTypes.h"

namespace cairnset {

/// The shape of a library. All but the first stress one part of the program.
enum class LibraryShape {
  kTypical,         // nested folders; a few of each fault that the tool reports
  kFewLarge,        // all presets of a kind loose in its root folder
  kManySmall,       // 20 presets in a folder
  kEqualIndices,    // as few-large, all with the same index
  kReverseIndices,  // as few-large, indexes descending in the order of the names
  kSameName,        // all of a kind with one name, each in its own folder
  kOneHub,          // all refer to one preset
  kDefaults,        // all named "Default" in different case, each in its own folder
  kBadNames,        // up to 1,000 names that Windows rejects, each referred to by 20 programs
  kLoose,           // as typical, with one preset in five to be sorted into folders
};

/// The names of the shapes, in the order of the enumeration.
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
/// folder. Stops at the first failure and returns it; the files written so far stay.
OSStatus makeExampleLibrary(const FSRef& items, std::size_t count, LibraryShape shape,
                            LibrarySummary& summary);

}  // namespace cairnset
