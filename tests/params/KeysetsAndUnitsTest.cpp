#include <cmath>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "params/Keysets.h"
#include "params/UnitTables.h"

namespace cairnset {
namespace {

TEST(Keysets, LookUpsAndRows) {
  const std::tuple<int, const char*, std::uint32_t, int, int> cases[] = {
      {-32767, "No Piano Keyset", 0, 0, 0},
      {-4, "Concerto 10 Level", 1, 1, 1},
      {96, "Nordic D 10 Level", 2, 1, 1},
      {201, "Salon 7ft 6 Level II ", 3, 1, 1},
      {429, "Urban Upright Soft Levels", 5, 3, 2},
      {566, "Pin Piano 8 Level", 8, 3, 2},
      {5, nullptr, 0, 0, 0}};
  for (const auto& [id, name, instrument, product, form] : cases) {
    EXPECT_STREQ(findKeysetNameWithID(id), name);
    EXPECT_EQ(findInstrumentIDWithKeysetID(id), instrument) << id;
    EXPECT_EQ(getProductIDFromKeysetID(id), product) << id;
    EXPECT_EQ(getFormFromKeysetID(id), form) << id;
  }
  std::vector<int> rows(9);
  const KeysetRow* row = keysetIDList;
  for (; row->name != nullptr; ++row) {
    ++rows.at(row->instrumentID);
    EXPECT_TRUE(row < keysetIDList + 3 || row->keysetID > row[-1].keysetID) << row->name;
  }
  EXPECT_EQ(rows, (std::vector<int>{2, 16, 8, 8, 12, 10, 10, 8, 8}));
}

TEST(UnitTables, StatedEntriesHoldExactly) {
  const std::pair<float, float> cases[] = {{dB10_to_gain[0], 1.0F},
                                           {getdB10Gain(60.9F), 0.5F},
                                           {dB10_to_gain[900], 0.000030518F},
                                           {db10p24_to_Gain[0], 0.0625F},
                                           {getdB10p24Gain(60.0F), 2.0F},
                                           {getdB10p24Gain(240.0F), 16.0F},
                                           {getMidiFreq(69), 880.0F},
                                           {lookupMIDIVolume(0), 0.0F},
                                           {lookupMIDIVolume(127), 1.0F},
                                           {getSemitoneScale(-120), 1.0F / 1024.0F},
                                           {getCentScale(0.0F), 1.0F},
                                           {lp1p_coef[0], 1.0F},
                                           {getMidiFreq(static_cast<char>(-128)), midi_freq[0]}};
  for (const auto& [entry, value] : cases)
    EXPECT_EQ(entry, value);
  // Worked by hand, to six digits.
  EXPECT_NEAR(lp1p_coef[1], 0.996863, 1e-6);
  EXPECT_NEAR(getMidiLowpassCoef48000(0), 0.997862, 1e-6);
  EXPECT_FLOAT_EQ(getCentScale(100.0F), 1.0594631F);
  EXPECT_FLOAT_EQ(getMidiFreq(127), 25087.708F);
}

TEST(UnitTables, NoteNames) {
  for (int note = 0; note < 127; ++note)
    EXPECT_EQ(getMIDIKey(MIDIKeys[static_cast<std::size_t>(note)]), note);
  const std::pair<const char*, int> cases[] = {{"C-1", 0},   {"C#-1", 1}, {"C4", 60},
                                               {"F#9", 126}, {"G9", 0},   {"H2", 0},
                                               {"a4", 0},    {"A4 ", 0},  {"", 0}};
  for (const auto& [name, note] : cases)
    EXPECT_EQ(getMIDIKey(name), note) << name;
}

TEST(UnitTables, LowpassLookUps) {
  const float infinity = std::numeric_limits<float>::infinity();
  const std::pair<float, std::size_t> cases[] = {{0.0004F, 0}, {-infinity, 0}, {std::nanf(""), 0},
                                                 {0.001F, 2},  {0.4996F, 999}, {infinity, 999}};
  for (const auto& [ratio, entry] : cases)
    EXPECT_EQ(getFreqCoef_1plp(ratio), lp1p_coef[entry]) << ratio;
  for (std::size_t i = 1; i < lp1p_coef.size(); ++i)
    ASSERT_EQ(getFreqRatio_1plp(lp1p_coef[i]), static_cast<double>(i) / 2000.0);
  EXPECT_EQ(getFreqRatio_1plp(0.0F), 0.4995);
}

}  // namespace
}  // namespace cairnset
