// The host's file system, by reference. One set of operations, the same on every POSIX host.
//
// Common to all: a result of 0 is success, a negative one is a code of host/ResultCodes.h, and
// outputs are then left as they were unless the operation says otherwise. An operation on an item
// returns fnfErr where the folder has none of that name, dirNFErr where the folder itself is
// missing or is no real folder, errFSBadFSRef for a reference that was never a place. Symbolic
// links are aliases: no operation but FSPathMakeRef and FSResolveAliasFile follows one. Interrupted
// and short transfers are completed here. Nothing is thread-safe.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/HostTypes.h"
#include "host/ResultCodes.h"

#pragma GCC visibility push(default)
namespace cairnset {

// --- Paths (Catalog.cpp) ---------------------------------------------------------------------

/// The reference of the item at a path as a user gives it: relative or absolute, links resolved.
/// The item must exist. `isDirectory` may be null.
[[nodiscard]] OSErr FSPathMakeRef(const char* path, FSRef* ref, bool* isDirectory);

/// The absolute path, with its NUL, into `size` bytes; the item must exist. bdNamErr where it does
/// not fit; nothing is ever cut.
[[nodiscard]] OSErr FSRefMakePath(const FSRef* ref, char* path, std::size_t size);

/// The reference of the item that an FSSpec names; the item must exist.
[[nodiscard]] OSErr FSpMakeFSRef(const FSSpec* fsSpec, FSRef* ref);

// --- Catalogue (Catalog.cpp) -----------------------------------------------------------------

using FSCatalogInfoBitmap = std::uint32_t;
enum : FSCatalogInfoBitmap {
  kFSCatInfoNone = 0,
  kFSCatInfoNodeFlags = 1u << 1,
  kFSCatInfoParentDirID = 1u << 3,
  kFSCatInfoNodeID = 1u << 4,
  kFSCatInfoCreateDate = 1u << 5,
};

/// Set in nodeFlags where the item is a folder (bit 4).
inline constexpr std::uint16_t kFSNodeIsDirectoryMask = 0x0010;

struct FSCatalogInfo {
  std::uint16_t nodeFlags = 0;
  std::uint32_t parentDirID = 0;
  std::uint32_t nodeID = 0;
  /// Seconds since 1904-01-01 UTC in the upper 48 bits, 65536ths of a second in the lower 16.
  std::uint64_t createDate = 0;
};

/// Returns the requested fields of an existing item. Each output may be null; with `which` none and
/// all outputs null it only tests that the item exists. An FSSpec holds at most 63 bytes of name: a
/// held name that is longer, or from which the item could not be found again, is shortened and ends
/// in "#" and the node number in hexadecimal, by which FSpMakeFSRef finds it.
[[nodiscard]] OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which,
                                     FSCatalogInfo* info, HFSUniStr255* name, FSSpec* fsSpec,
                                     FSRef* parent);

/// Sets the creation date, the only field that can be set; paramErr for any other. The date is
/// kept as an attribute of the item, where the volume has these; ioErr where it has none.
[[nodiscard]] OSErr FSSetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which,
                                     const FSCatalogInfo* info);

/// The reference of the item `name` in `folder`; the item must exist.
[[nodiscard]] OSErr FSMakeFSRefUnicode(const FSRef* folder, std::size_t length, const UniChar* name,
                                       std::uint32_t encodingHint, FSRef* ref);

/// noErr where both denote one place, else errFSRefsDifferent. Costs no system call.
[[nodiscard]] OSErr FSCompareFSRefs(const FSRef* a, const FSRef* b);

/// True if both exist and are different files. Hard links to one file are the same, and so are two
/// spellings of one name where the volume ignores the difference.
[[nodiscard]] bool areTwoItems(const FSRef& a, const FSRef& b);

/// The folder that holds the place and its exact name, read off the reference: no system call, and
/// the item need not exist. False, outputs cleared, for an invalid reference or the root.
bool placeOf(const FSRef& ref, FSRef* folder, HFSUniStr255* name);

// --- Changing (Changes.cpp) -------------------------------------------------------------------

