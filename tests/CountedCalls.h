// How many system calls the host layer makes.
#pragma once

#include "host/SystemCalls.h"

namespace cairnset {

/// Counts every call through the table of system calls as long as it lives. One at a time.
class CountedCalls {
 public:
  CountedCalls() : _before(systemCalls()) {
    count = 0;
    SystemCalls& calls = systemCalls();
    wrap<&SystemCalls::open>(calls.open);
    wrap<&SystemCalls::close>(calls.close);
    wrap<&SystemCalls::fstat>(calls.fstat);
    wrap<&SystemCalls::pread>(calls.pread);
    wrap<&SystemCalls::pwrite>(calls.pwrite);
    wrap<&SystemCalls::lstat>(calls.lstat);
    wrap<&SystemCalls::mkdir>(calls.mkdir);
    wrap<&SystemCalls::renameNoReplace>(calls.renameNoReplace);
    wrap<&SystemCalls::unlink>(calls.unlink);
    wrap<&SystemCalls::readlink>(calls.readlink);
    wrap<&SystemCalls::realpath>(calls.realpath);
    wrap<&SystemCalls::fdopendir>(calls.fdopendir);
    wrap<&SystemCalls::closedir>(calls.closedir);
  }
  ~CountedCalls() { systemCalls() = _before; }
  CountedCalls(const CountedCalls&) = delete;
  CountedCalls& operator=(const CountedCalls&) = delete;

  static inline long count = 0;

 private:
  template <auto kMember, typename Result, typename... Args>
  void wrap(Result (*&call)(Args...)) {
    static Result (*real)(Args...);
    real = call;
    call = [](Args... args) -> Result {
      ++count;
      return real(args...);
    };
  }

  SystemCalls _before;
};

}  // namespace cairnset
