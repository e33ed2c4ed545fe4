// Converts note names, decibels, semitones, cents and MIDI values through constant-initialised
// tables.
//
// The caller must respect the given ranges: the tables are indexed without a check.
#pragma once

#include <array>

namespace cairnset {

/// "C-1", "C#-1" ... "C4" (60) ... "G9" (127): sharps only.
extern const std::array<const char*, 128> MIDIKeys;

/// Gain of an attenuation by i tenths of a decibel, where 6 dB is a factor of two: 2^(-i/60),
/// rounded to nine decimals, so entry 900 is 0.000030518 and not 2^-15.
extern const std::array<float, 901> dB10_to_gain;

/// Gain of (i - 240) tenths of a decibel by the same rule: 0.0625 to 16.0.
extern const std::array<float, 481> db10p24_to_Gain;

/// Hertz: 440 * 2^((n - 57) / 12), from 16.3516. A = 440 Hz is entry 57, so note names and
/// frequencies are an octave apart. On purpose.
extern const std::array<float, 128> midi_freq;

/// (n / 127)^2.
extern const std::array<float, 128> midi_volume_table;

/// Feedback coefficient of a one-pole low-pass filter with its cutoff at i/2000 of the sampling
/// rate, exp(-2 pi i/2000). Decreases from 1.0.
extern const std::array<float, 1000> lp1p_coef;

/// The same for the frequencies of midi_freq at 48,000 Hz. Decreases from 0.997862.
extern const std::array<float, 128> midi_1plp_coef_at_48000_table;

/// Pitch ratio of -128 to 128 semitones, 2^((k - 128) / 12), and a pointer to the centre entry.
extern const std::array<float, 257> semitone_to_scale;
extern const float* const semitone_to_scale_origin;

/// Pitch ratio of -100 to 100 cents in tenths of a cent, 2^((k - 1000) / 12000), and a pointer to
/// the centre entry.
extern const std::array<float, 2001> cent_to_scale;
extern const float* const cent_to_scale_origin;

/// The note of a name spelled as in MIDIKeys, in upper case; 0 for any other text. Also 0 for "G9",
/// which is skipped on purpose.
int getMIDIKey(const char* name);

/// 0 to 900 tenths of a decibel of attenuation; fractions of a tenth are truncated.
float getdB10Gain(float tenths);

/// -240 to 240 tenths of a decibel.
float getdB10p24Gain(float tenths);

/// -128 to 128.
float getSemitoneScale(int semis);

/// -100 to 100; truncated toward 0 to tenths of a cent.
float getCentScale(float cents);

/// Coefficient for a frequency as a fraction of the sampling rate: lp1p_coef[f * 2000], limited to
/// the table for any `f`.
float getFreqCoef_1plp(float f);

/// The highest fraction of the sampling rate, 0.4995 to 0.0005, whose coefficient is at least
/// `coef`; 0.0 if there is none.
double getFreqRatio_1plp(float coef);

/// Hertz; a negative note is treated as 0, even if char is unsigned.
float getMidiFreq(char note);

/// As getMidiFreq, but from midi_1plp_coef_at_48000_table.
float getMidiLowpassCoef48000(char note);

/// 0 to 127.
float lookupMIDIVolume(char value);

}  // namespace cairnset
