// The list behind every container: untyped pointers in the order of their addition.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

#include "storage/Arena.h"

#pragma GCC visibility push(default)
namespace cairnset {

/// One link of the circle. The last link's `next` is the first link.
struct PtrLink {
  void* ptr = nullptr;
  PtrLink* next = nullptr;

  static void* operator new(std::size_t size) { return Arena::take(size); }
  static void operator delete(void* link) { Arena::give(link); }
};

/// The entries of a list from first to last, each as a T*. Read-only; independent of the list's
/// cursor; valid until entries are added or removed.
template <typename T>
class PtrEntries {
 public:
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using difference_type = std::ptrdiff_t;
    using value_type = T*;
    using pointer = void;
    using reference = T*;

    Iterator() = default;
    Iterator(const PtrLink* link, std::int32_t index) : _link(link), _index(index) {}

    T* operator*() const { return static_cast<T*>(_link->ptr); }
    Iterator& operator++() {
      _link = _link->next;
      ++_index;
      return *this;
    }
    Iterator operator++(int) {
      const Iterator before = *this;
      ++*this;
      return before;
    }
    // By position: in a circle the end is the same link as the beginning.
    friend bool operator==(const Iterator& a, const Iterator& b) { return a._index == b._index; }

   private:
    const PtrLink* _link = nullptr;
    std::int32_t _index = 0;
  };

  PtrEntries(const PtrLink* first, std::int32_t count) : _first(first), _count(count) {}
  Iterator begin() const { return {_first, 0}; }
  Iterator end() const { return {_first, _count}; }

 private:
  const PtrLink* _first;
  std::int32_t _count;
};

/// A circular singly linked list of pointers, or of 32-bit values in their place. It owns its
/// links, not what the entries point to. Positions count from 0; pointers may repeat.
class PtrManager {
 public:
  PtrManager() = default;
  PtrManager(const PtrManager&) = delete;
  PtrManager& operator=(const PtrManager&) = delete;
  /// Frees the links directly: a derived class's removeAll cannot be called any more.
  virtual ~PtrManager() { freeLinks(); }

  /// Appends `p` and returns its link, which the list owns.
  virtual PtrLink* addPtr(void* p);
  /// Removes the first entry that equals `p`, if there is one.
  virtual void removePtr(void* p);
  virtual void removeAll() { freeLinks(); }

  /// The entry at a position, null in an empty list. A position past the end wraps around, a
  /// negative one is the first. The last position is cached, so that calls at rising positions cost
  /// a step each and not a walk each, until entries are added or removed.
  void* getPtr(long i) const { return _num_ptrs == 0 ? nullptr : linkAt(i)->ptr; }
  /// As getPtr, but null for a position outside the list.
  void* getPtrCheckRange(long i) const {
    return i < 0 || i >= _num_ptrs ? nullptr : linkAt(i)->ptr;
  }
  /// As getPtr, for an entry that is a 32-bit value: the low 32 bits of the pointer, 0 in an empty
  /// list.
  std::int32_t getPtr32(long i) const { return valueOf(getPtr(i)); }
  long count() const { return _num_ptrs; }

  /// Exchanges the entries at two positions, interpreted as in getPtr. The links stay in place.
  void swapPtrs(long i, long j);
  /// Stores the pointers into the links in order, to reorder all at once. False, and nothing
  /// changes, unless there are exactly count() of them.
  bool setEntries(const std::vector<void*>& ptrs);

  /// The list's one cursor. After iterReset, iterNext returns the entries first to last, then null.
  /// It ends after as many steps as the list then has entries: if entries are added or removed
  /// meanwhile, it can end early or late. If the cursor's own entry is removed, the cursor falls
  /// back to the one before it.
  void iterReset() {
    _iter_link = _last_link;
    _iter_index = 0;
  }
  void* iterNext();
  /// iterNext for 32-bit values, 0 at the end.
  std::int32_t iterNext32() { return valueOf(iterNext()); }

  /// For read-only walks, which can be nested: `for (void* p : list.entries())`.
  PtrEntries<void> entries() const { return entriesAs<void>(); }
  /// The same as T*; every entry must have been stored as a T*, not as one of its bases.
  template <typename T>
  PtrEntries<T> entriesAs() const {
    return {_last_link == nullptr ? nullptr : _last_link->next, _num_ptrs};
  }

  /// A revision counter: what was derived from the list is valid while it is unchanged.
  unsigned long changes() const { return _changes; }

 private:
  static std::int32_t valueOf(const void* entry) {
    return static_cast<std::int32_t>(reinterpret_cast<std::uintptr_t>(entry));
  }
  PtrLink* linkAt(long i) const;
  void linksChanged();
  void freeLinks();

  PtrLink* _last_link = nullptr;
  std::int32_t _num_ptrs = 0;
  PtrLink* _iter_link = nullptr;
  std::int32_t _iter_index = 0;  // steps taken
  unsigned long _changes = 0;
  mutable PtrLink* _reached_link = nullptr;  // the link at _reached_index, or null
  mutable std::int32_t _reached_index = 0;
};

}  // namespace cairnset
#pragma GCC visibility pop
