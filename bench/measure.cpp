// measure warm|cold ROUNDS SWEEP FOLDER PROGRAM [ARGUMENT...]: what a program costs, beside a
// sweep.
//
// Runs "SWEEP FOLDER" and the program in turn, so that both see the same machine, until ROUNDS
// rounds had the cache that was asked for: a warm one, after each ran once unmeasured where there
// is more than one round; or one that the system has dropped before each run, which only root can
// make it do. What they print is thrown away. Prints a line for each round: the program's wall time
// and the sweep's, the processor time of both, all in nanoseconds, and the program's peak resident
// size in bytes. Processor time is what to compare on a machine that has other work.
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