/// Makes an empty file; dupFNErr where the name is taken. The outputs may be null.
[[nodiscard]] OSErr FSCreateFileUnicode(const FSRef* folder, std::size_t length,
                                        const UniChar* name, FSRef* ref, FSSpec* fsSpec);
/// Makes a folder; otherwise as FSCreateFileUnicode.
[[nodiscard]] OSErr FSCreateDirectoryUnicode(const FSRef* folder, std::size_t length,
                                             const UniChar* name, FSRef* ref, FSSpec* fsSpec,
                                             std::uint32_t* dirID);
/// Renames in place and returns the new reference (`newRef` may be null, or `ref` itself). Never
/// replaces: dupFNErr where the name is taken, unless by the item itself: on a volume that ignores
/// case, or as a second name of the file, in which case the old name is simply removed.
[[nodiscard]] OSErr FSRenameUnicode(const FSRef* ref, std::size_t length, const UniChar* name,
                                    std::uint32_t encodingHint, FSRef* newRef);
/// Moves into `folder` under the same name; otherwise as FSRenameUnicode. diffVolErr between
/// volumes.
[[nodiscard]] OSErr FSMoveObject(const FSRef* ref, const FSRef* folder, FSRef* newRef);
/// The same, but replaces a file or alias of that name. At every moment one of the two has the
/// name.
[[nodiscard]] OSErr FSMoveObjectReplacing(const FSRef* ref, const FSRef* folder, FSRef* newRef);
/// Gives a file a second name beside its own, in its folder; FSRenameUnicode to that name then
/// removes the first one; in between both names lead to the file. Never replaces: dupFNErr where
/// the name is taken, unless by the file itself. An error where the volume has no hard links.
/// `newRef`, which may be null, is the place of the second name.
[[nodiscard]] OSErr FSAddNameUnicode(const FSRef* ref, std::size_t length, const UniChar* name,
                                     FSRef* newRef);
/// Deletes a file, an alias, or an empty folder (fBsyErr where it is not empty).
[[nodiscard]] OSErr FSDeleteObject(const FSRef* ref);
/// Waits until the file's contents, or the folder's names, are on the disk, safe from a loss of
/// power. noErr too where the volume has no such operation.
[[nodiscard]] OSErr FSFlushObject(const FSRef* ref);
/// The same for the whole volume that the item is on, including what others wrote; ioErr where the
/// system cannot.
[[nodiscard]] OSErr FSFlushVolume(const FSRef* ref);

// --- Aliases (Aliases.cpp) --------------------------------------------------------------------

/// Whether the existing item is an alias file, and (where not null) whether it is a folder.
[[nodiscard]] OSErr FSIsAliasFile(const FSRef* ref, bool* isAlias, bool* isFolder);
/// Replaces `ref` by what the alias points to: the end of the chain with `resolveChains`, else one
/// step. An item that is no alias stays. fnfErr where the target is missing, ioErr for a loop.
[[nodiscard]] OSErr FSResolveAliasFile(FSRef* ref, bool resolveChains, bool* targetIsFolder,
                                       bool* wasAlias);
/// Makes an alias file `name` in `folder` that points to the existing `target`; dupFNErr where the
/// name is taken.
[[nodiscard]] OSErr FSCreateAliasFile(const FSRef* folder, std::size_t length, const UniChar* name,
                                      const FSRef* target, FSRef* ref);

// --- Listing a folder (Iterators.cpp) ----------------------------------------------------------

/// The number of an open iterator; 0 is none.
using FSIterator = std::uint32_t;

/// Reads the whole listing of a folder, in the order of host/text/Names.h's sort keys, folders,
/// files and aliases together; FIFOs, sockets and devices are left out, so that nobody opens one.
/// At its end an iterator keeps next to no memory, so one that is never closed does no harm. A
/// listing that fails half-way is an error.
[[nodiscard]] OSErr FSOpenIterator(const FSRef* folder, std::uint32_t flags, FSIterator* iterator);

