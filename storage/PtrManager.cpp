#include "storage/PtrManager.h"

#include <utility>

namespace cairnset {

PtrLink* PtrManager::addPtr(void* p) {
  auto* const link = new PtrLink{p, nullptr};
  if (_last_link == nullptr) {
    link->next = link;
  } else {
    link->next = _last_link->next;
    _last_link->next = link;
  }
  _last_link = link;
  ++_num_ptrs;
  linksChanged();
  return link;
}

void PtrManager::removePtr(void* p) {
  PtrLink* before = _last_link;
  for (std::int32_t i = 0; i < _num_ptrs; ++i, before = before->next) {
    PtrLink* const link = before->next;
    if (link->ptr != p) continue;
    before->next = link->next;
    if (link == _last_link) _last_link = before;
    if (link == _iter_link) _iter_link = before;
    if (--_num_ptrs == 0) _last_link = _iter_link = nullptr;
    delete link;
    linksChanged();
    return;
  }
}

void PtrManager::swapPtrs(long i, long j) {
  if (_num_ptrs == 0 || i == j) return;
  // No link of a circle is null. NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker)
  std::swap(linkAt(i)->ptr, linkAt(j)->ptr);
  ++_changes;
}

bool PtrManager::setEntries(const std::vector<void*>& ptrs) {
  if (ptrs.size() != static_cast<std::size_t>(_num_ptrs)) return false;
  PtrLink* link = _last_link;
  for (void* p : ptrs) {
    link = link->next;
    link->ptr = p;
  }
  ++_changes;
  return true;
}

void* PtrManager::iterNext() {
  if (++_iter_index > _num_ptrs) return nullptr;
  // No link yet if the list was empty at iterReset.
  if (_iter_link == nullptr) _iter_link = _last_link;
  _iter_link = _iter_link->next;
  return _iter_link->ptr;
}

// Only for a list that is not empty.
PtrLink* PtrManager::linkAt(long i) const {
  const auto index = i < 0 ? 0 : static_cast<std::int32_t>(i % _num_ptrs);
  if (index == _num_ptrs - 1) return _last_link;
  if (_reached_link == nullptr || index < _reached_index) {
    _reached_link = _last_link->next;
    _reached_index = 0;
  }
  for (; _reached_index < index; ++_reached_index) {
    // No link of a circle is null. NOLINTNEXTLINE(clang-analyzer-core.NullDereference)
    _reached_link = _reached_link->next;
  }
  return _reached_link;
}

void PtrManager::linksChanged() {
  ++_changes;
  _reached_link = nullptr;
}

void PtrManager::freeLinks() {
  while (_num_ptrs > 0) {
    PtrLink* const first = _last_link->next;
    _last_link->next = first->next;
    delete first;
    --_num_ptrs;
  }
  _last_link = _iter_link = nullptr;
  linksChanged();
}

}  // namespace cairnset
