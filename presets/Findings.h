// What a load passed over, and what a command could not do: a list that other programs can read
// too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "host/HostTypes.h"
#include "host/ResultCodes.h"
#include "presets/PresetKinds.h"

#pragma GCC visibility push(default)
namespace cairnset {

enum class FindingSort : std::uint8_t {
  // Passed over by a load: nothing that is in it is in the library, and nothing in it is rewritten.
  kFileNotOpened,      // not even for reading
  kFileNotWritable,    // a preset of the kind that can be read, but not be opened for writing
  kFileNotRead,        // opened, but its bytes cannot be read
  kFolderNotListed,    // also a kind's folder that is a file or a link
  kKindFolderNotMade,  // the folder `name` in `place` was neither found nor made

  // The rest of what a load has found.
  kUserFolderNotMade,  // the same of "User": the kind is read, and nothing is made in its folder
  kLinkNotFollowed,    // links never are
  kOtherKind,          // a preset of `fileKind` in the folder of another kind
  kDamaged,            // a preset, or the start of one, that is not whole
  kDefaultNotMade,     // the list has none on the disk; dupFNErr: its name is taken
  kDefaultNotWritten,  // it is there, but could not be made ROM with index 0
  kPresetsFolderMade,  // there was no "Presets" in `place`, the folder given
  kInsideLibrary,      // the folder given lies in the library at `place`
  kHoldsPresets,       // "Presets" was made in `place`, which itself looks like a library's folder

  // Sorting.
  kReplaced,  // the file at `place` was replaced by the preset that had been at `from`
  kNotMoved,  // the preset at `from` could not be moved to the folder `name` in `place`, and stays
};

/// True for what is missing in the library because of an error.
[[nodiscard]] constexpr bool isPassedOver(FindingSort sort) {
  return sort <= FindingSort::kKindFolderNotMade;
}

struct Finding {
  FindingSort sort{};
  std::uint32_t kind = kAllKinds;  // of the list, as in PresetKind; kAllKinds for no list
  FSRef place{};                   // the item itself, unless the sort says otherwise
  OSErr result = noErr;            // why, as a host result code
  std::string name{};              // as held (Mac Roman), of the preset or folder
  FSRef from{};
  std::uint32_t fileKind = kAllKinds;
  // kDamaged: the file's size, and that of a whole preset, in bytes. If they are equal, its header
  // states another size. 0 is unknown.
  std::int64_t size = 0, expectedSize = 0;
};

/// All findings are counted. Of a sort and kind only the first ones are kept, so that memory does
/// not grow with the library.
class Findings {
 public:
  static constexpr std::size_t kMostKept = 10;

  void add(Finding finding);
  /// Forgets what a load has found of a kind; for kAllKinds, of the library as a whole.
  void forgetLoadOf(std::uint32_t kind);
  /// Forgets everything.
  void clear();

  /// Those kept, in the order in which they were found, which within a sort is that of the library.
  const std::vector<Finding>& kept() const { return _kept; }
  /// How many there were of a sort, in all kinds or in one.
  std::size_t count(FindingSort sort) const;
  std::size_t count(FindingSort sort, std::uint32_t kind) const;

  /// How many files and folders of a kind a load passed over, and the first of them (null if none;
  /// valid until the next change).
  std::size_t passedOver(std::uint32_t kind) const;
  const Finding* firstPassedOver(std::uint32_t kind) const;

 private:
  std::vector<Finding> _kept;
  std::map<std::pair<FindingSort, std::uint32_t>, std::size_t> _counts;
};

}  // namespace cairnset
#pragma GCC visibility pop
