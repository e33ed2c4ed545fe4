#include "host/text/PathStrings.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "host/SystemVersion.h"
#include "host/text/PascalStrings.h"

namespace cairnset {

namespace {

constexpr const char* kSeparators = "\\:/";

void store(std::string_view text, char* out) {
  std::memmove(out, text.data(), text.size());
  out[text.size()] = '\0';
}

}  // namespace

void extractFilename(const char* path, char* name) {
  if (path == nullptr || name == nullptr) return;
  const std::string_view whole = path;
  store(whole.substr(whole.find_last_of(kSeparators) + 1), name);  // npos + 1 is 0
}

char* findFileFromPath(char* path) {
  char* last = std::strrchr(path, '\\');
  return last == nullptr ? path : last + 1;
}

void extractPath(const char* path, char* folder) {
  if (path == nullptr || folder == nullptr) return;
  const std::string_view whole = path;
  const std::size_t last = whole.find_last_of(kSeparators);
  const bool hasFolder = last != std::string_view::npos && last != 0;
  store(whole.substr(0, hasFolder ? last + (isRunningOSX() ? 1 : 0) : 0), folder);
}

bool isAbsolutePath(const char* path) {
  return path != nullptr && (isRunningOSX() ? path[0] == '/' : path[0] != ':');
}

bool isRelativePath(const char* path) {
  return path != nullptr && !isAbsolutePath(path);
}

void makePathUniform(char* path) {
  if (path == nullptr) return;
  for (std::size_t length = std::strlen(path); length > 0 && path[length - 1] == '/'; --length)
    path[length - 1] = '\0';
}

void convertToNativePathFormat(char* path) {
  std::string native = path;
  if (!isRunningOSX()) {
    if (native.starts_with('/')) native.erase(0, 1);
    std::replace(native.begin(), native.end(), '/', ':');
  } else {
    if (native.starts_with(':')) {
      native.erase(0, 1);
    } else {
      native.insert(native.begin(), '/');
    }
    std::replace(native.begin(), native.end(), ':', '/');
    // Any name that begins with the default volume's passes for it, as it always has.
    const bool isComplete = !native.starts_with('/') || native.starts_with("/Volumes/") ||
                            native.substr(1).starts_with(kDefaultVolumeName);
    if (!isComplete) native.insert(0, "/Volumes");
  }
  store(native, path);
}

void extractFilename(const FSSpec* fsSpec, unsigned char* name) {
  std::memmove(name, fsSpec->name, sizeof fsSpec->name);
}

void extractCFilename(const FSSpec* fsSpec, char* name) {
  FSSpec bounded;
  setFilename(&bounded, fsSpec->name);
  P2CCopy(name, bounded.name);
}

void setFilename(FSSpec* fsSpec, const unsigned char* name) {
  constexpr std::size_t kMostCharacters = sizeof fsSpec->name - 1;
  const std::size_t length = std::min<std::size_t>(name[0], kMostCharacters);
  std::memmove(fsSpec->name + 1, name + 1, length);
  std::fill(fsSpec->name + 1 + length, std::end(fsSpec->name), static_cast<unsigned char>(0));
  fsSpec->name[0] = static_cast<unsigned char>(length);
}

}  // namespace cairnset
