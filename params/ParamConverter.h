// How a parameter's value is stepped, shown, typed and handed to the sound engine.
//
//   raw        0.0 to 1.0, as a slider has it
//   intrinsic  the parameter's own units, as a preset stores it and Param_Labels names it
//   index      the number of the step, from 0
//   engine     what the sound engine takes; the intrinsic value unless a class says otherwise
//
// A value that is no number counts as the first step of a step, binary or buffer-size converter.
// Converters hold no state that changes, so one object serves every parameter of its kind.
#pragma once

#include <cstddef>
#include <cstdint>

#include "params/DisplayTables.h"

namespace cairnset {

/// Bytes that rawToDisplay and indexToDisplay may write, NUL included. They write no more; a text
/// that does not fit, which none of the shared converters has, is cut.
inline constexpr std::size_t kParamDisplaySize = 16;

/// The raw value of step `index` of `count`: index / (count - 1) in single precision, limited to
/// 0.0 to 1.0; 0.0 where there are fewer than two steps.
float intToFloatParam(long index, long count);

class ParamConverter {
 public:
  constexpr ParamConverter() = default;
  virtual ~ParamConverter() = default;

  virtual float rawToIntrinsic(float raw) const = 0;
  virtual float intrinsicToRaw(float value) const = 0;
  /// Writes the value as it is shown, without its label, into kParamDisplaySize bytes.
  virtual void rawToDisplay(float raw, char* text) const = 0;
  virtual float indexToRaw(long index) const = 0;
  virtual long rawToIndex(float raw) const = 0;

  virtual long intrinsicToIndex(float value) const;
  virtual void indexToDisplay(long index, char* text) const;
  virtual float rawToEngine(float raw) const;
  /// The value of the step that `value` belongs to.
  virtual float quantizeIntrinsic(float value) const;
  /// The step meant by typed text, or -1 where it means none, null included. Case and blanks around
  /// do not count, and the decimal sign is always a point.
  ///
  /// Taken are the words that the converter shows, and plain decimal numbers in the parameter's
  /// own units, with or without any one of the labels in Param_Labels: "50", "+50.2 %", "-6 dB". A
  /// converter knows no label of its own, so it cannot object to a wrong one. A number goes to its
  /// step by intrinsicToIndex, or to the first or last step when it lies beyond them; a number with
  /// an exponent, or one too large for double precision, is refused.
  virtual long stringToIndex(const char* text) const;
};

/// Evenly spaced values, shown with a fixed number of decimals.
class StepParamConverter : public ParamConverter {
 public:
  /// `step` above 0 and `max` not below `min`. The steps are counted without rounding up, so a last
  /// one that would pass `max` is left out.
  constexpr StepParamConverter(double min, double max, double step, short decimals)
      : _min(min),
        _step(step),
        _decimals(decimals),
        _count(static_cast<std::int64_t>((max - min) / step) + 1) {}

  float rawToIntrinsic(float raw) const override;
  float intrinsicToRaw(float value) const override;
  void rawToDisplay(float raw, char* text) const override;
  float indexToRaw(long index) const override;
  /// Never above the last step, but below 0 for a negative `raw`; rawToIntrinsic then lies below
  /// the minimum by as many steps. On purpose. Limited to 32 bits; the values go on beyond.
  long rawToIndex(float raw) const override;

 private:
  double _min;
  double _step;
  short _decimals;
  std::int64_t _count;
};

/// Whole numbers that are identifiers rather than amounts: keyset ids, which may be negative, and
/// four-character codes, which take all 32 bits. A raw value has 24 significant bits, so the range
/// begins close to the ids, which must survive the way there and back exactly. So do codes as far
/// as single precision holds them, but for one in 2,500.
class RawParamConverter : public StepParamConverter {
 public:
  constexpr RawParamConverter() : StepParamConverter(-32768, 4294967295, 1, 0) {}
};

/// -100 to 100 percent by 1; for the engine -1.0 to 1.0, not stepped.
class BipolarPercentParamConverter : public StepParamConverter {
 public:
  constexpr BipolarPercentParamConverter() : StepParamConverter(-100, 100, 1, 0) {}
  float rawToEngine(float raw) const override;
};

/// Values and texts from two parallel tables.
class TableParamConverter : public ParamConverter {
 public:
  /// `count` entries, at least one; `values` ascending. The tables must outlive the converter.
  constexpr TableParamConverter(const char* const* texts, const float* values, long count)
      : _texts(texts), _values(values), _count(count) {}

