// measure ROUNDS SWEEP FOLDER PROGRAM [ARGUMENT...]: what the program costs, beside a sweep.
//
// Runs "SWEEP FOLDER" and the program ROUNDS times in turn, so that both see the same machine,
// after each ran once unmeasured where there is more than one round. What they print is thrown
// away. Prints a line for each round: the program's wall time and the sweep's, the processor time
// of both, all in nanoseconds, and the program's peak resident size in bytes. Processor time is
// what to compare on a machine that has other work. Findings (statuses 10 and 11) are no failures.
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/OneProcessor.h"

extern char** environ;

namespace {

struct Run {
  long long wall;  // nanoseconds
  long long processor;
  long long peakBytes;
};

long long nanoseconds(const timeval& time) {
  return (time.tv_sec * 1'000'000LL + time.tv_usec) * 1000;
}

[[noreturn]] void fail(const char* what, int error) {
  std::fprintf(stderr, "measure: %s: %s\n", what, std::strerror(error));
  std::exit(1);
}

Run run(char* const* command) {
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
    std::fprintf(stderr, "measure: %s ended with %d\n", command[0], exitStatus);
    std::exit(1);
  }
#ifdef __APPLE__
  constexpr long long kUnit = 1;
#else
  constexpr long long kUnit = 1024;
#endif
  return {std::chrono::duration_cast<std::chrono::nanoseconds>(end - start).count(),
          nanoseconds(usage.ru_utime) + nanoseconds(usage.ru_stime), usage.ru_maxrss * kUnit};
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 4 ? std::atoi(argv[1]) : 0;
  if (rounds < 1) {
    std::fputs("usage: measure ROUNDS SWEEP FOLDER PROGRAM [ARGUMENT...]\n", stderr);
    return 2;
  }
  stayOnOneProcessor();
  char* const sweep[] = {argv[2], argv[3], nullptr};
  char* const* const program = argv + 4;
  if (rounds > 1) {
    run(sweep);
    run(program);
  }
  for (int i = 0; i < rounds; ++i) {
    const Run swept = run(sweep);
    const Run ran = run(program);
    std::printf("%lld %lld %lld %lld %lld\n", ran.wall, swept.wall, ran.processor, swept.processor,
                ran.peakBytes);
  }
}
