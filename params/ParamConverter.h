// Converts a parameter's value between steps, displayed and typed text, and the sound engine.
//
//   raw        0.0 to 1.0, as on a slider
//   intrinsic  in the parameter's own units (Param_Labels), as stored in a preset
//   index      the number of the step, from 0
//   engine     for the sound engine; equal to the intrinsic value unless a class says otherwise
//
// Step, binary and buffer-size converters treat a NaN as the first step. Converters are immutable,
// so one object serves every parameter of its kind.
#pragma once

#include <cstddef>
#include <cstdint>

#include "params/DisplayTables.h"

namespace cairnset {

/// The most bytes that rawToDisplay and indexToDisplay write, including the NUL. A text that does
/// not fit is truncated; the shared converters have none.
inline constexpr std::size_t kParamDisplaySize = 16;

/// The raw value of step `index` of `count`: index / (count - 1) in single precision, limited to
/// 0.0 to 1.0; 0.0 if there are fewer than two steps.
float intToFloatParam(long index, long count);

class ParamConverter {
 public:
  constexpr ParamConverter() = default;
  virtual ~ParamConverter() = default;

  virtual float rawToIntrinsic(float raw) const = 0;
  virtual float intrinsicToRaw(float value) const = 0;
  /// Writes the displayed text, without the label, into a buffer of kParamDisplaySize bytes.
  virtual void rawToDisplay(float raw, char* text) const = 0;
  virtual float indexToRaw(long index) const = 0;
  virtual long rawToIndex(float raw) const = 0;

  virtual long intrinsicToIndex(float value) const;
  virtual void indexToDisplay(long index, char* text) const;
  virtual float rawToEngine(float raw) const;
  /// The value of the step that `value` belongs to.
  virtual float quantizeIntrinsic(float value) const;
  /// Parses typed text. Returns the step, or -1 if the text is invalid or null. Case and
  /// surrounding spaces are ignored; the decimal separator is always a point.
  ///
  /// Accepts the words that the converter shows, and plain decimal numbers in the parameter's own
  /// units, optionally followed by any of the labels in Param_Labels: "50", "+50.2 %", "-6 dB". A
  /// converter does not know its own label, so it also accepts a wrong one. A number is converted
  /// by intrinsicToIndex and limited to the first and last step. Numbers with an exponent, or too
  /// large for double precision, are invalid.
  virtual long stringToIndex(const char* text) const;
};

/// Evenly spaced values, shown with a fixed number of decimals.
class StepParamConverter : public ParamConverter {
 public:
  /// Requires `step` > 0 and `max` >= `min`. The number of steps is rounded down, so no step
  /// exceeds `max`.
  constexpr StepParamConverter(double min, double max, double step, short decimals)
      : _min(min),
        _step(step),
        _decimals(decimals),
        _count(static_cast<std::int64_t>((max - min) / step) + 1) {}

  float rawToIntrinsic(float raw) const override;
  float intrinsicToRaw(float value) const override;
  void rawToDisplay(float raw, char* text) const override;
  float indexToRaw(long index) const override;
  /// At most the last step, but negative for a negative `raw`; rawToIntrinsic is then below the
  /// minimum by as many steps. On purpose. The index is limited to 32 bits, the value is not.
  long rawToIndex(float raw) const override;

 private:
  double _min;
  double _step;
  short _decimals;
  std::int64_t _count;
};

/// Whole numbers that are identifiers rather than amounts: keyset ids, which may be negative, and
/// four-character codes, which use all 32 bits. A raw value has 24 significant bits, so the range
/// starts close to the ids, which must survive a round trip exactly. Codes are kept to single
/// precision, except for one in 2,500.
class RawParamConverter : public StepParamConverter {
 public:
  constexpr RawParamConverter() : StepParamConverter(-32768, 4294967295, 1, 0) {}
};

/// -100 to 100 percent in steps of 1; for the engine -1.0 to 1.0, without steps.
class BipolarPercentParamConverter : public StepParamConverter {
 public:
  constexpr BipolarPercentParamConverter() : StepParamConverter(-100, 100, 1, 0) {}
  float rawToEngine(float raw) const override;
};

/// Values and texts from two parallel tables.
class TableParamConverter : public ParamConverter {
 public:
  /// `count` >= 1 entries, with ascending `values`. The tables must outlive the converter.
  constexpr TableParamConverter(const char* const* texts, const float* values, long count)
      : _texts(texts), _values(values), _count(count) {}

  float rawToIntrinsic(float raw) const override;
  /// A value between two entries is treated as the higher one, a value above the table as the last.
  float intrinsicToRaw(float value) const override;
  void rawToDisplay(float raw, char* text) const override;
  float indexToRaw(long index) const override;
  /// Negative for a negative `raw`, as in StepParamConverter; but its value and text are those of
  /// the first entry.
  long rawToIndex(float raw) const override;
  /// Accepts only numbers. One between two entries is rounded to the nearer, or to the higher if it
  /// is exactly half-way.
  long stringToIndex(const char* text) const override;

 protected:
  long nearestIndex(double value) const;

 private:
  long entryOf(float raw) const;

  const char* const* _texts;
  const float* _values;
  long _count;
};

/// Levels in decibels. The engine value is a gain, where 6 dB is a factor of two. The next two
/// classes do the same.
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

/// Frequencies in hertz. The texts include the unit.
class FreqTableParamConverter : public TableParamConverter {
 public:
  constexpr FreqTableParamConverter()
      : TableParamConverter(_freq_disp_str.data(), _freq_disp_values.data(),
                            _num_freq_disp_elements) {}
  /// As in TableParamConverter, but the unit is "Hz", "kHz" or none: "9463", "9463 Hz", "9.46 kHz".
  long stringToIndex(const char* text) const override;
};

/// Two states: below 0.5 index 0, raw and intrinsic 0.0; from 0.5 on index 1, raw and
/// intrinsic 1.0.
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

/// Three states, divided at 0.34 and 0.67: small 0.0, medium 0.5 and large 1.0.
class BufferSizeParamConverter : public ParamConverter {
 public:
  float rawToIntrinsic(float raw) const override;
  float intrinsicToRaw(float value) const override;
  void rawToDisplay(float raw, char* text) const override;
  float indexToRaw(long index) const override;
  long rawToIndex(float raw) const override;
};

}  // namespace cairnset
