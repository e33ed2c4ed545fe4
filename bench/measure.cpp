// measure warm|cold ROUNDS SWEEP FOLDER PROGRAM [ARGUMENT...]: compares the cost of a program with
// that of a sweep.
//
// Runs "SWEEP FOLDER" and the program alternately, so that both run under the same conditions, and
// discards their output. Repeats until ROUNDS rounds had the requested cache. If it is "warm" and
// there is more than one round, both run once unmeasured first. If it is "cold", the system's
// caches are dropped before each run, which needs root.
//
// Prints a line for each round: wall time of program and sweep, processor time of both, all in
// nanoseconds, and the program's peak resident size in bytes. Compare processor times on a busy
// machine.
#include <string_view>

#include "bench/Run.h"

namespace {

void dropCaches() {
  ::sync();
  const int file = ::open("/proc/sys/vm/drop_caches", O_WRONLY | O_CLOEXEC);
  if (file < 0 || ::write(file, "3", 1) != 1 || ::close(file) != 0) fail("drop_caches", errno);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view cache = argc > 5 ? argv[1] : "";
  const int rounds = argc > 5 ? std::atoi(argv[2]) : 0;
  const bool isCold = cache == "cold";
  if (rounds < 1 || (!isCold && cache != "warm")) {
    std::fputs("usage: measure warm|cold ROUNDS SWEEP FOLDER PROGRAM [ARGUMENT...]\n", stderr);
    return 2;
  }
  char* const sweep[] = {argv[3], argv[4], nullptr};
  char* const* const program = argv + 5;
  if (rounds > 1 && !isCold) {
    run(sweep);
    run(program);
  }
  int triesLeft = 10 * rounds;
  for (int measured = 0; measured < rounds; --triesLeft) {
    if (isCold) dropCaches();
    const Run swept = run(sweep);
    if (isCold) dropCaches();
    const Run ran = run(program);
    const bool warm = isWarm(swept.bytesRead) && isWarm(ran.bytesRead);
    if (!isCold && !warm && triesLeft > 0) continue;
    if (!isCold && !warm) std::fputs("measure: a round read from the disk\n", stderr);
    std::printf("%lld %lld %lld %lld %lld\n", ran.wall, swept.wall, ran.processor, swept.processor,
                ran.peakBytes);
    ++measured;
  }
}