/// Returns up to `maximum` further items. `infos` and `refs` may be null; of the infos only
/// nodeFlags, nodeID and parentDirID can be asked for, and are those of the time of listing: they
/// cost no system call. errFSNoMoreItems at the end, with `*actual` still counting the items that
/// this call returned.
[[nodiscard]] OSErr FSGetCatalogInfoBulk(FSIterator iterator, std::size_t maximum,
                                         std::size_t* actual, FSCatalogInfoBitmap which,
                                         FSCatalogInfo* infos, FSRef* refs);
OSErr FSCloseIterator(FSIterator iterator);

// --- Forks (Forks.cpp) -------------------------------------------------------------------------

enum : std::int8_t { fsRdPerm = 1, fsWrPerm = 2, fsRdWrPerm = 3 };
enum : std::uint16_t { fsAtMark = 0, fsFromStart = 1, fsFromLEOF = 2, fsFromMark = 3 };

/// The data fork's name, which is empty; the only fork there is.
OSErr FSGetDataForkName(HFSUniStr255* name);

/// Opens the data fork of a regular file and returns its fork number, from 1 up. Never waits: a
/// FIFO, socket, device, folder or alias is refused with ioErr at once.
[[nodiscard]] OSErr FSOpenFork(const FSRef* ref, std::size_t length, const UniChar* forkName,
                               std::int8_t permissions, std::int16_t* fork);
/// Reads up to `count` bytes; eofErr where there were fewer, with `*actual` set to how many. The
/// mark moves past what was read. `actual` may be null.
[[nodiscard]] OSErr FSReadFork(std::int16_t fork, std::uint16_t positionMode, std::int64_t offset,
                               std::size_t count, void* buffer, std::size_t* actual);
/// Writes all of `count` bytes, or fails; the file grows as needed and is never cut. Up to 1024
/// bytes to a fork that can be read too are all written or, where the volume allows, none: what a
/// failing write has changed is put back.
[[nodiscard]] OSErr FSWriteFork(std::int16_t fork, std::uint16_t positionMode, std::int64_t offset,
                                std::size_t count, const void* buffer, std::size_t* actual);
[[nodiscard]] OSErr FSSetForkPosition(std::int16_t fork, std::uint16_t positionMode,
                                      std::int64_t offset);
[[nodiscard]] OSErr FSGetForkPosition(std::int16_t fork, std::int64_t* position);
[[nodiscard]] OSErr FSGetForkSize(std::int16_t fork, std::int64_t* size);
/// Closes the fork. A close that fails is a write that may be lost, and is an error.
[[nodiscard]] OSErr FSCloseFork(std::int16_t fork);

// --- Volumes and special folders (Volumes.cpp) ---------------------------------------------------

/// The one volume that this layer shows, and its number.
inline constexpr std::int16_t kVolumeNumber = -100;

struct VolumeInfo {
  std::int16_t vRefNum = 0;
  unsigned char name[64] = {};  // Pascal string
  std::uint64_t totalBytes = 0;
  std::uint64_t freeBytes = 0;
};

/// Describes the volume; 0 and kVolumeNumber both name it, nsvErr for any other number.
[[nodiscard]] OSErr PBXGetVolInfoSync(std::int16_t vRefNum, VolumeInfo* info);

enum FolderDomain : std::int16_t { kOnSystemDisk = -32768, kUserDomain = -32763 };
inline constexpr std::uint32_t kPreferencesFolderType = 0x70726566;  // 'pref'

/// The preferences folder of the user: $XDG_CONFIG_HOME, else ~/.config (~/Library/Preferences on
/// macOS). With `create` it is made, its parents too, where it is missing; fnfErr where it is not
/// there, paramErr for any other folder type.
[[nodiscard]] OSErr FSFindFolder(std::int16_t domain, std::uint32_t folderType, bool create,
                                 FSRef* folder);
/// The same as a volume and folder number.
[[nodiscard]] OSErr FindFolder(std::int16_t domain, std::uint32_t folderType, bool create,
                               std::int16_t* vRefNum, std::int32_t* dirID);

}  // namespace cairnset
#pragma GCC visibility pop
