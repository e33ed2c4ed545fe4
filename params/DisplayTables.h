// The steps of the level and frequency parameters: the displayed texts and their values.
//
// Texts and values are parallel and ascending. The tables are constant-initialised.
#pragma once

#include <array>

namespace cairnset {

inline constexpr long _num_amp_disp_elements = 111;
inline constexpr long _num_amp24_disp_elements = 97;
inline constexpr long _num_freq_disp_elements = 121;

/// -50 to -12 dB in steps of 1 dB, then up to 24 dB in steps of 0.5 dB: "-50.0" ... "24.0".
extern const std::array<const char*, _num_amp_disp_elements> _amp_disp_str;
extern const std::array<float, _num_amp_disp_elements> _amp_disp_values;

/// -24 to 24 dB in steps of 0.5 dB: "-24.0" ... "24.0".
extern const std::array<const char*, _num_amp24_disp_elements> _amp24_disp_str;
extern const std::array<float, _num_amp24_disp_elements> _amp24_disp_values;

/// 20 Hz to 20 kHz, 40 steps a decade. Values are rounded to hundredths of a hertz. Texts are
/// rounded from the unrounded frequency, so 28.2508 Hz is 28.25f and "28.3 Hz": "20.0 Hz" ...
/// "94.6 Hz", "100 Hz" ... "9463 Hz", "10.0 kHz" ... "20.0 kHz".
extern const std::array<const char*, _num_freq_disp_elements> _freq_disp_str;
extern const std::array<float, _num_freq_disp_elements> _freq_disp_values;

}  // namespace cairnset
