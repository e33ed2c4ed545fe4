#include <cmath>
#include <locale>

#include "params/Keysets.h"
#include "params/ParamTables.h"
#include "params/UnitTables.h"
#include "tests/Testing.h"

namespace cairnset {

static std::string shown(const ParamConverter& converter, float raw) {
  char text[kParamDisplaySize];
  converter.rawToDisplay(raw, text);
  return text;
}

// Each with the number of its steps, the first and the last: those of the parameters, in their
// order, and some that no parameter has.
const std::string kRaw = "2147483648: -32768 to 4294967296 | ";
const std::string kRanges =
    "97: -24.0 to 24.0 | 40: 4 to 160 | 3: Small to Large | 2: Audience to Performer | "
    "2: Equal to Stretch | 9: -4 to 4 | 23: -11 to 11 | 199: -99 to 99 | 81: 420.0 to 460.0 | " +
    kRaw +
    "2: Off to On | 2: Off to On | 61: 0 to 60 | 199: -99 to 99 | "
    "97: -24.0 to 24.0 | 101: 0 to 100 | 281: 0.20 to 3.00 | 2: Off to On | " +
    kRaw +
    "97: -24.0 to 24.0 | 2: Off to On | 201: -100 to 100 | "
    "301: 0.0 to 30.0 | 101: 0 to 100 | 401: 0.00 to 4.00 | 201: -100 to 100 | "
    "121: 20.0 Hz to 20.0 kHz | 2: Off to On | 121: 20.0 Hz to 20.0 kHz | 97: -24.0 to 24.0 | "
    "121: 20.0 Hz to 20.0 kHz | 97: -24.0 to 24.0 | 2: Off to On | " +
    kRaw + "25: -6.0 to 6.0 | 2: Off to On | " + kRaw +
    "201: -100 to 100 | 151: 0.50 to 2.00 | 1001: 0.0 to 100.0 | 121: 20.0 Hz to 20.0 kHz | " +
    kRaw +
    "201: -100 to 100 | 128: 0 to 127 | 128: 0 to 127 | 111: -50.0 to 24.0 | 3001: 0.0 to 300.0 | "
    "501: 0.00 to 5.00 | 201: 0.00 to 2.00 | 100: 0.0001 to 0.0100 | ";

TEST(ParamConverter, EveryStepSurvivesEveryWayThereAndBack) {
  std::string ranges;
  std::vector all(std::begin(Param_Converters), std::end(Param_Converters));
  all.insert(all.end(),
             {&StaticAmpTableParamConverter, &Static300msDelayConverter, &Static5msDelayConverter,
              &Static2msDelayConverter, &StaticSusRampIncConverter});
  for (const ParamConverter* converter : all) {
    const long last = converter->rawToIndex(1.0F);
    ranges += std::to_string(last + 1ll) + ": " + shown(*converter, 0.0F) + " to " +
              shown(*converter, 1.0F) + " | ";
    for (long index = 0; index <= std::min(last, 65535l); ++index) {
      char text[kParamDisplaySize];
      converter->indexToDisplay(index, text);
      const float value = converter->rawToIntrinsic(converter->indexToRaw(index));
      ASSERT_EQ(converter->intrinsicToIndex(value), index) << text;
      ASSERT_EQ(converter->quantizeIntrinsic(value), value) << text;
      ASSERT_EQ(converter->stringToIndex(text), index) << text;
    }
  }
  EXPECT_EQ(ranges, kRanges);
}

TEST(ParamConverter, TypedTextIsReadAlikeUnderEveryLocale) {
  struct Commas : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
  };
  const std::locale before = std::locale::global(std::locale(std::locale(), new Commas));
  const auto indices = [](const ParamConverter& converter, std::vector<const char*> texts) {
    std::string shown;
    for (const char* text : texts)
      shown += std::to_string(converter.stringToIndex(text)) + ' ';
    return shown;
  };
  EXPECT_EQ(indices(StaticPercentConverter, {" 50 % ", "+50%", "49.4", "-0.0", "-7", "12345678901",
                                             ".5", "1. x", "5 bananas", "1,5", "0x10"}),
            "50 50 49 0 0 100 0 1 -1 -1 -1 ");
  EXPECT_EQ(indices(Static24dBGainConverter, {"-6db", "-5.8", "0.25", "100", "-99 dB", "1 kHz"}),
            "36 36 49 96 0 -1 ");
  EXPECT_EQ(indices(StaticFreqTableParamConverter,
                    {"9.46 kHz", "9463 hz", "9463", "21.9", "50 KHZ", "50 dB"}),
            "107 107 107 2 120 -1 ");
  EXPECT_EQ(indices(StaticOnOffParamConverter, {"\toFF ", "1", "O"}), "0 1 -1 ");
  EXPECT_EQ(indices(StaticBufferSizeParamConverter, {"LARGE", "0.5"}), "2 1 ");
  const std::string digits(400, '9');
  for (const ParamConverter* converter : Param_Converters)
    EXPECT_EQ(indices(*converter, {"", "abc", "1.2.3", "nan", "-", ".", "--1", "5-", "1e400", "%",
                                   digits.c_str(), "\xFF", nullptr}),
              "-1 -1 -1 -1 -1 -1 -1 -1 -1 -1 -1 -1 -1 ");
  std::locale::global(before);
}

