#include "presets/Preset.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <new>
#include <ostream>
#include <string>
#include <string_view>

#include "host/files/FileManager.h"
#include "host/files/FileReading.h"
#include "host/files/FileSystemHelpers.h"
#include "host/terminal/ReportText.h"
#include "host/text/NameConversions.h"
#include "presets/PresetFields.h"
#include "storage/VirtualFile.h"

namespace cairnset {

namespace {

constexpr long kBlockSize = 128;
constexpr long kMostBytes = 512;  // no preset file is larger
constexpr std::size_t kNameAt = 12, kIndexAt = 85, kPayloadAt = 89;
constexpr long kNameField = 64;
constexpr long kReserved = 8;
constexpr unsigned long kNameSize = 240;  // names are cut to this many bytes, NUL included

using FileName = char[kNameSize];

OSErr whyNotRead(const FSRef& file) {
  if (!isRegularFile(&file)) return ioErr;
  char buffer[FileStart::kMost];
  const FileStart start = readFileStart(file, fsRdWrPerm, buffer);
  return start.opened != noErr ? start.opened : start.read;
}

// What a write overwrites, as a number: that the file still holds it can be seen without keeping
// it. Unlike a file's number and times this works on every volume, and a new link or mode is no
// change.
std::uint64_t fingerprintOf(std::string_view bytes) {
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;
  std::uint64_t hash = bytes.size();
  for (std::size_t i = 0; i < bytes.size(); i += sizeof hash) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data() + i, std::min(sizeof word, bytes.size() - i));
    hash = (hash ^ word) * kMultiplier;
    hash ^= hash >> 29;
  }
  return hash != 0 ? hash : 1;
}

}  // namespace

std::uint32_t Preset::_index_count = 100000;

Preset::Preset(const FSRef& ref, const char* name, long /*kind*/, bool create)
    : _index(static_cast<std::int32_t>(_index_count)) {
  if (!create) {
    takeFile(ref);
    takeNamesFromFile();
    return;
  }
  ++_index_count;
  takeTreeItemName(name);
  HFSUniStr255 hostName;
  ConvertCStringToHFSUniStr(name, &hostName);
  FSRef file;
  _status = FSCreateFileUnicode(&ref, hostName.length, hostName.unicode, &file, nullptr);
  if (_status == dupFNErr) {
    _status =
        FSMakeFSRefUnicode(&ref, hostName.length, hostName.unicode, kTextEncodingUnknown, &file);
    if (_status == noErr) _why_never_written = whyNotRead(file);
  }
  if (_status == noErr) {
    takeFile(file);
    _host_name_ref = file;
  }
}

Preset::Preset(const FSRef& file, long /*kind*/, bool fresh)
    : _index(static_cast<std::int32_t>(_index_count)) {
  if (fresh) ++_index_count;
  takeFile(file);
  takeNamesFromFile();
}

Preset::Preset(const Preset& source, const unsigned char* newName, long /*kind*/,
               const FSRef* folder)
    : _index(source._index) {
  takeTreeItemName("");
  FSRef parent;
  if (folder != nullptr) {
    parent = *folder;
  } else {
    getParent(parent, source._file_ref);
  }
  HFSUniStr255 hostName;
  ConvertPStringToHFSUniStr(newName, &hostName);
  FSRef file;
  _status = FSCreateFileUnicode(&parent, hostName.length, hostName.unicode, &file, nullptr);
  if (_status != noErr) return;
  takeFile(file);
  takeNamesFromFile();
  _status = openForWriting();
  close();
}

Preset::~Preset() {
  close();
  if (_delete_on_destroy) (void)FSDeleteObject(&_file_ref);
}

void Preset::takeFile(const FSRef& ref) {
  _file_ref = ref;
  placeOf(ref, &_parent_ref, nullptr);
}

void Preset::changeFile(const FSRef& ref) {
  takeFile(ref);
  noteChange();
}

void Preset::takeNamesFromFile() {
  FileName name;
  getPlaceName(_file_ref, name, sizeof name);
  takeTreeItemName(name);
  _host_name_ref = _file_ref;
}

// --- The record ----------------------------------------------------------------------------------

void Preset::setData(const void* data, long size) {
  const long count = std::min(getDataSize(), size);
  if (count > 0) std::memcpy(payload(), data, static_cast<std::size_t>(count));
}

bool Preset::isDefault() const {
  const char* name = getTreeItemName();
  return isROM() && name != nullptr && std::strcmp(name, _default_preset_name) == 0;
}

