#include <cmath>
#include <locale>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "params/ParamTables.h"

namespace cairnset {
namespace {

std::string shown(const ParamConverter& converter, float raw) {
  char text[kParamDisplaySize];
  converter.rawToDisplay(raw, text);
  return text;
}

// Each with the number of its steps, the first and the last.
const std::tuple<const ParamConverter*, long, const char*, const char*> kShared[] = {
    {&StaticRawParamConverter, 65535, "-32767", "32767"},
    {&StaticAmpTableParamConverter, 111, "-50.0", "24.0"},
    {&StaticFreqTableParamConverter, 121, "20.0 Hz", "20.0 kHz"},
    {&StaticOnOffParamConverter, 2, "Off", "On"},
    {&StaticStereoPerspectiveParamConverter, 2, "Audience", "Performer"},
    {&StaticTuningParamConverter, 2, "Equal", "Stretch"},
    {&StaticBufferSizeParamConverter, 3, "Small", "Large"},
    {&StaticAmpVTConverter, 61, "0", "60"},
    {&StaticNVoicesConverter, 40, "4", "160"},
    {&StaticSusRampIncConverter, 100, "0.0001", "0.0100"},
    {&StaticXPose8vsConverter, 9, "-4", "4"},
    {&StaticXPoseSemisConverter, 23, "-11", "11"},
    {&StaticXPoseCentsConverter, 199, "-99", "99"},
    {&StaticXPoseARefConverter, 81, "420.0", "460.0"},
    {&StaticVelFreqOffsetConverter, 199, "-99", "99"},
    {&StaticPercentConverter, 101, "0", "100"},
    {&StaticBipolarPercentConverter, 201, "-100", "100"},
    {&Static300msDelayConverter, 3001, "0.0", "300.0"},
    {&Static100msDelayConverter, 1001, "0.0", "100.0"},
    {&Static30msDelayConverter, 301, "0.0", "30.0"},
    {&Static5msDelayConverter, 501, "0.00", "5.00"},
    {&Static2msDelayConverter, 201, "0.00", "2.00"},
    {&StaticLFORateConverter, 401, "0.00", "4.00"},
    {&StaticSlowLFORateConverter, 201, "0.00", "2.00"},
    {&StaticBVGainConverter, 25, "-6.0", "6.0"},
    {&StaticRVSizeConverter, 151, "0.50", "2.00"},
    {&StaticReleaseConverter, 281, "0.20", "3.00"},
    {&StaticVelocityConverter, 128, "0", "127"},
    {&Static24dBGainConverter, 97, "-24.0", "24.0"}};

TEST(ParamConverter, EveryStepSurvivesEveryWayThereAndBack) {
  for (const auto& [converter, count, first, last] : kShared) {
    EXPECT_EQ(converter->rawToIndex(1.0F) + 1, count) << first << " to " << last;
    EXPECT_EQ(shown(*converter, 0.0F), first);
    EXPECT_EQ(shown(*converter, 1.0F), last);
    for (long index = 0; index < count; ++index) {
      char text[kParamDisplaySize];
      converter->indexToDisplay(index, text);
      const float value = converter->rawToIntrinsic(converter->indexToRaw(index));
      ASSERT_EQ(converter->intrinsicToIndex(value), index) << text;
      ASSERT_EQ(converter->quantizeIntrinsic(value), value) << text;
      ASSERT_EQ(converter->stringToIndex(text), index) << text;
    }
  }
}

TEST(ParamConverter, TypedTextIsReadAlikeUnderEveryLocale) {
  struct Commas : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
  };
  const std::locale before = std::locale::global(std::locale(std::locale(), new Commas));
  const std::pair<const ParamConverter*, std::vector<std::pair<const char*, long>>> groups[] = {
      {&StaticPercentConverter, {{" 50 % ", 50}, {"+50%", 50}, {"49.4", 49}, {"-0.0", 0}}},
      {&StaticPercentConverter, {{"-7", 0}, {"12345678901", 100}, {".5", 0}, {"1. x", 1}}},
      {&StaticPercentConverter, {{"5 bananas", -1}, {"1,5", -1}, {"0x10", -1}}},
      {&Static24dBGainConverter, {{"-6db", 36}, {"-5.8", 36}, {"0.25", 49}, {"100", 96}}},
      {&Static24dBGainConverter, {{"-99 dB", 0}, {"1 kHz", -1}}},
      {&StaticFreqTableParamConverter, {{"9.46 kHz", 107}, {"9463 hz", 107}, {"9463", 107}}},
      {&StaticFreqTableParamConverter, {{"21.9", 2}, {"50 KHZ", 120}, {"50 dB", -1}}},
      {&StaticOnOffParamConverter, {{"\toFF ", 0}, {"1", 1}, {"O", -1}}},
      {&StaticBufferSizeParamConverter, {{"LARGE", 2}, {"0.5", 1}}}};
  for (const auto& [converter, cases] : groups)
    for (const auto& [text, index] : cases)
      EXPECT_EQ(converter->stringToIndex(text), index) << text;
  const std::string digits(400, '9');
  for (const auto& [converter, count, first, last] : kShared)
    for (const char* text : {"", "abc", "1.2.3", "nan", "-", ".", "--1", "5-", "1e400", "%",
                             digits.c_str(), "\xFF", static_cast<const char*>(nullptr)})
      EXPECT_EQ(converter->stringToIndex(text), -1) << last << (text == nullptr ? "null" : text);
  std::locale::global(before);
}

TEST(ParamConverter, StepsRoundToEvenAndHaveNoLowerLimit) {
  const StepParamConverter tens(0, 10, 1, 0);
  const std::pair<float, long> cases[] = {{-0.2F, -2}, {0.25F, 2}, {1e30F, 10}, {NAN, 0}};
  for (const auto& [raw, index] : cases)
    EXPECT_EQ(tens.rawToIndex(raw), index) << raw;
  EXPECT_LT(tens.rawToIndex(-1e30F), -1000000);
  EXPECT_EQ(intToFloatParam(20, 40) + intToFloatParam(5, 1), 20.0F / 39.0F);
  EXPECT_EQ(StaticBipolarPercentConverter.rawToEngine(0.75F), 0.5F);
  char text[kParamDisplaySize + 1] = {};
  StepParamConverter(1e30, 2e30, 1e29, 4).rawToDisplay(0.0F, text);
  EXPECT_EQ(std::string(text).size(), kParamDisplaySize - 1);
}

TEST(ParamConverter, WordsSplitAtTheirSinglePrecisionBounds) {
  const std::tuple<float, float, const char*> cases[] = {
      {std::nextafter(0.34F, 0.0F), 0.0F, "Small"},
      {0.34F, 0.5F, "Medium"},
      {std::nextafter(0.67F, 0.0F), 0.5F, "Medium"},
      {0.67F, 1.0F, "Large"}};
  for (const auto& [raw, value, text] : cases) {
    EXPECT_EQ(StaticBufferSizeParamConverter.rawToEngine(raw), value) << text;
    EXPECT_EQ(shown(StaticBufferSizeParamConverter, raw), text);
  }
}

TEST(ParamConverter, TablesTakeTheHigherEntryAndStayInside) {
  EXPECT_EQ(Static24dBGainConverter.intrinsicToRaw(24.1F), 1.0F);
  EXPECT_EQ(StaticAmpTableParamConverter.quantizeIntrinsic(-11.9F), -11.5F);
  EXPECT_EQ(Static24dBGainConverter.rawToIndex(-0.5F), -48);
  EXPECT_EQ(shown(Static24dBGainConverter, -0.5F), "-24.0");
  const std::tuple<float, float, const char*> frequencies[] = {{28.0F, 28.25F, "28.3 Hz"},
                                                               {94.0F, 94.63F, "94.6 Hz"},
                                                               {95.0F, 100.24F, "100 Hz"},
                                                               {10000.0F, 10023.74F, "10.0 kHz"}};
  for (const auto& [asked, value, text] : frequencies) {
    EXPECT_EQ(StaticFreqTableParamConverter.quantizeIntrinsic(asked), value);
    EXPECT_EQ(shown(FreqTableParamConverter(), FreqTableParamConverter().intrinsicToRaw(asked)),
              text);
  }
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
  EXPECT_EQ(Param_Names_Long[39] + std::string(Param_Names[39]), "Ambience Pre-DelayAmb Predelay");
}

}  // namespace
}  // namespace cairnset