TEST(ParamConverter, StepsRoundToEvenAndHaveNoLowerLimit) {
  const StepParamConverter tens(0, 10, 1, 0);
  std::string at;
  for (const float raw : {-0.2F, 0.25F, 1e30F, NAN, -1e30F})
    at += std::to_string(tens.rawToIndex(raw)) + ' ';
  EXPECT_EQ(at, "-2 2 10 0 -2147483648 ");
  EXPECT_EQ(intToFloatParam(20, 40) + intToFloatParam(5, 1), 20.0F / 39.0F);
  char text[kParamDisplaySize + 1] = {};
  StepParamConverter(1e30, 2e30, 1e29, 4).rawToDisplay(0.0F, text);
  EXPECT_EQ(std::string(text).size(), kParamDisplaySize - 1);
  const StepParamConverter fractions(-20.0 / 280, 1, 1.0 / 280, 0);
  EXPECT_EQ(fractions.quantizeIntrinsic(0.0F), 0.0F);
  // Keysets; 'ord4', 'ord6' and 'sma1' as far as a float holds them.
  for (const float id :
       {-32767.0F, 579.0F, 0x6F726400p0F, 0x6F726480p0F, 0x736D6100p0F, 0xFFFF00p8F})
    EXPECT_EQ(StaticRawParamConverter.quantizeIntrinsic(id), id);
}

// Tables take the higher entry and stay inside, words split at their single-precision bounds, and a
// balance is not stepped.
TEST(ParamConverter, WhatIsShownAndWhatTheEngineTakes) {
  const auto& hertz = StaticFreqTableParamConverter;
  const std::tuple<const ParamConverter*, float, float, const char*> cases[] = {
      {&StaticBufferSizeParamConverter, std::nextafter(0.34F, 0.0F), 0.0F, "Small"},
      {&StaticBufferSizeParamConverter, 0.34F, 0.5F, "Medium"},
      {&StaticBufferSizeParamConverter, std::nextafter(0.67F, 0.0F), 0.5F, "Medium"},
      {&StaticBufferSizeParamConverter, 0.67F, 1.0F, "Large"},
      {&StaticBipolarPercentConverter, 0.751F, 2.0F * 0.751F - 1.0F, "50"},
      {&Static24dBGainConverter, -0.5F, 0.0625F, "-24.0"},
      {&Static24dBGainConverter, Static24dBGainConverter.intrinsicToRaw(24.1F), 16.0F, "24.0"},
      {&hertz, hertz.intrinsicToRaw(94.0F), 94.63F, "94.6 Hz"},
      {&hertz, hertz.intrinsicToRaw(95.0F), 100.24F, "100 Hz"},
      {&hertz, hertz.intrinsicToRaw(10000.0F), 10023.74F, "10.0 kHz"}};
  for (const auto& [converter, raw, value, text] : cases) {
    EXPECT_EQ(converter->rawToEngine(raw), value) << text;
    EXPECT_EQ(shown(*converter, raw), text);
  }
  EXPECT_EQ(StaticAmpTableParamConverter.quantizeIntrinsic(-11.9F), -11.5F);
}

