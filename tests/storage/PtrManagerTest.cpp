// PtrManager, and the Arena that gives its links their memory.
#include "storage/Arena.h"
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
  for (const std::uintptr_t value : {7u, 0xFFFFFFFEu})
    list.addPtr(reinterpret_cast<void*>(value));
  list.iterReset();
  for (const std::int32_t value : {7, -2, 0})
    EXPECT_EQ(list.iterNext32(), value);
  EXPECT_EQ(list.getPtr32(1), -2);
}

// What is out keeps its memory when others give theirs back, up to pieces larger than a block.
TEST(Arena, PiecesLieApart) {
  std::vector<unsigned char*> out;
  const auto sizeOf = [](std::size_t n) { return n * 37 % 500 + n / 4'000 * 100'000; };
  const auto isIntact = [&](std::size_t n) {
    return std::all_of(out[n], out[n] + sizeOf(n), [n](unsigned c) { return c == n % 256; });
  };
  for (std::size_t n = 0; n < 4'004; ++n) {
    out.push_back(static_cast<unsigned char*>(Arena::take(sizeOf(n))));
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(out[n]) % alignof(std::uint64_t), 0u);
    std::memset(out[n], static_cast<int>(n % 256), sizeOf(n));
    if (n % 3 == 1) Arena::give(out[n]);
  }
  for (std::size_t n = 0; n < out.size(); ++n) {
    if (n % 3 == 1) continue;
    ASSERT_TRUE(isIntact(n)) << n;
    Arena::give(out[n]);
  }
}

}  // namespace cairnset
