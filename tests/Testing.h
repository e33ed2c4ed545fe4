// What nearly every test uses.
#pragma once

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

namespace cairnset {

namespace fs = std::filesystem;
using namespace std::string_literals;

/// Throws where what must hold does not: a unit test fails then, and a fuzz target has a finding.
inline void check(bool holds, const std::string& what, const std::string& detail = "") {
  if (!holds) throw std::logic_error("DOES NOT HOLD: " + what + ": " + detail);
}

/// N where the environment has SAMPLE=N, for builds and machines on which all cases take too long:
/// the longest tests then try every N-th one. Otherwise 1.
inline int sample() {
  const char* text = std::getenv("SAMPLE");
  return text != nullptr ? std::max(std::atoi(text), 1) : 1;
}

/// Puts `wrapper` in the place of a system call of the host's table. It gets what was there before,
/// and then the arguments.
template <typename Result, typename... Args, typename Wrapper>
void intercept(std::function<Result(Args...)>& call, Wrapper wrapper) {
  call = [real = call, wrapper](Args... args) -> Result { return wrapper(real, args...); };
}

/// What a system call does that fails.
inline int failWith(int error) {
  errno = error;
  return -1;
}

}  // namespace cairnset
