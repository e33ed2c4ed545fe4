// sweep FOLDER: reads all files of a library with one thread and does nothing else, as a baseline
// for benchmarks.
//
// Walks the folder recursively in the order of the names' bytes. Opens, stats, reads and closes
// each file once, through its folder's descriptor. Prints the number of files.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

long files = 0;

[[noreturn]] void fail(const char* what) {
  std::perror(what);
  _exit(1);
}

bool isFolder(int parent, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
  struct stat info;
  return fstatat(parent, entry.d_name, &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(info.st_mode);
}

void readFile(int parent, const char* name) {
  const int file = openat(parent, name, O_RDONLY | O_CLOEXEC);
  if (file < 0) fail(name);
  struct stat info;
  char bytes[1024];
  if (fstat(file, &info) != 0 || read(file, bytes, sizeof bytes) < 0 || close(file) != 0) {
    fail(name);
  }
  ++files;
}

// Every level holds a folder open, so descriptors run out before the stack does.
// NOLINTNEXTLINE(misc-no-recursion)
void sweep(int parent, const char* name) {
  const int folder = openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  DIR* const listing = folder >= 0 ? fdopendir(folder) : nullptr;
  if (listing == nullptr) fail(name);
  std::vector<std::pair<std::string, bool>> entries;
  while (const dirent* entry = readdir(listing)) {
    if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) continue;
    entries.emplace_back(entry->d_name, isFolder(folder, *entry));
  }
  std::sort(entries.begin(), entries.end());
  for (const auto& [entry, isAFolder] : entries) {
    if (isAFolder) {
      sweep(folder, entry.c_str());
    } else {
      readFile(folder, entry.c_str());
    }
  }
  closedir(listing);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: sweep FOLDER\n", stderr);
    return 2;
  }
  sweep(AT_FDCWD, argv[1]);
  std::printf("%ld\n", files);
}
