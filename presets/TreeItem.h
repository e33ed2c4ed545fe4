// The base of everything in a preset tree.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <utility>

#include "storage/Arena.h"

#pragma GCC visibility push(default)
namespace cairnset {

class TreeLimb;

enum TreeItemType : std::uint32_t { kTreeLimb = 1, kTreeLeaf = 2 };

/// A named node of a tree: a limb (folder) or a leaf (file). It owns only its name; the limb that
/// it is added to sets the parent.
class TreeItem {
 public:
  /// Has the next index, no name, no parent, ID 0.
  explicit TreeItem(TreeItemType type) : _type(type), _index(++_current_index) {}
  virtual ~TreeItem() = default;
  TreeItem& operator=(const TreeItem&) = delete;

  static void* operator new(std::size_t size) { return Arena::take(size); }
  static void operator delete(void* item) { Arena::give(item); }

  /// The name, Mac Roman for files and folders, or null.
  virtual const char* getTreeItemName() const { return _name.text(); }
  virtual unsigned long getTreeItemIndex() const { return _index; }
  virtual void setTreeItemID(unsigned long id) {
    _id = static_cast<std::uint32_t>(id);
    noteChange();
  }
  virtual unsigned long getTreeItemID() const { return _id; }
  virtual const char* getTreeItemTypeName() const { return "TreeItem"; }
  /// Prints the item on one line, without a line end. The flags are unused.
  virtual void printTreeItemInfo(std::ostream& os, unsigned long flags) const;
  virtual void setTreeItemIndex(unsigned long index) { _index = static_cast<std::uint32_t>(index); }

  /// Stores a copy of `name`, of any length; null removes the name.
  void setTreeItemName(const char* name) {
    takeTreeItemName(name);
    noteChange();
  }

  TreeItemType type() const { return _type; }
  /// The limb that the item was last added to; removing does not clear it.
  TreeLimb* parent() const { return _parent; }

  /// Grows with every change of any item's name, ID or file after it was made.
  static unsigned long itemChanges() { return _changes; }

  /// The index given out last. Indexes start at 1 and are unique within a run.
  static std::uint32_t _current_index;

 protected:
  /// The copy has its source's index, and shares its name until one of them is renamed.
  TreeItem(const TreeItem&) = default;

  /// setTreeItemName for constructors: an item that is in no tree or list yet changes no revision.
  void takeTreeItemName(const char* name) { SharedName(name).swap(_name); }
  static void noteChange() { ++_changes; }

 private:
  friend class TreeLimb;

  // The characters and the number of items that share them, in one piece of memory.
  class SharedName {
   public:
    SharedName() = default;
    explicit SharedName(const char* name);
    SharedName(const SharedName& other) : _owners(other._owners) {
      if (_owners != nullptr) ++*_owners;
    }
    SharedName& operator=(const SharedName&) = delete;
    void swap(SharedName& other) { std::swap(_owners, other._owners); }
    ~SharedName() {
      if (_owners != nullptr && --*_owners == 0) Arena::give(_owners);
    }
    const char* text() const {
      return _owners != nullptr ? reinterpret_cast<const char*>(_owners + 1) : nullptr;
    }

   private:
    std::uint32_t* _owners = nullptr;  // the characters follow it
  };

  static unsigned long _changes;

  SharedName _name;
  TreeLimb* _parent = nullptr;
  TreeItemType _type;
  std::uint32_t _index;
  std::uint32_t _id = 0;
};

}  // namespace cairnset
#pragma GCC visibility pop
