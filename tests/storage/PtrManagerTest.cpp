// PtrManager, and the Pool that gives its links their memory.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "storage/Pool.h"
#include "storage/PtrManager.h"

namespace cairnset {

TEST(PtrManager, RandomOperationsMatchAVector) {
  std::mt19937 random(3);
  PtrManager list;
  std::vector<void*> model;
  std::size_t steps = 0, cursor = SIZE_MAX;  // the entry on which the cursor stands, if any
  for (int step = 0; step < 20000; ++step) {
    if (step % 300 == 0) {
      list.removeAll();
      model.clear();
      cursor = SIZE_MAX;
    }
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
      list.iterReset();
      steps = 0, cursor = n - 1;
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

// Pieces of many sizes, some given back in between: none may overlap another.
TEST(PoolTest, PiecesLieApart) {
  struct Piece {
    unsigned char* bytes;
    std::size_t size;
    int filled;
  };
  std::vector<Piece> pieces;
  for (int n = 0; n < 20'000; ++n) {
    const std::size_t size = static_cast<std::size_t>(n) * 7 % 530;
    auto* bytes = static_cast<unsigned char*>(Pool::take(size));
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % alignof(std::uint64_t), 0u);
    pieces.push_back({static_cast<unsigned char*>(std::memset(bytes, n % 256, size)), size, n});
    if (n % 3 != 2) continue;
    std::swap(pieces[pieces.size() / 2], pieces.back());
    Pool::give(pieces.back().bytes, pieces.back().size);
    pieces.pop_back();
  }
  for (const auto& [bytes, size, filled] : pieces) {
    for (std::size_t i = 0; i < size; ++i)
      ASSERT_EQ(bytes[i], filled % 256);
    Pool::give(bytes, size);
  }
}

// A library that is loaded again must not lie scattered over what the first one gave back.
TEST(PoolTest, OnceAllIsGivenBackMemoryIsInOrderAgain) {
#ifdef CAIRNSET_SANITIZED
  GTEST_SKIP() << "every piece is the heap's";
#endif
  const auto sizeOf = [](std::size_t n) { return n % 2 == 0 ? std::size_t{40} : std::size_t{300}; };
  std::vector<void*> first, second;
  for (std::size_t n = 0; n < 3'000; ++n)  // several blocks of both sorts
    first.push_back(Pool::take(sizeOf(n)));
  for (std::size_t n = 0; n < first.size(); ++n) {
    const std::size_t scattered = n * 7 % first.size();
    Pool::give(first[scattered], sizeOf(scattered));
  }
  for (std::size_t n = 0; n < first.size(); ++n)
    second.push_back(Pool::take(sizeOf(n)));
  EXPECT_EQ(first, second);
  for (std::size_t n = 0; n < second.size(); ++n)
    Pool::give(second[n], sizeOf(n));
}

}  // namespace cairnset