void Preset::getName(unsigned char* out) const {
  getPFilename(_file_ref, out);
}

void Preset::getListName(unsigned char* out) const {
  getName(out);
  if (!isROM()) return;
  const std::size_t length = std::min<std::size_t>(out[0], 253);
  std::memmove(out + 3, out + 1, length);
  out[0] = static_cast<unsigned char>(length + 2);
  out[1] = 0xA5;
  out[2] = ' ';
}

bool Preset::equalNames(const Preset& other) const {
  FileName a, b;
  getCFilename(_file_ref, a, sizeof a);
  getCFilename(other._file_ref, b, sizeof b);
  return std::strcmp(a, b) == 0;
}

bool Preset::equalParams(const Preset& other) const {
  const long size = getDataSize();
  return size == other.getDataSize() &&
         (size == 0 ||
          std::memcmp(getData(), other.getData(), static_cast<std::size_t>(size)) == 0);
}

void Preset::printTreeItemInfo(std::ostream& os, unsigned long /*flags*/) const {
  std::string text;
  text.reserve(kNameSize);
  appendTreeItemInfo(text, os);
  writeText(os, text);
}

void Preset::appendTreeItemInfo(std::string& text, const std::ostream& os, const char* name) const {
  char number[3 + 24] = "   ";
  char* end = std::to_chars(number + 3, std::end(number), getTreeItemIndex()).ptr;
  const char* const start = std::min(end - 3, number + 3);  // right-aligned in three columns
  *end++ = ' ';
  text.append(start, static_cast<std::size_t>(end - start)).append(getTreeItemTypeName());
  text.append(isROM() ? " ROM  \"" : "      \"", 7);
  if (name == nullptr) name = getTreeItemName();
  if (name != nullptr) appendHeldName(text, os, name);
  text += '"';
}

// --- The file ------------------------------------------------------------------------------------

OSErr Preset::open(std::int8_t permissions) {
  close();
  HFSUniStr255 forkName;
  if (const OSErr result = FSGetDataForkName(&forkName); result != noErr) return result;
  return FSOpenFork(&_file_ref, forkName.length, forkName.unicode, permissions, &_fork_ref);
}

OSErr Preset::openForReading() {
  return open(fsRdPerm);
}
OSErr Preset::openForWriting() {
  return open(fsRdWrPerm);
}

OSErr Preset::close() {
  if (_fork_ref == 0) return noErr;
  const std::int16_t fork = _fork_ref;
  _fork_ref = 0;
  return FSCloseFork(fork);
}

OSErr Preset::readIn() {
  _status = openForReading();
  if (_fork_ref == 0) return noErr;
  char image[FileStart::kMost];
  std::size_t loaded = 0;
  (void)FSReadFork(_fork_ref, fsFromStart, 0, sizeof image, image, &loaded);
  FileStart start;
  start.bytes = {image, loaded};
  start.size = static_cast<std::int64_t>(loaded);
  if (loaded == sizeof image) (void)FSGetForkSize(_fork_ref, &start.size);
  readFrom(start);
  close();
  return _status;
}

// Of a large file only the start is given. It has all the fields; else only the size matters.
OSErr Preset::readFrom(const FileStart& start) {
  _status = noErr;
  VirtualFile file(const_cast<char*>(start.bytes.data()), start.bytes.size(), true, kBlockSize);
  extractImage(file, start.size);
  _is_file_read = _status == noErr;
  _is_file_whole = _is_file_read && start.size == fileSize();
  _fingerprint = _is_file_read
                     ? fingerprintOf(start.bytes.substr(0, static_cast<std::size_t>(fileSize())))
                     : 0;
  _edited = false;
  return _status;
}

OSErr Preset::writeOut() {
  _status = _why_never_written != noErr ? _why_never_written : openForWriting();
  if (_fork_ref == 0) return noErr;
  VirtualFile file(kBlockSize);
  fillVirtualFile(file);
  const std::string_view image(file.buffer(), file.size());
  _status = checkUnchanged(image);
  const bool isToWrite = _status == noErr;
  if (isToWrite) {
    _status = static_cast<OSErr>(file.dump(_fork_ref, true));
    _edited = false;
  }
  const OSErr closed = close();  // where some volumes first report a lost write
  if (_status == noErr) _status = closed;
  if (isToWrite) _fingerprint = _status == noErr ? fingerprintOf(image) : 0;
  if (_status == noErr) _file_index = _index;
  return _status;
}

