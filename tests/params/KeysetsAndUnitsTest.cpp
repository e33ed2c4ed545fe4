#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "params/Keysets.h"
#include "params/UnitTables.h"

namespace cairnset {
namespace {

TEST(Keysets, LookUpsAndRows) {
  std::string found;
  for (const int id : {-32767, -4, 96, 201, 429, 566, 5}) {
    const char* name = findKeysetNameWithID(id);
    for (const int number : {int(findInstrumentIDWithKeysetID(id)), getProductIDFromKeysetID(id),
                             getFormFromKeysetID(id)})
      found += std::to_string(number);
    found += (name != nullptr ? name : "none") + std::string(", ");
  }
  EXPECT_EQ(found,
            "000No Piano Keyset, 111Concerto 10 Level, 211Nordic D 10 Level, "
            "311Salon 7ft 6 Level II , 532Urban Upright Soft Levels, 832Pin Piano 8 Level, "
            "000none, ");
  std::vector<int> rows(9);
  const KeysetRow* row = keysetIDList;
  for (; row->name != nullptr; ++row) {
    ++rows.at(row->instrumentID);
    EXPECT_TRUE(row < keysetIDList + 3 || row->keysetID > row[-1].keysetID) << row->name;
  }
  EXPECT_EQ(rows, (std::vector<int>{2, 16, 8, 8, 12, 10, 10, 8, 8}));
}

TEST(UnitTables, StatedEntriesHoldExactly) {
  const std::vector<float> entries = {
      dB10_to_gain[0],       getdB10Gain(60.9F),     dB10_to_gain[900],  db10p24_to_Gain[0],
      getdB10p24Gain(60.0F), getdB10p24Gain(240.0F), getMidiFreq(69),    lookupMIDIVolume(0),
      lookupMIDIVolume(127), getSemitoneScale(-120), getCentScale(0.0F), lp1p_coef[0]};
  EXPECT_EQ(entries, (std::vector<float>{1.0F, 0.5F, 0.000030518F, 0.0625F, 2.0F, 16.0F, 880.0F,
                                         0.0F, 1.0F, 1.0F / 1024.0F, 1.0F, 1.0F}));
  EXPECT_EQ(getMidiFreq(static_cast<char>(-128)), midi_freq[0]);
  // Worked by hand, to six digits.
  EXPECT_NEAR(lp1p_coef[1], 0.996863, 1e-6);
  EXPECT_NEAR(getMidiLowpassCoef48000(0), 0.997862, 1e-6);
  EXPECT_FLOAT_EQ(getCentScale(100.0F), 1.0594631F);
  EXPECT_FLOAT_EQ(getMidiFreq(127), 25087.708F);
}

TEST(UnitTables, NoteNames) {
  for (int note = 0; note < 127; ++note)
    EXPECT_EQ(getMIDIKey(MIDIKeys[static_cast<std::size_t>(note)]), note);
  EXPECT_TRUE(getMIDIKey("C#-1") == 1 && getMIDIKey("C4") == 60 && getMIDIKey("F#9") == 126);
  for (const char* name : {"G9", "H2", "a4", "A4 ", ""})
    EXPECT_EQ(getMIDIKey(name), 0) << name;
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
