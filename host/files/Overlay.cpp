#include "host/files/Overlay.h"

#include "host/files/OverlayCalls.h"

namespace cairnset {

SystemCalls Overlay::Calls::table() {
  SystemCalls t = real;
  t.open = [this](auto... args) { return open(args...); };
  t.close = [this](auto... args) { return close(args...); };
  t.fstat = [this](auto... args) { return fstat(args...); };
  t.pread = [this](auto... args) { return pread(args...); };
  t.pwrite = [this](auto... args) { return pwrite(args...); };
  t.ftruncate = [this](auto... args) { return ftruncate(args...); };
  t.lstat = [this](auto... args) { return lstat(args...); };
  t.mkdir = [this](int folder, const char* path, mode_t mode) {
    return create(folder, path, S_IFDIR | (mode & 0777), {}, 0);
  };
  t.renameNoReplace = [this](auto... args) { return rename(args..., false); };
  t.rename = [this](auto... args) { return rename(args..., true); };
  t.link = [this](auto... args) { return link(args...); };
  t.unlink = [this](auto... args) { return unlink(args...); };
  t.symlink = [this](const char* target, int folder, const char* path) {
    return create(folder, path, S_IFLNK | 0777, target, 0);
  };
  t.readlink = [this](auto... args) { return readlink(args...); };
  t.realpath = [this](auto... args) { return realpath(args...); };
  t.fdopendir = [this](auto... args) { return fdopendir(args...); };
  t.readdir = [this](auto... args) { return readdir(args...); };
  t.closedir = [this](auto... args) { return closedir(args...); };
  t.getAttribute = [this](auto... args) { return getAttribute(args...); };
  t.setAttribute = [this](auto... args) { return setAttribute(args...); };
  t.birthTime = [this](auto... args) { return birthTime(args...); };
  t.flush = t.flushVolume = [](int) { return 0; };
  t.flock = [this](int number, int operation) {
    const Lock lock(_mutex);
    return real.flock(realNumber(number), operation);
  };
  return t;
}

Overlay::Overlay(const SystemCalls& real)
    : _implementation(std::make_unique<Calls>(real)), _calls(_implementation->table()) {}

Overlay::~Overlay() = default;

const SystemCalls& Overlay::calls() const {
  return _calls;
}

const SystemCalls& Overlay::real() const {
  return _implementation->real;
}

bool Overlay::hasMetReadOnly() const {
  return _implementation->hasMetReadOnly;
}

}  // namespace cairnset