// Compares the open file with what was read. `image` is what this preset would write.
OSErr Preset::checkUnchanged(std::string_view image) {
  if (_fingerprint == 0) return noErr;
  char bytes[FileStart::kMost];
  std::size_t got = 0;
  const OSErr read =
      FSReadFork(_fork_ref, fsFromStart, 0, std::min(image.size(), sizeof bytes), bytes, &got);
  if (read != noErr && read != eofErr) return read;
  const std::string_view file(bytes, got);
  // Nothing can be lost of an empty file.
  if (file.empty() || fingerprintOf(file) == _fingerprint) return noErr;
  // Another preset of this process may have written it, under the file's second name. It differs in
  // its name and, if it is RAM, in its place.
  const std::size_t afterName = kNameAt + kNameField, index = isROM() ? kPayloadAt : kIndexAt;
  const bool isOurs =
      file.size() == image.size() && file.size() > kPayloadAt &&
      file.substr(0, kNameAt) == image.substr(0, kNameAt) &&
      file.substr(afterName, index - afterName) == image.substr(afterName, index - afterName) &&
      file.substr(kPayloadAt) == image.substr(kPayloadAt);
  return isOurs ? noErr : catChangedErr;
}

bool Preset::isChangedByOthers() {
  if (openForReading() != noErr) return false;
  VirtualFile file(kBlockSize);
  fillVirtualFile(file);
  const OSErr result = checkUnchanged({file.buffer(), file.size()});
  close();
  return result == catChangedErr;
}

OSErr Preset::writeOutIfDeletedFromDisk() {
  const OSErr opened = openForReading();
  if (opened == noErr) {
    close();
    return noErr;
  }
  if (opened != fnfErr) return opened;
  HFSUniStr255 name;
  placeOf(_host_name_ref, nullptr, &name);
  FSRef file;
  const OSErr made = FSCreateFileUnicode(&_parent_ref, name.length, name.unicode, &file, nullptr);
  if (made != noErr) return made;
  changeFile(file);
  _fingerprint = 0;
  const OSErr written = writeOut();
  if (_status != noErr) deleteIfEmpty();  // or the next call would not find it missing
  return written;
}

void Preset::deleteIfEmpty() {
  std::int64_t size = -1;
  if (openForReading() == noErr) (void)FSGetForkSize(_fork_ref, &size);
  close();
  if (size == 0) (void)FSDeleteObject(&_file_ref);
}

OSErr Preset::addName(const unsigned char* newName) const {
  HFSUniStr255 name;
  ConvertPStringToHFSUniStr(newName, &name);
  return FSAddNameUnicode(&_file_ref, name.length, name.unicode, nullptr);
}

OSErr Preset::switchToAddedName(const unsigned char* newName) {
  HFSUniStr255 name;
  ConvertPStringToHFSUniStr(newName, &name);
  FSRef added;
  _status = FSAddNameUnicode(&_file_ref, name.length, name.unicode, &added);
  if (_status == noErr) changeName(added);
  return _status;
}

OSErr Preset::rename(const unsigned char* newName) {
  HFSUniStr255 name;
  ConvertPStringToHFSUniStr(newName, &name);
  FSRef renamed;
  _status = FSRenameUnicode(&_file_ref, name.length, name.unicode, kTextEncodingUnknown, &renamed);
  if (_status == noErr) changeName(renamed);
  return _status;
}

void Preset::changeName(const FSRef& ref) {
  changeFile(ref);
  FileName held;
  getPlaceName(ref, held, sizeof held);
  setTreeItemName(held);
}

