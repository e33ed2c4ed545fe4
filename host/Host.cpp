#include "host/Host.h"

#include <iostream>
#include <unistd.h>
#include <utility>

namespace cairnset {

namespace {

Host* inUse = nullptr;  // null for the program's own

}  // namespace

Host::Host() : readers(CAIRNSET_READERS), choosers{STDIN_FILENO, &std::cerr, 5000} {}

Host::~Host() {
  for (const Fork& fork : forks) {
    if (fork.descriptor >= 0) calls.close(fork.descriptor);
  }
}

Host& host() {
  if (inUse != nullptr) return *inUse;
  static Host programs;
  return programs;
}

HostInUse::HostInUse(Host& host) : _before(std::exchange(inUse, &host)) {}

HostInUse::~HostInUse() {
  inUse = _before;
}

}  // namespace cairnset
