// The host, as one object: all that the host layer knows from one call to the next.
//
// The functions of host/files/FileManager.h work on the host in use, one for the whole program. A
// test makes a host of its own, which shares no state. For the host layer and its tests only.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/SystemVersion.h"
#include "host/files/FolderPaths.h"
#include "host/files/FolderWalk.h"
#include "host/files/NodeTable.h"
#include "host/files/SystemCalls.h"
#include "host/terminal/Chooser.h"

namespace cairnset {

/// An open data fork.
struct Fork {
  int descriptor = -1;  // -1 for a number that is free
  std::int64_t mark = 0;
  std::int8_t permissions = 0;
};

/// A listing that is being gone through.
struct OpenListing {
  FolderListing listing;
  std::size_t next = 0;
};

struct Host {
  Host();
  /// Closes the forks that were left open.
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  SystemCalls calls;
  NodeTable nodes;
  FolderPaths folders{calls, nodes};
  std::vector<Fork> forks;                        // by fork number - 1
  std::map<std::uint32_t, OpenListing> listings;  // by iterator
  std::uint32_t lastIterator = 0;
  /// How many threads read files ahead, however few files; without a value the work decides.
  std::optional<unsigned> readers;
  GestaltAnswers gestalt;
  ChooserStreams choosers;
};

/// The host in use, and its nodes.
Host& host();
inline NodeTable& nodes() {
  return host().nodes;
}

/// Makes a host the one in use as long as this object lives.
class HostInUse {
 public:
  explicit HostInUse(Host& host);
  ~HostInUse();
  HostInUse(const HostInUse&) = delete;
  HostInUse& operator=(const HostInUse&) = delete;

 private:
  Host* _before;
};

}  // namespace cairnset
