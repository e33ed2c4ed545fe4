// Alias files, which are symbolic links, as host/files/FileManager.h has it.
#include <cerrno>
#include <climits>
#include <string>

#include "host/Host.h"
#include "host/files/FileManager.h"
#include "host/files/Location.h"
#include "host/text/Names.h"

namespace cairnset {

namespace {

struct AliasTarget {
  OSErr result;
  std::string path = {};  // as it is stored in the link
};

AliasTarget readAlias(const FSRef& ref) {
  const Location place(ref);
  if (place.status() != noErr) return {place.status()};
  char buffer[PATH_MAX];
  const ssize_t n = retried(
      [&] { return host().calls.readlink(place.folder(), place.path(), buffer, sizeof buffer); });
  if (n < 0) return {failureAt(ref, errno)};
  if (n == 0) return {fnfErr};  // some systems allow an empty link; it points to nothing
  if (static_cast<std::size_t>(n) == sizeof buffer) return {bdNamErr};
  return {noErr, {buffer, static_cast<std::size_t>(n)}};
}

}  // namespace

OSErr FSIsAliasFile(const FSRef* ref, bool* isAlias, bool* isFolder) {
  const ItemInfo item = itemInfo(*ref);
  if (item.result != noErr) return item.result;
  *isAlias = S_ISLNK(item.info.st_mode);
  if (isFolder != nullptr) *isFolder = item.isFolder();
  return noErr;
}

OSErr FSResolveAliasFile(FSRef* ref, bool resolveChains, bool* targetIsFolder, bool* wasAlias) {
  FSRef found = *ref;
  bool isAlias = false;
  bool isFolder = false;
  OSErr result = FSIsAliasFile(ref, &isAlias, &isFolder);
  if (result != noErr) return result;
  if (isAlias && resolveChains) {
    result = FSPathMakeRef(nodes().path(ref->node).c_str(), &found, &isFolder);
  } else if (isAlias) {
    auto [read, target] = readAlias(*ref);
    if (read != noErr) return read;
    if (target.front() != '/') target = nodes().path(nodes().folder(ref->node)) + "/" + target;
    while (target.size() > 1 && target.back() == '/')
      target.pop_back();
    // The folders on the way are resolved; the item at the end may be an alias again.
    const std::size_t slash = target.rfind('/');
    FSRef folder;
    result = FSPathMakeRef(slash == 0 ? "/" : target.substr(0, slash).c_str(), &folder, nullptr);
    const std::string last = target.substr(slash + 1);
    if (result != noErr) {
      // returned below
    } else if (last.empty() || last == "." || last == "..") {
      result = FSPathMakeRef(target.c_str(), &found, &isFolder);
    } else {
      found.node = nodes().intern(folder.node, last);
      bool again = false;
      result = FSIsAliasFile(&found, &again, &isFolder);
    }
  }
  if (result != noErr) return result == dirNFErr ? fnfErr : result;
  *ref = found;
  if (targetIsFolder != nullptr) *targetIsFolder = isFolder;
  if (wasAlias != nullptr) *wasAlias = isAlias;
  return noErr;
}

OSErr FSCreateAliasFile(const FSRef* folder, std::size_t length, const UniChar* name,
                        const FSRef* target, FSRef* ref) {
  if (const OSErr result = itemInfo(*target).result; result != noErr) return result;
  const VolumeName volumeName = volumeNameIn(*folder, {name, length});
  if (volumeName.result != noErr) return volumeName.result;
  const Location place(*folder, volumeName.bytes, Location::For::kChanging);
  if (place.status() != noErr) return place.status();
  const std::string path = nodes().path(target->node);
  const OSErr made = resultOf(host().calls.symlink(path.c_str(), place.folder(), place.path()));
  if (made == noErr && ref != nullptr) ref->node = nodes().intern(folder->node, volumeName.bytes);
  return made;
}

}  // namespace cairnset
