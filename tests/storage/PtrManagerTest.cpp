#include "storage/PtrManager.h"
#include "tests/Testing.h"

namespace cairnset {

TEST(PtrManager, RandomOperationsMatchAVector) {
  std::mt19937 random(3);
  PtrManager list;
  std::vector<void*> model;
  std::size_t steps = 0, cursor = SIZE_MAX;  // the entry on which the cursor stands, if any
  for (int step = 0; step < 20000; ++step) {
    if (step % 300 == 0) list.removeAll(), model.clear(), cursor = SIZE_MAX;
    const auto before = model;
    const unsigned long changes = list.changes(), operation = random() % 100;
    const std::size_t n = model.size(), i = random() % (2 * n + 1), j = random() % (2 * n + 1);
    void* const p = reinterpret_cast<void*>(1 + random() % 12);
    if (operation < 35) {
      list.addPtr(p), model.push_back(p);
    } else if (operation < 60) {
      list.removePtr(p);
      const auto at = std::find(model.begin(), model.end(), p);
      const auto place = static_cast<std::size_t>(at - model.begin());
      if (at != model.end()) model.erase(at);
      // The entry before the first is the last.
      if (place <= cursor && cursor < n) cursor = (cursor == 0 ? model.size() : cursor) - 1;
    } else if (operation < 65) {
      std::shuffle(model.begin(), model.end(), random);
      ASSERT_TRUE(list.setEntries(model));
    } else if (operation < 70) {
      list.swapPtrs(static_cast<long>(i), static_cast<long>(j));
      if (n > 0) std::swap(model[i % n], model[j % n]);
    } else if (operation < 75 || n == 0) {
      list.iterReset(), steps = 0, cursor = n - 1;
    } else {
      const bool isOver = ++steps > n;  // the step past the end counts too
      if (!isOver) cursor = (cursor + 1) % n;
      ASSERT_EQ(list.iterNext(), isOver ? nullptr : model[cursor]) << step;
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

TEST(PtrManager, EntriesAsNumbers) {
  PtrManager list;
  EXPECT_EQ(list.getPtr32(0) + list.iterNext32(), 0);
  list.addPtr(reinterpret_cast<void*>(std::uintptr_t{0xFFFFFFFE})), list.iterReset();
  EXPECT_TRUE(list.getPtr32(0) == -2 && list.iterNext32() == -2 && list.iterNext32() == 0);
}

}  // namespace cairnset
