// The volume and the user's own folders, as host/files/FileManager.h has it.
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <pwd.h>
#include <stdlib.h>
#include <string>
#include <string_view>
#include <unistd.h>

#include "host/Host.h"
#include "host/files/FileManager.h"
#include "host/files/Retries.h"

namespace cairnset {

namespace {

std::string preferencesPath() {
#if !defined(__APPLE__)
  // By convention a relative value of this variable is ignored.
  if (const char* config = std::getenv("XDG_CONFIG_HOME"); config != nullptr && config[0] == '/') {
    return config;
  }
#endif
  const char* home = std::getenv("HOME");
#ifndef CAIRNSET_STATIC  // there getpwuid would load shared libraries, of the glibc that built this
  if (home == nullptr || home[0] != '/') {
    const struct passwd* user = ::getpwuid(::getuid());
    home = user != nullptr ? user->pw_dir : nullptr;
  }
#endif
  if (home == nullptr || home[0] != '/') return {};
#if defined(__APPLE__)
  return std::string(home) + "/Library/Preferences";
#else
  return std::string(home) + "/.config";
#endif
}

// Makes the folder and those above it. Returns the first failure, which counts only if the folder
// is missing in the end: making one that exists can fail in many ways.
OSErr makeFolders(const std::string& path) {
  OSErr result = noErr;
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const std::string stretch = path.substr(0, end);
    const auto make = [&] { return host().calls.mkdir(AT_FDCWD, stretch.c_str(), 0700); };
    if (retried(make) != 0 && errno != EEXIST && result == noErr) {
      result = resultFromErrno(errno);
    }
    if (end == std::string::npos) return result;
  }
}

}  // namespace

OSErr PBXGetVolInfoSync(std::int16_t vRefNum, VolumeInfo* info) {
  if (vRefNum != 0 && vRefNum != kVolumeNumber) return nsvErr;
  struct statvfs volume;
  if (host().calls.statvfs("/", &volume) != 0) return resultFromErrno(errno);
  const std::string_view name = kDefaultVolumeName;
  info->vRefNum = kVolumeNumber;
  info->name[0] = static_cast<unsigned char>(name.size());
  std::memcpy(info->name + 1, name.data(), name.size());
  info->totalBytes = std::uint64_t{volume.f_blocks} * volume.f_frsize;
  info->freeBytes = std::uint64_t{volume.f_bavail} * volume.f_frsize;
  return noErr;
}

OSErr FSFindFolder(std::int16_t /*domain*/, std::uint32_t folderType, bool create, FSRef* folder) {
  if (folderType != kPreferencesFolderType) return paramErr;
  const std::string path = preferencesPath();
  if (path.empty()) return fnfErr;
  const OSErr made = create ? makeFolders(path) : noErr;
  FSRef found;
  bool isFolder = false;
  const OSErr result = FSPathMakeRef(path.c_str(), &found, &isFolder);
  if (result != noErr && made != noErr) return made;
  if (result != noErr) return result == dirNFErr ? fnfErr : result;
  if (!isFolder) return dirNFErr;
  *folder = found;
  return noErr;
}

OSErr FindFolder(std::int16_t domain, std::uint32_t folderType, bool create, std::int16_t* vRefNum,
                 std::int32_t* dirID) {
  FSRef folder;
  if (const OSErr result = FSFindFolder(domain, folderType, create, &folder); result != noErr) {
    return result;
  }
  *vRefNum = kVolumeNumber;
  *dirID = static_cast<std::int32_t>(folder.node);
  return noErr;
}

}  // namespace cairnset
