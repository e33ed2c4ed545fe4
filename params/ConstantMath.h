// Compile-time arithmetic for the tables. They are constant-initialised, so they can be used by any
// static initialiser, and their last digits do not depend on a system's math library. Internal to
// the layer.
#pragma once

#include <cstdint>
#include <numbers>

namespace cairnset {

/// 2 to the power of `x`: exact for integers, otherwise to within a few units in the last place.
constexpr double powerOfTwo(double x) {
  double scale = 1.0;
  while (x < 0.0) {
    scale /= 2.0;
    x += 1.0;
  }
  while (x >= 1.0) {
    scale *= 2.0;
    x -= 1.0;
  }
  double term = 1.0;
  double sum = 1.0;
  for (int k = 1; k <= 20; ++k) {
    term *= x * std::numbers::ln2 / k;
    sum += term;
  }
  return scale * sum;
}

/// The nearest integer.
constexpr std::int64_t nearestWhole(double x) {
  return static_cast<std::int64_t>(x < 0.0 ? x - 0.5 : x + 0.5);
}

/// `x` rounded to as many decimals as `unit` (a power of ten) has zeros, as if written as a
/// literal.
constexpr float roundedTo(double x, double unit) {
  return static_cast<float>(static_cast<double>(nearestWhole(x * unit)) / unit);
}

}  // namespace cairnset
