#include <numeric>
#include <random>

#include <gtest/gtest.h>

#include "presets/BrowserSorting.h"
#include "presets/ExchangeOrder.h"

namespace cairnset {

TEST(BrowserSorting, EffectsGoByTheirIndexWithinTheThousand) {
  std::string found, before;
  for (std::int32_t index = -1999; index < 2000; ++index) {
    const std::string folder = effectsFolderFor(index);
    if (folder != std::exchange(before, folder)) found += std::to_string(index) + folder + ", ";
  }
  const std::string hundreds = "60Factory, 100Choruses, 130Factory, 180Special FX, 200Factory, ";
  EXPECT_EQ(found, "-1999Factory, 1Halls, 20Small Rooms, 30EQ Timbres, " + hundreds +
                       "1001Halls, 1020Small Rooms, 1030EQ Timbres, 1060Factory, 1100Choruses, "
                       "1130Factory, 1180Special FX, 1200Factory, ");
}

TEST(BrowserSorting, ProgramsGoByTheInstrumentOfTheirKeyset) {
  std::string found;
  for (const std::int32_t keyset :
       {0, -32767, -4, 51, 96, 201, 331, 412, 479, 516, 579, 5, -1, INT32_MIN})
    found += programFolderFor(keyset) + std::string(", ");
  EXPECT_EQ(found,
            "Synth, Synth, Concerto, Concerto, Nordic D, Salon 7ft, Alpine 10ft, Urban Upright, "
            "Antique Upright, Saloon Upright, Pin Piano, Factory, Factory, Factory, ");
}

TEST(ExchangeOrder, MovesEqualKeysAsTheExchangesDo) {
  // By hand: 2a 2b 1 becomes 1 2b 2a, since 2a is exchanged with the 1.
  EXPECT_EQ(exchangeOrder({2, 2, 1}), (std::vector<std::size_t>{2, 1, 0}));
  std::mt19937 random(7);
  for (int round = 0; round < 20'000; ++round) {
    // Mostly short with few keys, where ties meet in every way; some long.
    std::vector<std::int64_t> keys(random() % (round % 1000 == 0 ? 400 : 13));
    const auto different = 1 + random() % 9;
    for (auto& key : keys)
      key = static_cast<std::int64_t>(random() % different) - 4;
    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    for (std::size_t i = 0; i < order.size(); ++i)
      for (std::size_t j = i + 1; j < order.size(); ++j)
        if (keys[order[j]] < keys[order[i]]) std::swap(order[i], order[j]);
    ASSERT_EQ(exchangeOrder(keys), order) << "round " << round;
  }
}

}  // namespace cairnset
