// Arithmetic that the compiler does while it builds the tables. No table is computed when the
// program starts, so all of them are ready before the first line of any code runs, and no host's
// mathematics library has a say in their last digit. Internal to the layer.
#pragma once

#include <cstdint>
#include <numbers>

namespace cairnset {

/// 2 to the power of `x`, exactly for whole `x`, else to within a few units of the last place.
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

/// The nearest whole number.
constexpr std::int64_t nearestWhole(double x) {
  return static_cast<std::int64_t>(x < 0.0 ? x - 0.5 : x + 0.5);
}

/// `x` with as many decimals as `unit` (a power of ten) has zeros, as a typed constant would be.
constexpr float roundedTo(double x, double unit) {
  return static_cast<float>(static_cast<double>(nearestWhole(x * unit)) / unit);
}

}  // namespace cairnset
