#include <algorithm>
#include <chrono>
#include <random>

#include <gtest/gtest.h>

#include "storage/PtrManager.h"

namespace cairnset {
namespace {

void* pointer(std::uintptr_t value) {
  return reinterpret_cast<void*>(value);
}

TEST(PtrManager, RandomOperationsMatchAVector) {
  std::mt19937 random(3);
  PtrManager list;
  std::vector<void*> model;
  for (int step = 0; step < 20000; ++step) {
    const auto before = model;
    const auto changes = list.changes(), n = model.size(), operation = random() % 100;
    const std::size_t i = random() % (2 * n + 1), j = random() % (2 * n + 1);
    void* const p = pointer(1 + random() % 12);
    if (operation < 35) {
      list.addPtr(p);
      model.push_back(p);
    } else if (operation < 65) {
      list.removePtr(p);
      const auto at = std::find(model.begin(), model.end(), p);
      if (at != model.end()) model.erase(at);
    } else if (operation < 66) {
      list.removeAll();
      model.clear();
    } else if (operation < 72) {
      std::shuffle(model.begin(), model.end(), random);
      ASSERT_TRUE(list.setEntries(model));
    } else if (operation < 90) {
      list.swapPtrs(static_cast<long>(i), static_cast<long>(j));
      if (n > 0) std::swap(model[i % n], model[j % n]);
    } else {
      list.iterReset();
      for (void* entry : model)
        ASSERT_EQ(list.iterNext(), entry);
      ASSERT_EQ(list.iterNext(), nullptr);
      list.iterReset();
      for (std::size_t k = 0; k < i; ++k)
        list.iterNext();  // left on any entry
    }
    const auto count = static_cast<long>(model.size());
    for (const long at : {static_cast<long>(i), static_cast<long>(j), -1l, count}) {
      const auto index = static_cast<std::size_t>(count == 0 ? 0 : std::max(at, 0l) % count);
      void* const want = count == 0 ? nullptr : model[index];
      ASSERT_EQ(list.getPtr(at), want) << at << " after step " << step;
      ASSERT_EQ(list.getPtrCheckRange(at), at >= 0 && at < count ? want : nullptr) << at;
    }
    ASSERT_TRUE(list.count() == count && std::ranges::equal(list.entries(), model)) << operation;
    ASSERT_TRUE(model == before || list.changes() > changes) << operation;
  }
}

TEST(PtrManager, CursorCountsItsStepsAndOutlivesItsEntry) {
  // What comes next in 1, 2, 3 after some steps, when an entry was then removed and one was added.
  const auto next = [](int steps, std::uintptr_t removed, std::uintptr_t added) {
    PtrManager list;
    for (const std::uintptr_t value : {1u, 2u, 3u})
      list.addPtr(pointer(value));
    list.iterReset();
    for (int i = 0; i < steps; ++i)
      list.iterNext();
    list.removePtr(pointer(removed));
    if (added != 0) list.addPtr(pointer(added));
    return list.iterNext32();
  };
  EXPECT_EQ(next(3, 9, 4), 4);
  EXPECT_EQ(next(4, 9, 4), 0) << "the step past the end counts too";
  EXPECT_EQ(next(2, 1, 0), 0) << "fewer entries, fewer steps";
  EXPECT_EQ(next(1, 1, 0), 2) << "the cursor's own entry was removed";
  EXPECT_EQ(next(0, 3, 0), 1) << "the last entry, on which a fresh cursor stands, was removed";
}

// Walks from the first entry to each position would take 20,000,000,000 steps.
TEST(PtrManager, RisingPositionsOfALongListAreCheap) {
  constexpr long kCount = 200000;
  const auto start = std::chrono::steady_clock::now();
  PtrManager list;
  EXPECT_FALSE(list.setEntries({nullptr}));
  for (long i = 0; i < kCount; ++i)
    list.addPtr(pointer(static_cast<std::uintptr_t>(-i)));
  for (long i = 0; i < kCount; ++i)
    ASSERT_EQ(list.getPtr32(i), -i);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

}  // namespace
}  // namespace cairnset
