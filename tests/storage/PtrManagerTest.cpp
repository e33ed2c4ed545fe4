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
    } else if (operation < 78) {
      std::shuffle(model.begin(), model.end(), random);
      ASSERT_TRUE(list.setEntries(model));
    } else {
      list.swapPtrs(static_cast<long>(i), static_cast<long>(j));
      if (n > 0) std::swap(model[i % n], model[j % n]);
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
  const std::array<int, 4> cases[] = {
      {3, 9, 4, 4},  // added at the end, in time
      {4, 9, 4, 0},  // the step past the end counts too
      {2, 1, 0, 0},  // fewer entries, fewer steps
      {1, 1, 0, 2},  // the cursor's own entry was removed
      {0, 3, 0, 1},  // the last entry, on which a fresh cursor stands, was removed
  };
}  // namespace
}  // namespace cairnset
