#include "host/files/ReplacedFile.h"

#include <cerrno>
#include <utility>

#include "host/Host.h"
#include "host/files/FileManager.h"
#include "host/files/FileSystemHelpers.h"
#include "host/files/Location.h"
#include "host/files/Retries.h"

namespace cairnset {

namespace {

constexpr int kMostNamesTried = 100;

}  // namespace

ReplacedFile::ReplacedFile(const char* path) : _calls(std::make_unique<SystemCalls>()) {
  FSRef file;
  if (FSPathMakeRef(path, &file, nullptr) == noErr) {
    _status = isRegularFile(&file) ? noErr : ioErr;
    placeOf(file, &_folder, nullptr);
    _name = nodes().name(file.node);
    return;
  }
  const std::string_view given = path;
  const std::size_t slash = given.rfind('/');
  const bool isBare = slash == std::string_view::npos;
  _name = isBare ? given : given.substr(slash + 1);
  const std::string folder(isBare ? "." : given.substr(0, slash + 1));
  _status = FSPathMakeRef(folder.c_str(), &_folder, nullptr);
  if (_name.empty()) note(bdNamErr);
}

ReplacedFile::~ReplacedFile() {
  if (_descriptor >= 0) (void)closeFile(*_calls, _descriptor);
  if (!_written_name.empty()) _calls->unlink(_open_folder, _written_name.c_str(), 0);
  if (_open_folder >= 0) _calls->close(_open_folder);
}

bool ReplacedFile::isBelow(const FSRef& folder) const {
  FSRef above = _folder;
  do {
    if (above.node == folder.node || !areTwoItems(above, folder)) return true;
  } while (placeOf(FSRef(above), &above, nullptr));
  return false;
}

void ReplacedFile::begin() {
  const Opened folder = openFolder(*_calls, AT_FDCWD, nodes().path(_folder.node));
  _open_folder = folder.descriptor;
  if (folder.result != noErr) return note(folder.result);
  for (int i = 0; _descriptor < 0; ++i) {
    const std::string name = ".cairnset-" + std::to_string(i);
    constexpr int kNew = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    _descriptor = retried([&] { return _calls->open(_open_folder, name.c_str(), kNew, 0666); });
    if (_descriptor >= 0) {
      _written_name = name;
    } else if (errno != EEXIST || i == kMostNamesTried) {
      return note(resultFromErrno(errno));
    }
  }
}

void ReplacedFile::write(std::string_view bytes) {
  if (_status == noErr && _descriptor < 0) begin();
  while (_status == noErr && !bytes.empty()) {
    const ssize_t n =
        retried([&] { return _calls->pwrite(_descriptor, bytes.data(), bytes.size(), _size); });
    if (n <= 0) return note(n < 0 ? resultFromErrno(errno) : dskFulErr);
    _size += n;
    bytes.remove_prefix(static_cast<std::size_t>(n));
  }
}

OSErr ReplacedFile::finish() {
  write("");
  if (_status == noErr) note(resultOf(_calls->flush(_descriptor)));
  if (_descriptor >= 0) note(closeFile(*_calls, std::exchange(_descriptor, -1)));
  if (_status != noErr) return _status;
  note(resultOf(_calls->rename(_open_folder, _written_name.c_str(), _open_folder, _name.c_str())));
  if (_status == noErr) _written_name.clear();
  return _status;
}

}  // namespace cairnset