Preset::Moved Preset::move(const FSRef& folder, bool replace) {
  HFSUniStr255 name, ownName;
  placeOf(_host_name_ref, nullptr, &name);
  placeOf(_file_ref, nullptr, &ownName);
  const auto view = [](const HFSUniStr255& n) { return std::u16string_view(n.unicode, n.length); };
  const bool keepsName = view(name) == view(ownName);
  FSRef moved;
  OSErr result = dupFNErr;
  FSRef replaced;
  // Try the move first: the name is nearly always free.
  if (!replace || keepsName) result = FSMoveObject(&_file_ref, &folder, &moved);
  if (replace && result == dupFNErr) {
    FSRef there;
    result = FSMakeFSRefUnicode(&folder, name.length, name.unicode, kTextEncodingUnknown, &there);
    // If the place is exactly the one that this file takes, one call replaces and moves.
    const bool isTakenOver = result == noErr && keepsName && !isFolder(&there);
    if (result == fnfErr) {
      result = noErr;
    } else if (result == noErr && !isTakenOver && areTwoItems(there, _file_ref)) {
      // Never this preset itself, which has both names on a volume that ignores case.
      result = FSDeleteObject(&there);
      if (result == noErr) replaced = there;
    }
    if (result == noErr) {
      const bool isReplaced = isTakenOver && areTwoItems(there, _file_ref);
      result = (isTakenOver ? FSMoveObjectReplacing : FSMoveObject)(&_file_ref, &folder, &moved);
      if (isReplaced && result == noErr) replaced = there;
    }
  }
  if (result != noErr) return {result, replaced};
  changeFile(moved);
  return {1, replaced};
}

std::optional<std::uint32_t> Preset::kindOf(std::string_view start) {
  char words[8];
  if (start.copy(words, sizeof words) < sizeof words) return std::nullopt;
  VirtualFile file(words, sizeof words, true, kBlockSize);
  std::uint32_t fileType = 0, kind = 0;
  readField(file, fileType);
  readField(file, kind);
  if (fileType != _file_type) return std::nullopt;
  return kind;
}

bool Preset::isWhole(std::string_view start) {
  char words[12];
  if (start.copy(words, sizeof words) < sizeof words) return false;
  VirtualFile file(words, sizeof words, true, kBlockSize);
  std::uint32_t fileType = 0, kind = 0, size = 0;
  readField(file, fileType);
  readField(file, kind);
  readField(file, size);
  return fileType == _file_type && size == start.size();
}

bool Preset::isCutBeforeKind(std::string_view bytes) {
  char words[8] = "";
  return bytes.copy(words, 4) == 4 && bytes.size() < sizeof words && kindOf({words, sizeof words});
}

// --- The file's image ----------------------------------------------------------------------------

void Preset::fillVirtualFile(VirtualFile& file) const {
  constexpr std::uint32_t kSizeNotYetKnown = 0;
  // All of the memory first: a preset that lacks a field must never be written.
  if (file.reserve(kMostBytes) == nullptr) throw std::bad_alloc();
  file.resize_buffer(0);
  writeField(file, _file_type);
  writeField(file, static_cast<std::uint32_t>(getPresetType()));
  writeField(file, kSizeNotYetKnown);
  file.writeStringAndPad(getTreeItemName(), kNameField);
  file.writeZeroes(kReserved);
  writeField(file, _rom);
  writeField(file, _index);
  fillVirtualFileData(file);
  const auto size = static_cast<std::uint32_t>(file.size());
  file.seekp(8);
  writeField(file, size);
}

long Preset::extractVirtualFile(VirtualFile& file) {
  return extractImage(file, static_cast<std::int64_t>(file.size()));
}

long Preset::extractImage(VirtualFile& file, std::int64_t size) {
  std::uint32_t fileType = 0, kind = 0, statedSize = 0;
  file.seekg(0);
  readField(file, fileType);
  readField(file, kind);
  readField(file, statedSize);
  if (fileType != _file_type) return _status = kWrongFileType;
  if (kind != static_cast<std::uint32_t>(getPresetType())) return _status = kWrongKind;
  constexpr std::int64_t kMostSize = VirtualFile::kMaxContent;  // such a file is not loaded whole
  if (size != statedSize || size > kMostSize) return _status = kWrongSize;
  // The reserved bytes have no known meaning, so they are not kept.
  file.seekg(kNameField + kReserved, from_current);
  readField(file, _rom);
  readField(file, _index);
  _file_index = _index;
  return extractVirtualFileData(file);
}

long Preset::getFlattenedPreset(char* /*unused*/) {
  _flat_file = std::make_shared<VirtualFile>(kBlockSize);
  fillVirtualFile(*_flat_file);
  return static_cast<long>(_flat_file->size());
}

const char* Preset::flattenedData() const {
  return _flat_file != nullptr ? _flat_file->buffer() : nullptr;
}

long Preset::setFlattenedPreset(const char* data, long size) {
  const auto image = std::make_shared<VirtualFile>(kBlockSize);
  image->write(data, size);  // data may lie in the old image
  _flat_file = image;
  _edited = true;
  return extractVirtualFile(*_flat_file);
}

}  // namespace cairnset
