#include "params/ParamConverter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <locale>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

#include "params/ParamTables.h"

namespace cairnset {

namespace {

constexpr double kLowestStep = std::numeric_limits<std::int32_t>::min();
constexpr double kAboveAllSteps = 0x1p33;

std::int64_t nearestStep(double steps) {
  if (std::isnan(steps)) return 0;
  return std::llrintf(static_cast<float>(std::clamp(steps, kLowestStep, kAboveAllSteps)));
}

std::int64_t stepOf(float raw, std::int64_t count) {
  const float steps = raw * static_cast<float>(count - 1);
  return std::min(nearestStep(steps), count - 1);
}

// Limited to 32 bits, so that an index is the same where long has only 32.
long indexOf(std::int64_t step) {
  return static_cast<long>(std::min<std::int64_t>(step, std::numeric_limits<std::int32_t>::max()));
}

float rawOf(std::int64_t step, std::int64_t count) {
  if (count <= 1) return 0.0F;
  return std::clamp(static_cast<float>(step) / static_cast<float>(count - 1), 0.0F, 1.0F);
}

float gainOfDecibels(float decibels) {
  return static_cast<float>(std::pow(2.0, decibels / 6.0));
}

void show(char* text, const char* shown) {
  std::snprintf(text, kParamDisplaySize, "%s", shown);
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameWord(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lower(x) == lower(y); });
}

struct Quantity {
  double number;
  std::string_view unit;
};

std::optional<Quantity> readQuantity(std::string_view text) {
  const std::string_view quantity = trimmed(text);
  const auto end = std::min(quantity.find_first_not_of("+-.0123456789"), quantity.size());
  std::istringstream digits{std::string(quantity.substr(0, end))};
  digits.imbue(std::locale::classic());
  double number = 0.0;
  if (!(digits >> number) || digits.peek() != std::istringstream::traits_type::eof()) return {};
  return Quantity{number, trimmed(quantity.substr(end))};
}

bool isLabel(std::string_view unit) {
  return std::any_of(Param_Labels.begin(), Param_Labels.end(),
                     [unit](const char* label) { return sameWord(unit, label); });
}

}  // namespace

float intToFloatParam(long index, long count) {
  return rawOf(index, count);
}

// --- ParamConverter --------------------------------------------------------------------------

long ParamConverter::intrinsicToIndex(float value) const {
  return rawToIndex(intrinsicToRaw(value));
}

void ParamConverter::indexToDisplay(long index, char* text) const {
  rawToDisplay(indexToRaw(index), text);
}

float ParamConverter::rawToEngine(float raw) const {
  return rawToIntrinsic(raw);
}

float ParamConverter::quantizeIntrinsic(float value) const {
  return rawToIntrinsic(intrinsicToRaw(value));
}

long ParamConverter::stringToIndex(const char* text) const {
  if (text == nullptr) return -1;
  if (const auto typed = readQuantity(text)) {
    if (!isLabel(typed->unit)) return -1;
    const double first = rawToIntrinsic(0.0F);
    const double last = rawToIntrinsic(1.0F);
    return intrinsicToIndex(static_cast<float>(std::min(std::max(typed->number, first), last)));
  }
  char shown[kParamDisplaySize];
  const long last = rawToIndex(1.0F);
  for (long index = 0; index <= last; ++index) {
    indexToDisplay(index, shown);
    if (readQuantity(shown)) return -1;  // the converter shows numbers, not words
    if (sameWord(trimmed(text), shown)) return index;
  }
  return -1;
}

// --- StepParamConverter ----------------------------------------------------------------------

float StepParamConverter::rawToIntrinsic(float raw) const {
  return static_cast<float>(_min + _step * static_cast<double>(stepOf(raw, _count)));
}

float StepParamConverter::intrinsicToRaw(float value) const {
  return rawOf(nearestStep((value - _min) / _step), _count);
}

void StepParamConverter::rawToDisplay(float raw, char* text) const {
  std::snprintf(text, kParamDisplaySize, "%.*f", static_cast<int>(_decimals),
                static_cast<double>(rawToIntrinsic(raw)));
}

float StepParamConverter::indexToRaw(long index) const {
  return rawOf(index, _count);
}

long StepParamConverter::rawToIndex(float raw) const {
  return indexOf(stepOf(raw, _count));
}

