// measure ROUNDS SWEEP FOLDER PROGRAM [ARGUMENT...]: what the program costs, beside a sweep.
//
// Runs "SWEEP FOLDER" and the program in turn, so that both see the same machine, until ROUNDS
// rounds had a warm cache; after each ran once unmeasured where there is more than one round. What
// they print is thrown away. Prints a line for each round: the program's wall time and the sweep's,
// the processor time of both, all in nanoseconds, and the program's peak resident size in bytes.
// Processor time is what to compare on a machine that has other work.
#include "bench/Run.h"

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
  int triesLeft = 10 * rounds;
  for (int measured = 0; measured < rounds; --triesLeft) {
    const Run swept = run(sweep);
    const Run ran = run(program);
    const bool warm = isWarm(swept.bytesRead) && isWarm(ran.bytesRead);
    if (!warm && triesLeft > 0) continue;
    if (!warm) std::fputs("measure: a round read from the disk\n", stderr);
    std::printf("%lld %lld %lld %lld %lld\n", ran.wall, swept.wall, ran.processor, swept.processor,
                ran.peakBytes);
    ++measured;
  }
}
