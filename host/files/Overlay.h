// A table of system calls that lays changes over the disk in memory and leaves the disk as it is.
//
// Through it a caller sees the real files and folders with all changes that it has made: names,
// bytes, folders, links and attributes. What can be read counts as if it could be written. Results
// and errno are those of the real calls, but that a full disk or a loss of power cannot be
// foreseen. For the host layer and its tests only; the program uses host/files/DryRun.h.
#pragma once

#include <memory>

#include "host/files/SystemCalls.h"

namespace cairnset {

class Overlay {
 public:
  /// Over what `real` shows. It gets no call that could change anything.
  explicit Overlay(const SystemCalls& real);
  ~Overlay();
  Overlay(const Overlay&) = delete;
  Overlay& operator=(const Overlay&) = delete;

  /// The table, valid as long as the overlay. Its descriptors are numbers of its own, which only
  /// its calls understand; it also takes those of the system, to read only.
  [[nodiscard]] const SystemCalls& calls() const;
  /// What it was laid over.
  [[nodiscard]] const SystemCalls& real() const;

  /// True once a file was opened for writing, or a folder to find things in or for a change, that
  /// the system would not let be written.
  [[nodiscard]] bool hasMetReadOnly() const;

 private:
  class Calls;
  std::unique_ptr<Calls> _implementation;
  SystemCalls _calls;
};

}  // namespace cairnset