float BipolarPercentParamConverter::rawToEngine(float raw) const {
  return 2.0F * raw - 1.0F;
}

// --- TableParamConverter ---------------------------------------------------------------------

long TableParamConverter::entryOf(float raw) const {
  return std::max(rawToIndex(raw), 0L);
}

float TableParamConverter::rawToIntrinsic(float raw) const {
  return _values[entryOf(raw)];
}

float TableParamConverter::intrinsicToRaw(float value) const {
  const float* entry = std::partition_point(_values, _values + _count,
                                            [value](float lesser) { return !(lesser >= value); });
  return intToFloatParam(static_cast<long>(entry - _values), _count);
}

void TableParamConverter::rawToDisplay(float raw, char* text) const {
  show(text, _texts[entryOf(raw)]);
}

float TableParamConverter::indexToRaw(long index) const {
  return intToFloatParam(index, _count);
}

long TableParamConverter::rawToIndex(float raw) const {
  return indexOf(stepOf(raw, _count));
}

long TableParamConverter::stringToIndex(const char* text) const {
  const auto typed = readQuantity(text == nullptr ? "" : text);
  return typed && isLabel(typed->unit) ? nearestIndex(typed->number) : -1;
}

long TableParamConverter::nearestIndex(double value) const {
  long index = 0;
  while (index < _count - 1 && value - _values[index] >= _values[index + 1] - value)
    ++index;
  return index;
}

float AmpTableParamConverter::rawToEngine(float raw) const {
  return gainOfDecibels(rawToIntrinsic(raw));
}

float AmpTable6dBParamConverter::rawToEngine(float raw) const {
  return gainOfDecibels(rawToIntrinsic(raw));
}

float AmpTable24dBParamConverter::rawToEngine(float raw) const {
  return gainOfDecibels(rawToIntrinsic(raw));
}

long FreqTableParamConverter::stringToIndex(const char* text) const {
  const auto typed = readQuantity(text == nullptr ? "" : text);
  if (!typed) return -1;
  if (sameWord(typed->unit, "kHz")) return nearestIndex(typed->number * 1000.0);
  return typed->unit.empty() || sameWord(typed->unit, "Hz") ? nearestIndex(typed->number) : -1;
}

// --- BinaryParamConverter --------------------------------------------------------------------

float BinaryParamConverter::rawToIntrinsic(float raw) const {
  return raw >= 0.5F ? 1.0F : 0.0F;
}

float BinaryParamConverter::intrinsicToRaw(float value) const {
  return value >= 0.5F ? 1.0F : 0.0F;
}

void BinaryParamConverter::rawToDisplay(float raw, char* text) const {
  show(text, raw >= 0.5F ? "1" : "0");
}

float BinaryParamConverter::indexToRaw(long index) const {
  return index == 0 ? 0.0F : 1.0F;
}

long BinaryParamConverter::rawToIndex(float raw) const {
  return raw >= 0.5F ? 1 : 0;
}

float BinaryParamConverter::rawToEngine(float raw) const {
  return raw >= 0.5F ? 1.0F : 0.0F;
}

void OnOffParamConverter::rawToDisplay(float raw, char* text) const {
  show(text, raw >= 0.5F ? "On" : "Off");
}

void StereoPerspectiveParamConverter::rawToDisplay(float raw, char* text) const {
  show(text, raw >= 0.5F ? "Performer" : "Audience");
}

void TuningParamConverter::rawToDisplay(float raw, char* text) const {
  show(text, raw >= 0.5F ? "Stretch" : "Equal");
}

// --- BufferSizeParamConverter ----------------------------------------------------------------

float BufferSizeParamConverter::rawToIntrinsic(float raw) const {
  return indexToRaw(rawToIndex(raw));
}

float BufferSizeParamConverter::intrinsicToRaw(float value) const {
  return indexToRaw(rawToIndex(value));
}

void BufferSizeParamConverter::rawToDisplay(float raw, char* text) const {
  static constexpr const char* kWords[] = {"Small", "Medium", "Large"};
  show(text, kWords[rawToIndex(raw)]);
}

float BufferSizeParamConverter::indexToRaw(long index) const {
  return index == 0 ? 0.0F : index == 1 ? 0.5F : 1.0F;
}

long BufferSizeParamConverter::rawToIndex(float raw) const {
  return raw >= 0.67F ? 2 : raw >= 0.34F ? 1 : 0;
}

}  // namespace cairnset
