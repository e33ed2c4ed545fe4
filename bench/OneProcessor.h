// Running on one processor of those that there are.
#pragma once

#ifdef __linux__
#include <sched.h>
#endif

/// Keeps this process and those that it starts on one processor, where the system lets us choose.
/// What is compared would else often take turns on two, of which one can be slower. It is the last
/// that we may run on: the first has the system's own work more often.
inline void stayOnOneProcessor() {
#ifdef __linux__
  cpu_set_t allowed, last;
  CPU_ZERO(&last);
  if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) return;
  for (int processor = CPU_SETSIZE - 1; processor >= 0 && CPU_COUNT(&last) == 0; --processor) {
    if (CPU_ISSET(processor, &allowed)) CPU_SET(processor, &last);
  }
  (void)sched_setaffinity(0, sizeof last, &last);
#endif
}