TEST(ParamTables, DefaultsAreStepsOfTheirConverters) {
  float sum = 0.0F;
  std::string labels;
  for (ParamTag tag = 0; tag < kNumParams; ++tag) {
    const float value = Param_Defaults[tag];
    sum += value;
    labels += std::string(Param_Labels[tag]) + ",";
    if (Param_Converters[tag] == &StaticFreqTableParamConverter) continue;  // round figures
    EXPECT_EQ(Param_Converters[tag]->quantizeIntrinsic(value), value) << Param_Names_Long[tag];
  }
  EXPECT_EQ(sum, 32206.5F);
  EXPECT_EQ(labels,
            "dB,,,,,Oct,ST,cts,Hz,,,,dB,,dB,%,x,,,dB,,%,ms,%,Hz,%,,,,dB,,dB,,,dB,,,%,x,ms,,,%,,,");
}

TEST(Keysets, LookUpsAndRows) {
  std::string found;
  for (const int id : {-32767, -4, 96, 201, 429, 566, 5}) {
    const char* name = findKeysetNameWithID(id);
    found += std::to_string(100 * int(findInstrumentIDWithKeysetID(id)) +
                            10 * getProductIDFromKeysetID(id) + getFormFromKeysetID(id));
    found += (name != nullptr ? name : "none") + std::string(", ");
  }
  EXPECT_EQ(found,
            "0No Piano Keyset, 111Concerto 10 Level, 211Nordic D 10 Level, "
            "311Salon 7ft 6 Level II , 532Urban Upright Soft Levels, 832Pin Piano 8 Level, "
            "0none, ");
  std::vector<int> rows(9);
  for (const KeysetRow* row = keysetIDList; row->name != nullptr; ++row)
    ++rows.at(row->instrumentID);
  EXPECT_EQ(rows, (std::vector<int>{2, 16, 8, 8, 12, 10, 10, 8, 8}));
}

// Stated entries; then to six digits, worked by hand.
TEST(UnitTables, EntriesNotesAndLowpassLookUps) {
  const std::vector<double> entries = {dB10_to_gain[0],           getdB10Gain(60.9F),
                                       dB10_to_gain[900],         db10p24_to_Gain[0],
                                       getdB10p24Gain(60),        getdB10p24Gain(240),
                                       getMidiFreq(69),           lookupMIDIVolume(0),
                                       lookupMIDIVolume(127),     getSemitoneScale(-120),
                                       getCentScale(0),           getFreqRatio_1plp(0),
                                       getFreqCoef_1plp(0.0004F), getFreqCoef_1plp(-INFINITY),
                                       getFreqCoef_1plp(NAN)};
  EXPECT_EQ(entries, (std::vector<double>{1, 0.5, 0.000030518F, 0.0625, 2, 16, 880, 0, 1,
                                          1.0 / 1024, 1, 0.4995, 1, 1, 1}));
  EXPECT_TRUE(getMidiFreq(static_cast<char>(-128)) == midi_freq[0] &&
              getFreqCoef_1plp(0.001F) == lp1p_coef[2]);
  EXPECT_TRUE(getFreqCoef_1plp(INFINITY) == lp1p_coef[999] &&
              getFreqCoef_1plp(0.4996F) == lp1p_coef[999]);
  EXPECT_TRUE(getMIDIKey("C#-1") == 1 && getMIDIKey("C4") == 60 && getMIDIKey("F#9") == 126);
  for (const char* name : {"G9", "H2", "a4", "A4 ", ""})
    EXPECT_EQ(getMIDIKey(name), 0) << name;
  EXPECT_NEAR(lp1p_coef[1], 0.996863, 1e-6);
  EXPECT_NEAR(getMidiLowpassCoef48000(0), 0.997862, 1e-6);
  EXPECT_FLOAT_EQ(getCentScale(100.0F), 1.0594631F);
  EXPECT_FLOAT_EQ(getMidiFreq(127), 25087.708F);
  for (std::size_t i = 1; i < lp1p_coef.size(); ++i)
    ASSERT_EQ(getFreqRatio_1plp(lp1p_coef[i]), static_cast<double>(i) / 2000.0);
}

}  // namespace cairnset
