#include "host/files/FileSystemHelpers.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "host/Host.h"
#include "host/SystemVersion.h"
#include "host/files/FileManager.h"
#include "host/files/Location.h"
#include "host/text/NameConversions.h"
#include "host/text/Names.h"
#include "host/text/PascalStrings.h"

namespace cairnset {

namespace {

// All zeros on failure.
FSCatalogInfo catalogInfo(const FSRef* ref, FSCatalogInfoBitmap which) {
  FSCatalogInfo info;
  (void)FSGetCatalogInfo(ref, which, &info, nullptr, nullptr, nullptr);
  return info;
}

OSErr refWithName(FSRef& ref, const HFSUniStr255& name) {
  constexpr std::size_t kMostUnits = 64;
  FSRef folder;
  if (const OSErr result = getParent(folder, ref); result != noErr) return result;
  return FSMakeFSRefUnicode(&folder, std::min<std::size_t>(name.length, kMostUnits), name.unicode,
                            kTextEncodingUnknown, &ref);
}

}  // namespace

OSErr convertPathToFSRef(const char* path, FSRef* ref) {
  return FSPathMakeRef(path, ref, nullptr);
}

OSErr convertPathToFSSpec(const char* path, FSSpec* fsSpec) {
  FSRef ref;
  if (const OSErr result = FSPathMakeRef(path, &ref, nullptr); result != noErr) return result;
  return FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, fsSpec, nullptr);
}

OSErr convertFSRefToPath(const FSRef* ref, char* path, long size) {
  return FSRefMakePath(ref, path, static_cast<std::size_t>(std::max(size, 0L)));
}

OSErr convertFSSpecToPath(const FSSpec* fsSpec, char* path, long size) {
  FSRef ref;
  if (const OSErr result = FSpMakeFSRef(fsSpec, &ref); result != noErr) return result;
  return convertFSRefToPath(&ref, path, size);
}

OSErr FSRefIsValid(const FSRef& ref) {
  return FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr);
}

bool fileExists(const FSRef* /*ref*/) {
  return false;
}

void getPlaceName(const FSRef& ref, char* name, std::size_t size) {
  const NodeTable& table = host().nodes;
  std::string held;
  if (table.contains(ref.node)) appendHeldNameFromVolumeName(table.name(ref.node), held);
  const std::size_t length = std::min(held.size(), size - 1);
  std::memcpy(name, held.data(), length);
  name[length] = '\0';
}

FSRef placeOfName(const FSRef& folder, const char* name) {
  HFSUniStr255 unicode;
  ConvertCStringToHFSUniStr(name, &unicode);
  const VolumeName volumeName = volumeNameFromUnicode({unicode.unicode, unicode.length});
  if (volumeName.result != noErr) return {};
  return {nodes().intern(folder.node, volumeName.bytes)};
}

std::string getPlacePath(const FSRef& ref, const FSRef& folder) {
  const NodeTable& table = host().nodes;
  if (!table.contains(ref.node)) return "";
  if (!table.contains(folder.node)) return table.path(ref.node);
  const std::uint32_t depth = table.depth(ref.node), above = table.depth(folder.node);
  const bool isBelow = depth > above && table.ancestor(ref.node, depth - above) == folder.node;
  return isBelow ? table.path(ref.node, folder.node) : table.path(ref.node);
}

void getCFilename(const FSRef& ref, char* name, unsigned long size) {
  if (name == nullptr || size == 0) return;
  name[0] = '\0';
  if (FSRefIsValid(ref) == noErr) getPlaceName(ref, name, size);
}

OSErr getPFilename(const FSRef& ref, unsigned char* name) {
  name[0] = 0;
  if (const OSErr result = FSRefIsValid(ref); result != noErr) return result;
  char held[256];
  getPlaceName(ref, held, sizeof held);
  C2PCopy(name, held);
  return noErr;
}

OSErr setCFilename(FSRef& ref, const char* name) {
  HFSUniStr255 unicode;
  ConvertCStringToHFSUniStr(name, &unicode);
  return refWithName(ref, unicode);
}

OSErr setPFilename(FSRef& ref, const unsigned char* name) {
  HFSUniStr255 unicode;
  ConvertPStringToHFSUniStr(name, &unicode);
  return refWithName(ref, unicode);
}

OSErr getParent(FSRef& parent, const FSRef& item) {
  return FSGetCatalogInfo(&item, kFSCatInfoNone, nullptr, nullptr, nullptr, &parent);
}

OSErr getParent(FSSpec& parent, const FSSpec& item) {
  FSRef ref;
  if (const OSErr result = FSpMakeFSRef(&item, &ref); result != noErr) return result;
  FSRef folder;
  if (const OSErr result = getParent(folder, ref); result != noErr) return result;
  return FSGetCatalogInfo(&folder, kFSCatInfoNone, nullptr, nullptr, &parent, nullptr);
}

bool isFolder(const FSRef* ref) {
  return (catalogInfo(ref, kFSCatInfoNodeFlags).nodeFlags & kFSNodeIsDirectoryMask) != 0;
}

bool isAlias(const FSRef* ref) {
  bool alias = false;
  return FSIsAliasFile(ref, &alias, nullptr) == noErr && alias;
}

bool isRegularFile(const FSRef* ref) {
  const ItemInfo item = itemInfo(*ref);
  return item.result == noErr && S_ISREG(item.info.st_mode);
}

bool isNoFile(const FSRef* ref) {
  const ItemInfo item = itemInfo(*ref);
  return item.result == fnfErr || (item.result == noErr && !S_ISREG(item.info.st_mode));
}

std::uint32_t getNode(const FSRef* ref) {
  return catalogInfo(ref, kFSCatInfoNodeID).nodeID;
}

std::uint32_t getFolderNode(const FSRef* ref) {
  return isFolder(ref) ? ref->node : 0;
}

bool isSameFile(const FSRef* a, const FSRef* b) {
  return FSCompareFSRefs(a, b) == noErr;
}

bool isSameFolder(const FSRef* a, const FSRef* b) {
  FSRef folderA = *a;
  FSRef folderB = *b;
  if (!isFolder(a) && getParent(folderA, *a) != noErr) return false;
  if (!isFolder(b) && getParent(folderB, *b) != noErr) return false;
  return isSameFile(&folderA, &folderB);
}

std::uint64_t getCreationDate(const FSRef* ref) {
  return catalogInfo(ref, kFSCatInfoCreateDate).createDate;
}

OSErr setCreationDate(const FSRef* ref, unsigned long long date) {
  FSCatalogInfo info;
  info.createDate = date;
  return FSSetCatalogInfo(ref, kFSCatInfoCreateDate, &info);
}

OSErr getPrefsFSRef(FSRef* folder) {
  return FSFindFolder(kUserDomain, kPreferencesFolderType, false, folder);
}

OSErr getPrefsVolRefNumAndDirID(short* vRefNum, long* dirID) {
  const std::int16_t domain = isRunningOSX() ? kUserDomain : kOnSystemDisk;
  std::int32_t folder = 0;
  const OSErr result = FindFolder(domain, kPreferencesFolderType, true, vRefNum, &folder);
  if (result == noErr) *dirID = folder;
  return result;
}

}  // namespace cairnset
