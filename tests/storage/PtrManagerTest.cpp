#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "storage/PtrManager.h"

namespace cairnset {

static void* pointer(std::intptr_t value) {
  return reinterpret_cast<void*>(value);
}

TEST(PtrManager, RandomOperationsMatchAVector) {
  std::mt19937 random(3);
  PtrManager list;
  std::vector<void*> model;
  for (int step = 0; step < 20000; ++step) {
    if (step % 300 == 0) list.removeAll(), model.clear();
    const auto before = model;
    const unsigned long changes = list.changes(), operation = random() % 100;
    const std::size_t n = model.size(), i = random() % (2 * n + 1), j = random() % (2 * n + 1);
    void* const p = pointer(1 + random() % 12);
    if (operation < 35) {
      list.addPtr(p), model.push_back(p);
    } else if (operation < 65) {
      list.removePtr(p);
      const auto at = std::find(model.begin(), model.end(), p);
      if (at != model.end()) model.erase(at);
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
      ASSERT_EQ(list.getPtr(at), count == 0 ? nullptr : model[index]) << at << " in " << count;
    }
    ASSERT_TRUE(list.count() == count && std::ranges::equal(list.entries(), model)) << operation;
    ASSERT_TRUE(model == before || list.changes() > changes) << operation;
  }
}

TEST(PtrManager, CursorCountsItsStepsAndOutlivesItsEntry) {
  // What comes next in 1, 2, 3 after some steps, when an entry was then added or (-) removed.
  const auto next = [](int steps, int change) {
    PtrManager list;
    list.addPtr(pointer(1)), list.addPtr(pointer(2)), list.addPtr(pointer(3));
    list.iterReset();
    for (int i = 0; i < steps; ++i)
      list.iterNext();
    change < 0 ? list.removePtr(pointer(-change)) : void(list.addPtr(pointer(change)));
    return list.iterNext32();
  };
  EXPECT_EQ(next(3, 4), 4);
  EXPECT_EQ(next(4, 4), 0) << "the step past the end counts too";
  EXPECT_EQ(next(2, -1), 0) << "fewer entries, fewer steps";
  EXPECT_EQ(next(0, -3), 1) << "the last entry, on which a fresh cursor stands, was removed";
}

}  // namespace cairnset
