// Paths and the catalogue, as host/files/FileManager.h has it.
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstring>
#include <iterator>
#include <string>

#include "host/Host.h"
#include "host/files/FileManager.h"
#include "host/files/Location.h"
#include "host/text/Names.h"

namespace cairnset {

namespace {

constexpr std::int64_t kSecondsFrom1904To1970 = 2'082'844'800;
constexpr const char* kCreationDateAttribute = "user.cairnset.created";  // 8 bytes, big-endian

std::uint64_t packDate(std::int64_t seconds, std::int64_t nanoseconds) {
  const auto fraction = static_cast<std::uint64_t>(nanoseconds) * 65536 / 1'000'000'000;
  return static_cast<std::uint64_t>(seconds + kSecondsFrom1904To1970) << 16 | fraction;
}

std::uint64_t creationDate(const FSRef& ref, const struct stat& info) {
  unsigned char bytes[8];
  ssize_t got = -1;
  // Nothing else can have such an attribute, and opening a device may change it.
  if (S_ISREG(info.st_mode) || S_ISDIR(info.st_mode)) {
    (void)callOnOpenItem(ref, [&](int descriptor) {
      got = host().calls.getAttribute(descriptor, kCreationDateAttribute, bytes, sizeof bytes);
      return 0;
    });
  }
  if (got == sizeof bytes) {
    std::uint64_t date = 0;
    for (const unsigned char byte : bytes)
      date = date << 8 | byte;
    return date;
  }
  const Location place(ref);
  struct timespec birth;
  if (place.status() == noErr &&
      host().calls.birthTime(place.folder(), place.path(), &birth) == 0) {
    return packDate(birth.tv_sec, birth.tv_nsec);
  }
#if defined(__APPLE__)
  return packDate(info.st_mtimespec.tv_sec, info.st_mtimespec.tv_nsec);
#else
  return packDate(info.st_mtim.tv_sec, info.st_mtim.tv_nsec);
#endif
}

// Fills in the name field of an FSSpec. True where the name had to be shortened: where it is long,
// has a letter beyond ASCII, whose spelling on the volume the held name does not tell, or has a
// "#", which could look like another item's number.
bool putSpecName(std::uint32_t node, unsigned char (&out)[64]) {
  constexpr std::size_t kMost = sizeof out - 1;
  const std::string_view volumeName = nodes().name(node);
  std::string held = heldNameFromVolumeName(volumeName);
  const bool shortened =
      held.size() > kMost || std::any_of(volumeName.begin(), volumeName.end(), [](char c) {
        return static_cast<unsigned char>(c) >= 0x80 || c == '#';
      });
  if (shortened) {
    char mark[1 + 8] = "#";
    const auto end = std::to_chars(mark + 1, mark + sizeof mark, node, 16).ptr;
    held.resize(std::min(held.size(), kMost - static_cast<std::size_t>(end - mark)));
    held.append(mark, end);
  }
  out[0] = static_cast<unsigned char>(held.size());
  std::memcpy(out + 1, held.data(), held.size());
  return shortened;
}

}  // namespace

// --- Paths -----------------------------------------------------------------------------------

OSErr FSPathMakeRef(const char* path, FSRef* ref, bool* isDirectory) {
  if (path == nullptr) return paramErr;
  char resolved[PATH_MAX];
  const auto resolve = [&](const char* given) {
    return retried([&] { return host().calls.realpath(given, resolved); }) != nullptr;
  };
  if (!resolve(path)) {
    if (errno != ENOENT) return resultFromErrno(errno);
    std::string folder = path;
    while (folder.size() > 1 && folder.back() == '/')
      folder.pop_back();
    const std::size_t slash = folder.rfind('/');
    if (slash == std::string::npos || slash == 0) return fnfErr;
    folder.resize(slash);
    return resolve(folder.c_str()) ? fnfErr : dirNFErr;
  }
  FSRef found{NodeTable::kRoot};
  std::string_view rest = resolved;
  while (!rest.empty()) {
    const std::size_t slash = std::min(rest.find('/'), rest.size());
    if (slash > 0) found.node = nodes().intern(found.node, rest.substr(0, slash));
    rest.remove_prefix(std::min(slash + 1, rest.size()));
  }
  if (isDirectory != nullptr) {
    const ItemInfo item = itemInfo(found);
    if (item.result != noErr) return item.result;
    *isDirectory = item.isFolder();
  }
  *ref = found;
  return noErr;
}

OSErr FSRefMakePath(const FSRef* ref, char* path, std::size_t size) {
  if (const OSErr result = itemInfo(*ref).result; result != noErr) return result;
  const std::string text = nodes().path(ref->node);
  if (text.size() >= size) return bdNamErr;
  std::memcpy(path, text.c_str(), text.size() + 1);
  return noErr;
}

OSErr FSpMakeFSRef(const FSSpec* fsSpec, FSRef* ref) {
  if (fsSpec->vRefNum != 0 && fsSpec->vRefNum != kVolumeNumber) return nsvErr;
  if (fsSpec->name[0] > 63) return bdNamErr;
  if (fsSpec->name[0] == 0) {  // the root has no name and no folder
    if (fsSpec->parID != 0) return bdNamErr;
    *ref = {NodeTable::kRoot};
    return noErr;
  }
  const std::string held(reinterpret_cast<const char*>(fsSpec->name) + 1, fsSpec->name[0]);
  std::uint32_t node = 0;
  if (const std::size_t mark = held.rfind('#'); mark != std::string::npos) {
    const auto [end, error] =
        std::from_chars(held.data() + mark + 1, held.data() + held.size(), node, 16);
    if (error == std::errc() && end == held.data() + held.size() && nodes().contains(node) &&
        nodes().folder(node) == fsSpec->parID) {
      unsigned char name[64];
      if (putSpecName(node, name) && std::memcmp(name, fsSpec->name, name[0] + 1u) == 0) {
        const OSErr result = itemInfo({node}).result;
        if (result == noErr) *ref = {node};
        return result;
      }
    }
  }
  std::u16string unicode;
  for (const char c : held) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80) return fnfErr;  // such names are only given out shortened
    unicode.push_back(byte);
  }
  const FSRef folder{fsSpec->parID};
  return FSMakeFSRefUnicode(&folder, unicode.size(), unicode.data(), kTextEncodingUnknown, ref);
}