  float rawToIntrinsic(float raw) const override;
  /// A value between two entries counts as the higher one, one above the table as the last.
  float intrinsicToRaw(float value) const override;
  void rawToDisplay(float raw, char* text) const override;
  float indexToRaw(long index) const override;
  /// As of StepParamConverter: negative for a negative `raw`, whose value and text are those of the
  /// first entry.
  long rawToIndex(float raw) const override;
  /// Numbers only; one between two entries goes to the nearer, from half-way on to the higher.
  long stringToIndex(const char* text) const override;

 protected:
  long nearestIndex(double value) const;

 private:
  long entryOf(float raw) const;

  const char* const* _texts;
  const float* _values;
  long _count;
};

/// Levels in decibels. For the engine a gain, at 6 dB for each doubling, as in the two below.
class AmpTableParamConverter : public TableParamConverter {
 public:
  constexpr AmpTableParamConverter()
      : TableParamConverter(_amp_disp_str.data(), _amp_disp_values.data(), _num_amp_disp_elements) {
  }
  float rawToEngine(float raw) const override;
};

/// The entries from -6 to 6 dB of the same tables.
class AmpTable6dBParamConverter : public TableParamConverter {
 public:
  constexpr AmpTable6dBParamConverter()
      : TableParamConverter(_amp_disp_str.data() + 50, _amp_disp_values.data() + 50, 25) {}
  float rawToEngine(float raw) const override;
};

class AmpTable24dBParamConverter : public TableParamConverter {
 public:
  constexpr AmpTable24dBParamConverter()
      : TableParamConverter(_amp24_disp_str.data(), _amp24_disp_values.data(),
                            _num_amp24_disp_elements) {}
  float rawToEngine(float raw) const override;
};

/// Frequencies in hertz, whose texts carry their unit.
class FreqTableParamConverter : public TableParamConverter {
 public:
  constexpr FreqTableParamConverter()
      : TableParamConverter(_freq_disp_str.data(), _freq_disp_values.data(),
                            _num_freq_disp_elements) {}
  /// As of TableParamConverter, but the unit is "Hz", "kHz" or none: "9463", "9463 Hz", "9.46 kHz".
  long stringToIndex(const char* text) const override;
};

/// Two states, split at 0.5: below it index 0, raw and intrinsic 0.0; from it on 1 and 1.0.
class BinaryParamConverter : public ParamConverter {
 public:
  float rawToIntrinsic(float raw) const override;
  float intrinsicToRaw(float value) const override;
  void rawToDisplay(float raw, char* text) const override;
  float indexToRaw(long index) const override;
  long rawToIndex(float raw) const override;
  float rawToEngine(float raw) const override;
};

class OnOffParamConverter : public BinaryParamConverter {
 public:
  void rawToDisplay(float raw, char* text) const override;
};

class StereoPerspectiveParamConverter : public BinaryParamConverter {
 public:
  void rawToDisplay(float raw, char* text) const override;
};

class TuningParamConverter : public BinaryParamConverter {
 public:
  void rawToDisplay(float raw, char* text) const override;
};

/// Three states, split at 0.34 and 0.67: small 0.0, medium 0.5 and large 1.0.
class BufferSizeParamConverter : public ParamConverter {
 public:
  float rawToIntrinsic(float raw) const override;
  float intrinsicToRaw(float value) const override;
  void rawToDisplay(float raw, char* text) const override;
  float indexToRaw(long index) const override;
  long rawToIndex(float raw) const override;
};

}  // namespace cairnset
