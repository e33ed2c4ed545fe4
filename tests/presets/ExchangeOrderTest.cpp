#include <random>

#include <gtest/gtest.h>

#include "presets/ExchangeOrder.h"

namespace cairnset {
namespace {

std::vector<std::size_t> byExchanging(const std::vector<std::int64_t>& keys) {
  std::vector<std::size_t> order(keys.size());
  for (std::size_t i = 0; i < order.size(); ++i)
    order[i] = i;
  for (std::size_t i = 0; i < order.size(); ++i) {
    for (std::size_t j = i + 1; j < order.size(); ++j) {
      if (keys[order[j]] < keys[order[i]]) std::swap(order[i], order[j]);
    }
  }
  return order;
}

TEST(ExchangeOrder, MovesEqualKeysAsTheExchangesDo) {
  // By hand: 2a 2b 1 becomes 1 2b 2a, since 2a is exchanged with the 1.
  EXPECT_EQ(exchangeOrder({2, 2, 1}), (std::vector<std::size_t>{2, 1, 0}));
  EXPECT_EQ(exchangeOrder({1, 1, 1}), (std::vector<std::size_t>{0, 1, 2}));
  std::mt19937 random(7);
  for (int round = 0; round < 20'000; ++round) {
    // Mostly short with few keys, where ties meet in every way; some long.
    std::vector<std::int64_t> keys(random() % (round % 1000 == 0 ? 400 : 13));
    const auto different = 1 + random() % 9;
    for (auto& key : keys)
      key = static_cast<std::int64_t>(random() % different) - 4;
    ASSERT_EQ(exchangeOrder(keys), byExchanging(keys)) << "round " << round;
  }
}

}  // namespace
}  // namespace cairnset
