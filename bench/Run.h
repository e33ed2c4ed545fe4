// Runs a program and measures its time and memory. Shared by measure and replay.
#pragma once

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

struct Run {
  long long wall;       // nanoseconds
  long long processor;  // nanoseconds, user and system
  long long peakBytes;  // resident
  long long bytesRead;  // from the disk
};

[[noreturn]] inline void fail(const std::string& what, int error) {
  std::fprintf(stderr, "%s: %s\n", what.c_str(), std::strerror(error));
  std::exit(1);
}

inline long long bytesRead(const rusage& usage) {
  return usage.ru_inblock * 512LL;
}

/// Whether the cache was warm. The system can drop it at any time, and then the run measures the
/// disk. Changing a library reads some 500 KiB of the file system's own data.
inline bool isWarm(long long bytesRead) {
  return bytesRead <= 1 << 20;
}

/// Runs a command and discards its output. Exits if the command fails; findings (statuses 10 and
/// 11) are not failures.
inline Run run(char* const* command) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  const auto start = std::chrono::steady_clock::now();
  pid_t child = 0;
  if (const int error = posix_spawn(&child, command[0], &actions, nullptr, command, environ);
      error != 0) {
    fail(command[0], error);
  }
  int status = 0;
  rusage usage{};
  while (wait4(child, &status, 0, &usage) < 0) {
    if (errno != EINTR) fail("wait4", errno);
  }
  const auto end = std::chrono::steady_clock::now();
  posix_spawn_file_actions_destroy(&actions);
  const int exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  if (exitStatus != 0 && exitStatus != 10 && exitStatus != 11) {
    std::fprintf(stderr, "%s ended with %d\n", command[0], exitStatus);
    std::exit(1);
  }
#ifdef __APPLE__
  constexpr long long kUnit = 1;
#else
  constexpr long long kUnit = 1024;
#endif
  const auto nanoseconds = [](const timeval& time) {
    return (time.tv_sec * 1'000'000LL + time.tv_usec) * 1000;
  };
  return {std::chrono::nanoseconds(end - start).count(),
          nanoseconds(usage.ru_utime) + nanoseconds(usage.ru_stime), usage.ru_maxrss * kUnit,
          bytesRead(usage)};
}
