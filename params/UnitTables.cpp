#include "params/UnitTables.h"

#include <cstddef>
#include <numbers>
#include <string_view>

#include "params/ConstantMath.h"

namespace cairnset {

namespace {

using NoteName = std::array<char, 5>;  // "C#-1"

constexpr std::array<NoteName, 128> noteNames() {
  constexpr std::string_view kLetters = "C C#D D#E F F#G G#A A#B ";
  std::array<NoteName, 128> names = {};
  for (std::size_t note = 0; note < names.size(); ++note) {
    const std::string_view letter = kLetters.substr(note % 12 * 2, 2);
    char* out = names[note].data();
    *out++ = letter[0];
    if (letter[1] == '#') *out++ = '#';
    if (note < 12) *out++ = '-';
    *out = static_cast<char>('0' + (note < 12 ? 1 : note / 12 - 1));
  }
  return names;
}

constexpr auto kNoteNames = noteNames();

constexpr std::array<const char*, 128> noteNamePointers() {
  std::array<const char*, 128> pointers = {};
  for (std::size_t note = 0; note < pointers.size(); ++note)
    pointers[note] = kNoteNames[note].data();
  return pointers;
}

/// A table of `N` entries: entry i is `formula(i)`.
template <std::size_t N, class Formula>
constexpr std::array<float, N> tableOf(Formula formula) {
  std::array<float, N> table = {};
  for (std::size_t i = 0; i < N; ++i)
    table[i] = static_cast<float>(formula(static_cast<double>(i)));
  return table;
}

constexpr double frequencyOfNote(double note) {
  return 440.0 * powerOfTwo((note - 57.0) / 12.0);
}

constexpr double lowpassCoefficient(double fractionOfSamplingRate) {
  const double exponent = -2.0 * std::numbers::pi * fractionOfSamplingRate;
  return powerOfTwo(exponent / std::numbers::ln2);
}

/// The entry of a note. Negative notes, which are 128 and up if char is unsigned, get the first
/// one.
std::size_t entryOfNote(char note) {
  const auto entry = static_cast<unsigned char>(note);
  return entry < 128 ? entry : 0;
}

}  // namespace

constinit const std::array<const char*, 128> MIDIKeys = noteNamePointers();

constinit const std::array<float, 901> dB10_to_gain =
    tableOf<901>([](double i) { return roundedTo(powerOfTwo(-i / 60.0), 1e9); });

constinit const std::array<float, 481> db10p24_to_Gain =
    tableOf<481>([](double i) { return powerOfTwo((i - 240.0) / 60.0); });

constinit const std::array<float, 128> midi_freq = tableOf<128>(frequencyOfNote);

constinit const std::array<float, 128> midi_volume_table =
    tableOf<128>([](double n) { return (n / 127.0) * (n / 127.0); });

constinit const std::array<float, 1000> lp1p_coef =
    tableOf<1000>([](double i) { return lowpassCoefficient(i / 2000.0); });

constinit const std::array<float, 128> midi_1plp_coef_at_48000_table =
    tableOf<128>([](double n) { return lowpassCoefficient(frequencyOfNote(n) / 48000.0); });

constinit const std::array<float, 257> semitone_to_scale =
    tableOf<257>([](double k) { return powerOfTwo((k - 128.0) / 12.0); });
constinit const float* const semitone_to_scale_origin = semitone_to_scale.data() + 128;

constinit const std::array<float, 2001> cent_to_scale =
    tableOf<2001>([](double k) { return powerOfTwo((k - 1000.0) / 12000.0); });
constinit const float* const cent_to_scale_origin = cent_to_scale.data() + 1000;

int getMIDIKey(const char* name) {
  const std::string_view wanted = name;
  for (int note = 0; note < 127; ++note) {  // "G9" is skipped on purpose
    if (wanted == MIDIKeys[static_cast<std::size_t>(note)]) return note;
  }
  return 0;
}

float getdB10Gain(float tenths) {
  return dB10_to_gain[static_cast<std::size_t>(tenths)];
}

float getdB10p24Gain(float tenths) {
  return db10p24_to_Gain[static_cast<std::size_t>(tenths + 240.0F)];
}

float getSemitoneScale(int semis) {
  return semitone_to_scale_origin[semis];
}

float getCentScale(float cents) {
  return cent_to_scale_origin[static_cast<int>(cents * 10.0F)];
}

float getFreqCoef_1plp(float f) {
  const float entry = f * 2000.0F;
  if (entry >= 999.0F) return lp1p_coef[999];
  return entry >= 1.0F ? lp1p_coef[static_cast<std::size_t>(entry)] : lp1p_coef[0];
}

double getFreqRatio_1plp(float coef) {
  for (int i = 999; i >= 1; --i) {
    if (lp1p_coef[static_cast<std::size_t>(i)] >= coef) return i / 2000.0;
  }
  return 0.0;
}

float getMidiFreq(char note) {
  return midi_freq[entryOfNote(note)];
}

float getMidiLowpassCoef48000(char note) {
  return midi_1plp_coef_at_48000_table[entryOfNote(note)];
}

float lookupMIDIVolume(char value) {
  return midi_volume_table[static_cast<unsigned char>(value)];
}

}  // namespace cairnset
