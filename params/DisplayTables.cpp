#include "params/DisplayTables.h"

#include <cstddef>
#include <cstdint>

#include "params/ConstantMath.h"

namespace cairnset {

namespace {

using Text = std::array<char, 9>;  // "10.0 kHz"

template <std::size_t N>
struct Steps {
  std::array<Text, N> texts = {};
  std::array<float, N> values = {};
};

template <std::size_t N>
constexpr std::array<const char*, N> pointersTo(const std::array<Text, N>& texts) {
  std::array<const char*, N> pointers = {};
  for (std::size_t i = 0; i < N; ++i)
    pointers[i] = texts[i].data();
  return pointers;
}

constexpr char* writeWhole(char* out, std::int64_t number) {
  std::int64_t unit = 1;
  while (number / unit >= 10)
    unit *= 10;
  for (; unit > 0; unit /= 10)
    *out++ = static_cast<char>('0' + number / unit % 10);
  return out;
}

constexpr char* writeTenths(char* out, std::int64_t tenths) {
  if (tenths < 0) {
    *out++ = '-';
    tenths = -tenths;
  }
  out = writeWhole(out, tenths / 10);
  *out++ = '.';
  return writeWhole(out, tenths % 10);
}

constexpr void writeUnit(char* out, const char* unit) {
  while (*unit != '\0')
    *out++ = *unit++;
}

/// Starts at `tenths` of a decibel, in steps of 1 dB up to `coarseEnd`, then of 0.5 dB.
template <std::size_t N>
constexpr Steps<N> levelSteps(std::int64_t tenths, std::int64_t coarseEnd) {
  Steps<N> steps;
  for (std::size_t i = 0; i < N; ++i) {
    writeTenths(steps.texts[i].data(), tenths);
    steps.values[i] = roundedTo(static_cast<double>(tenths) / 10.0, 10.0);
    tenths += tenths < coarseEnd ? 10 : 5;
  }
  return steps;
}

constexpr Steps<_num_freq_disp_elements> frequencySteps() {
  constexpr double kOctavesPerStep = std::numbers::ln10 / std::numbers::ln2 / 40.0;
  Steps<_num_freq_disp_elements> steps;
  for (std::size_t i = 0; i < steps.values.size(); ++i) {
    const double hertz = 20.0 * powerOfTwo(kOctavesPerStep * static_cast<double>(i));
    steps.values[i] = roundedTo(hertz, 100.0);
    char* text = steps.texts[i].data();
    if (hertz < 100.0) {
      writeUnit(writeTenths(text, nearestWhole(hertz * 10.0)), " Hz");
    } else if (hertz < 10000.0) {
      writeUnit(writeWhole(text, nearestWhole(hertz)), " Hz");
    } else {
      writeUnit(writeTenths(text, nearestWhole(hertz / 100.0)), " kHz");
    }
  }
  return steps;
}

constexpr auto kLevels = levelSteps<_num_amp_disp_elements>(-500, -120);
constexpr auto kLevels24 = levelSteps<_num_amp24_disp_elements>(-240, -240);
constexpr auto kFrequencies = frequencySteps();

}  // namespace

constinit const std::array<const char*, _num_amp_disp_elements> _amp_disp_str =
    pointersTo(kLevels.texts);
constinit const std::array<float, _num_amp_disp_elements> _amp_disp_values = kLevels.values;

constinit const std::array<const char*, _num_amp24_disp_elements> _amp24_disp_str =
    pointersTo(kLevels24.texts);
constinit const std::array<float, _num_amp24_disp_elements> _amp24_disp_values = kLevels24.values;

constinit const std::array<const char*, _num_freq_disp_elements> _freq_disp_str =
    pointersTo(kFrequencies.texts);
constinit const std::array<float, _num_freq_disp_elements> _freq_disp_values = kFrequencies.values;

}  // namespace cairnset
