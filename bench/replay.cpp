// replay FOLDER COPY PROGRAM [ARGUMENT...]: what the changes that a program makes cost by
// themselves.
//
// Runs the program, which changes FOLDER, looks what it did, and makes the same changes in COPY, an
// equal folder: each file that has another name or place is renamed once, and each that has other
// bytes is opened, written and closed. After the renames and after the rewrites it waits for the
// disk, as whoever wants to survive a loss of power must. Prints the program's wall time and
// processor time, those of the bare loop without the waits, and the wall time of the waits, all in
// nanoseconds.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "bench/OneProcessor.h"

namespace {

namespace fs = std::filesystem;

struct File {
  std::string path;  // below the folder
  std::string bytes;
};

[[noreturn]] void fail(const std::string& what) {
  std::perror(("replay: " + what).c_str());
  std::exit(1);
}

std::map<ino_t, File> filesIn(const fs::path& folder) {
  std::map<ino_t, File> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    struct stat info;
    if (::stat(entry.path().c_str(), &info) != 0) fail(entry.path());
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

long long nanoseconds(const timeval& time) {
  return (time.tv_sec * 1'000'000LL + time.tv_usec) * 1000;
}

// Prints what it took.
void run(char** command) {
  const auto start = Clock::now();
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
    ::execv(command[0], command);
    fail(command[0]);
  }
  int status = 0;
  rusage usage{};
  if (::wait4(child, &status, 0, &usage) != child || status != 0) fail(command[0]);
  std::printf("%lld %lld ", since(start),
              nanoseconds(usage.ru_utime) + nanoseconds(usage.ru_stime));
}

long long waitForDisk() {
  const auto start = Clock::now();
  ::sync();
  return since(start);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fputs("usage: replay FOLDER COPY PROGRAM [ARGUMENT...]\n", stderr);
    return 2;
  }
  stayOnOneProcessor();
  const std::map<ino_t, File> before = filesIn(argv[1]);
  run(argv + 3);
  std::vector<std::pair<std::string, std::string>> renames;
  std::vector<File> rewrites;
  const std::string copy = std::string(argv[2]) + "/";
  for (auto& [inode, file] : filesIn(argv[1])) {
    const auto was = before.find(inode);
    if (was == before.end()) continue;
    if (was->second.path != file.path) {
      renames.emplace_back(copy + was->second.path, copy + file.path);
      fs::create_directories(fs::path(copy + file.path).parent_path());
    }
    if (was->second.bytes != file.bytes) rewrites.push_back({copy + file.path, file.bytes});
  }
  ::sync();  // what was left to write before is none of the loop's
  const std::clock_t processorBefore = std::clock();
  const auto start = Clock::now();
  for (const auto& [from, to] : renames) {
    if (::rename(from.c_str(), to.c_str()) != 0) fail(from);
  }
  long long waits = waitForDisk();
  for (const File& file : rewrites) {
    const int descriptor = ::open(file.path.c_str(), O_RDWR | O_CLOEXEC);
    if (descriptor < 0 ||
        ::pwrite(descriptor, file.bytes.data(), file.bytes.size(), 0) !=
            static_cast<ssize_t>(file.bytes.size()) ||
        ::close(descriptor) != 0) {
      fail(file.path);
    }
  }
  const long long loop = since(start) - waits;
  const std::clock_t processor = std::clock() - processorBefore;
  waits += waitForDisk();
  std::printf("%lld %lld %lld\n", loop,
              static_cast<long long>(processor) * (1'000'000'000 / CLOCKS_PER_SEC), waits);
}