// --- Catalogue -------------------------------------------------------------------------------

bool placeOf(const FSRef& ref, FSRef* folder, HFSUniStr255* name) {
  const bool known = nodes().contains(ref.node) && ref.node != NodeTable::kRoot;
  if (folder != nullptr) folder->node = known ? nodes().folder(ref.node) : 0;
  if (name != nullptr) {
    const std::u16string text =
        known ? unicodeFromVolumeName(nodes().name(ref.node)) : std::u16string();
    // Some FUSE volumes list names of up to 1024 bytes.
    name->length = static_cast<std::uint16_t>(text.copy(name->unicode, std::size(name->unicode)));
  }
  return known;
}

OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which, FSCatalogInfo* info,
                       HFSUniStr255* name, FSSpec* fsSpec, FSRef* parent) {
  const ItemInfo item = itemInfo(*ref);
  if (item.result != noErr) return item.result;
  FSRef folder;
  placeOf(*ref, &folder, name);
  if (parent != nullptr) *parent = folder;
  if (fsSpec != nullptr) {
    fsSpec->vRefNum = kVolumeNumber;
    fsSpec->parID = folder.node;
    putSpecName(ref->node, fsSpec->name);
  }
  if (info == nullptr) return noErr;
  if ((which & kFSCatInfoNodeFlags) != 0) {
    info->nodeFlags = item.isFolder() ? kFSNodeIsDirectoryMask : std::uint16_t{0};
  }
  if ((which & kFSCatInfoParentDirID) != 0) info->parentDirID = folder.node;
  if ((which & kFSCatInfoNodeID) != 0) info->nodeID = ref->node;
  if ((which & kFSCatInfoCreateDate) != 0) info->createDate = creationDate(*ref, item.info);
  return noErr;
}

OSErr FSSetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which, const FSCatalogInfo* info) {
  if ((which & ~kFSCatInfoCreateDate) != 0) return paramErr;
  const Location place(*ref);
  if (place.status() != noErr) return place.status();
  if ((which & kFSCatInfoCreateDate) == 0) return noErr;
  unsigned char bytes[8];
  for (std::size_t i = 0; i < sizeof bytes; ++i)
    bytes[i] = static_cast<unsigned char>(info->createDate >> (56 - 8 * i));
  return callOnOpenItem(*ref, [&](int descriptor) {
    return host().calls.setAttribute(descriptor, kCreationDateAttribute, bytes, sizeof bytes);
  });
}

OSErr FSMakeFSRefUnicode(const FSRef* folder, std::size_t length, const UniChar* name,
                         std::uint32_t /*encodingHint*/, FSRef* ref) {
  const VolumeName volumeName = volumeNameIn(*folder, {name, length});
  if (volumeName.result != noErr) return volumeName.result;
  {
    const Location place(*folder, volumeName.bytes, Location::For::kLooking);
    if (place.status() != noErr) return place.status();
    struct stat info;
    if (place.lstat(info) != 0) return resultFromErrno(errno);
  }
  ref->node = nodes().intern(folder->node, volumeName.bytes);
  return noErr;
}

OSErr FSCompareFSRefs(const FSRef* a, const FSRef* b) {
  if (!nodes().contains(a->node) || !nodes().contains(b->node)) return errFSBadFSRef;
  return *a == *b ? noErr : errFSRefsDifferent;
}

bool areTwoItems(const FSRef& a, const FSRef& b) {
  const ItemInfo first = itemInfo(a);
  if (first.result != noErr) return false;
  const ItemInfo second = itemInfo(b);
  return second.result == noErr && !isOneItem(first.info, second.info);
}

}  // namespace cairnset
