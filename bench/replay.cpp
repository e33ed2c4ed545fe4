// replay SWEEP FOLDER COPY PROGRAM ARGUMENT... OPTION: compares the cost of a program that changes
// a library with that of a sweep and of the bare changes.
//
// Runs the program without the option, to warm up, and then with it, which changes FOLDER. Then
// makes the same changes in COPY, an identical folder, in a bare loop: each file that was moved is
// renamed once, and each whose bytes changed is opened, written and closed. It waits for the disk
// after the renames and after the rewrites, as is necessary to survive a power failure.
//
// Prints wall and processor time of "SWEEP COPY", of the program and of the bare loop without the
// waits, and the wall time of the waits, all in nanoseconds. If a run read from the disk, prints
// nothing and exits with 3.
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sys/stat.h>
#include <utility>
#include <vector>

#include "bench/Run.h"

namespace {

namespace fs = std::filesystem;

struct File {
  std::string path;  // below the folder
  std::string bytes;
};

std::map<ino_t, File> filesIn(const fs::path& folder) {
  std::map<ino_t, File> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    struct stat info;
    if (::stat(entry.path().c_str(), &info) != 0) fail(entry.path(), errno);
    std::ifstream in(entry.path(), std::ios::binary);
    files[info.st_ino] = {entry.path().lexically_relative(folder),
                          {std::istreambuf_iterator<char>(in), {}}};
  }
  return files;
}

using Clock = std::chrono::steady_clock;

long long since(Clock::time_point start) {
  return std::chrono::nanoseconds(Clock::now() - start).count();
}

long long waitForDisk() {
  const auto start = Clock::now();
  ::sync();
  return since(start);
}

long long bytesReadSoFar() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return bytesRead(usage);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 6) {
    std::fputs("usage: replay SWEEP FOLDER COPY PROGRAM ARGUMENT... OPTION\n", stderr);
    return 2;
  }
  char* const sweepCopy[] = {argv[1], argv[3], nullptr};
  const std::map<ino_t, File> before = filesIn(argv[2]);
  char* const option = std::exchange(argv[argc - 1], nullptr);
  run(argv + 4);
  argv[argc - 1] = option;
  const Run ran = run(argv + 4);
  std::vector<std::pair<std::string, std::string>> renames;
  std::vector<File> rewrites;
  const std::string copy = std::string(argv[3]) + "/";
  for (auto& [inode, file] : filesIn(argv[2])) {
    const auto was = before.find(inode);
    if (was == before.end()) continue;
    if (was->second.path != file.path) {
      renames.emplace_back(copy + was->second.path, copy + file.path);
      fs::create_directories(fs::path(copy + file.path).parent_path());
    }
    if (was->second.bytes != file.bytes) rewrites.push_back({copy + file.path, file.bytes});
  }
  ::sync();  // so that the loop does not pay for earlier writes
  run(sweepCopy);
  const Run swept = run(sweepCopy);
  const long long readBefore = bytesReadSoFar();
  const std::clock_t processorBefore = std::clock();
  const auto start = Clock::now();
  for (const auto& [from, to] : renames) {
    if (::rename(from.c_str(), to.c_str()) != 0) fail(from, errno);
  }
  long long waits = waitForDisk();
  for (const File& file : rewrites) {
    const int descriptor = ::open(file.path.c_str(), O_RDWR | O_CLOEXEC);
    if (descriptor < 0 ||
        ::pwrite(descriptor, file.bytes.data(), file.bytes.size(), 0) !=
            static_cast<ssize_t>(file.bytes.size()) ||
        ::close(descriptor) != 0) {
      fail(file.path, errno);
    }
  }
  const long long loop = since(start) - waits;
  const std::clock_t processor = std::clock() - processorBefore;
  if (!isWarm(ran.bytesRead) || !isWarm(swept.bytesRead) ||
      !isWarm(bytesReadSoFar() - readBefore)) {
    return 3;
  }
  waits += waitForDisk();
  std::printf("%lld %lld %lld %lld %lld %lld %lld\n", swept.wall, swept.processor, ran.wall,
              ran.processor, loop,
              static_cast<long long>(processor) * (1'000'000'000 / CLOCKS_PER_SEC), waits);
}
