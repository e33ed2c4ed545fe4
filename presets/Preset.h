// One preset in memory, together with the file that stores it.
//
// A preset file is one data fork, all numbers big-endian, packed, without a checksum:
//
//   offset  size
//        0     4  file type, 'OlPs'
//        4     4  kind code (presets/PresetKinds.h)
//        8     4  size of the whole file in bytes
//       12    64  name: at most 63 characters, then zeros; written, and never read back
//       76     8  reserved (2 + 2 + 4 bytes), written as zeros, dropped on reading
//       84     1  ROM flag: 0 RAM, anything else ROM
//       85     4  preset index, signed
//       89        payload of the kind, whose first 4 bytes are its declared length
//
// which makes 103 bytes for a velocity map, 156 for an effects preset, 265 for a program and 243
// for a session.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/HostTypes.h"
#include "host/ResultCodes.h"
#include "presets/TreeLeaf.h"

#pragma GCC visibility push(default)
namespace cairnset {

class VirtualFile;
struct FileStart;

/// The record that the four kinds share. The file's name is the preset's name; other presets refer
/// to it by that name alone. Results are host result codes, 0 for success. The file is open only
/// while one operation runs.
class Preset : public TreeLeaf {
 public:
  static constexpr std::uint32_t _file_type = 0x4F6C5073;  // 'OlPs'
  static constexpr std::int64_t kHeaderSize = 89;
  static constexpr const char* _default_preset_name = "Default";
  /// The index of the next new preset, of any kind.
  static std::uint32_t _index_count;

  /// Values of status() for a file that is no preset of this kind; negative values are host codes.
  enum : OSErr { kWrongFileType = 1, kWrongKind = 2, kWrongSize = 3 };

  /// A blank record without a file.
  Preset() = default;
  /// With `create`: makes the file `name` in the folder `ref`, with a new index. An existing file
  /// of that name is used as it is, without an error; but if it cannot be read it is never written,
  /// since that could lose data. Without: the preset of the existing file `ref`; `name` is ignored
  /// and nothing is read yet. status() is the result.
  Preset(const FSRef& ref, const char* name, long kind, bool create);
  /// The preset of an existing file, with a new index if `fresh`.
  Preset(const FSRef& file, long kind, bool fresh);
  /// Makes a file for a copy of `source` named by the Pascal string `newName`, in `folder` or, if
  /// that is null, in the source's folder. The copy is RAM and has its source's index, on purpose.
  Preset(const Preset& source, const unsigned char* newName, long kind, const FSRef* folder);
  /// Memberwise: both share one name and flattened form until one of them changes its own. The file
  /// must be closed, and neither may delete it on destruction.
  Preset(const Preset&) = default;
  Preset& operator=(const Preset&) = delete;
  /// Closes the file, and deletes it from the disk after deleteOnDestroy().
  ~Preset() override;

  // --- What a kind adds ---

  const char* getTreeItemTypeName() const override { return "Preset"; }
  /// The tree index in three columns, kind, ROM mark and name, without a line end.
  void printTreeItemInfo(std::ostream& os, unsigned long flags) const override;
  /// Appends the same to `text`, in the form for `os`; with `name`, that instead of the preset's.
  void appendTreeItemInfo(std::string& text, const std::ostream& os,
                          const char* name = nullptr) const;
  /// The payload fields in memory, in the machine's byte order, spare bytes included; null if none.
  virtual const void* getData() const { return nullptr; }
  virtual long getDataSize() const { return 0; }
  /// Overwrites the first `size` bytes of the payload fields, or all of them if they are fewer.
  virtual void setData(const void* data, long size);
  virtual long getPresetType() const = 0;
  /// The size of the whole file in bytes.
  virtual std::int64_t fileSize() const = 0;
  virtual const char* getDefaultPresetName() const { return _default_preset_name; }
  virtual void fillVirtualFileData(VirtualFile&) const {}
  /// Returns the payload's declared length as read. It is not checked.
  virtual long extractVirtualFileData(VirtualFile&) { return 0; }

  // --- The record ---

  /// The result of the last file operation, or why the file is no preset of this kind.
  OSErr status() const { return _status; }
  /// Whether the file was exactly a preset of this kind when it was read last, no byte more or
  /// less; true if it was never read.
  bool isFileWhole() const { return _is_file_whole; }
  /// Whether the record is what was read last; if not, the file was no preset of this kind, and the
  /// record mostly that of a new one. True if it was never read.
  bool isFileRead() const { return _is_file_read; }
  const FSRef& fileRef() const { return _file_ref; }
  bool isROM() const { return _rom != 0; }
  /// The flag as stored: 0 for RAM, any other value for ROM.
  std::uint8_t romByte() const { return _rom; }
  void setROM(bool rom) { _rom = rom; }
  std::int32_t index() const { return _index; }
  void setIndex(std::int32_t index) { _index = index; }
  /// The index as last read or written, or as first given to it; the list renumbers RAM presets in
  /// memory only.
  std::int32_t fileIndex() const { return _file_index; }
  bool edited() const { return _edited; }
  void setEdited(bool edited) { _edited = edited; }
  /// Makes the destructor delete the file.
  void deleteOnDestroy() { _delete_on_destroy = true; }
  /// Whether this is the kind's default preset: ROM, and named exactly "Default".
  bool isDefault() const;

  /// The file's name as a Pascal string; empty if there is no file.
  void getName(unsigned char* out) const;
  /// The file's name as shown in a list; for ROM after a bullet (Mac Roman 0xA5) and a space.
  void getListName(unsigned char* out) const;
  /// The node number of the folder that holds the file, from the reference alone.
  unsigned long getParentFolderID() const { return _parent_ref.node; }
  /// Whether the two files have one name, byte for byte.
  bool equalNames(const Preset& other) const;
  /// Whether all payload bytes are equal, spare ones too; false for presets of two kinds.
  bool equalParams(const Preset& other) const;

  // --- The file ---

  OSErr openForReading();
  OSErr openForWriting();
  OSErr close();
  /// Reads the record from the file and returns status(), but 0 if the file could not be opened:
  /// only status() reports that. A failed check leaves the record unchanged.
  OSErr readIn();
  /// The same from the start of the file, already read.
  OSErr readFrom(const FileStart& start);
  /// Writes the file from its start and returns status(), but 0 if it could not be opened, as
  /// readIn. A longer file keeps its tail, and then fails the size check when it is read again.
  /// catChangedErr if others have changed or replaced the file since it was read or written here:
  /// it is left alone, until it is read again.
  OSErr writeOut();
  /// From now on every writeOut() fails with this result, and leaves the file alone.
  void neverWrite(OSErr why) { _why_never_written = why; }
  /// Whether writeOut() would return catChangedErr.
  [[nodiscard]] bool isChangedByOthers();
  /// Makes and writes the file again if it is gone; 0 if it exists.
  OSErr writeOutIfDeletedFromDisk();
  /// Gives the file a second name, so that rename() to it only has to remove the first. An error if
  /// the name is taken or the volume has no hard links.
  [[nodiscard]] OSErr addName(const unsigned char* newName) const;
  /// Gives the file a second name, if it has not got it yet, and takes that as the preset's.
  OSErr switchToAddedName(const unsigned char* newName);
  /// Renames the file and the preset; the name inside the file changes at the next writeOut.
  OSErr rename(const unsigned char* newName);
  /// Moves the file. With `replace`, a file there with this preset's host name is replaced, unless
  /// it is this preset's own, under another spelling or as a hard link. Returns 1, not 0, on
  /// success, on purpose: it always has.
  [[nodiscard]] OSErr moveToFolder(const FSRef& folder, bool replace) {
    return move(folder, replace).result;
  }
  struct Moved {
    OSErr result;
    FSRef replaced{};  // where another file was, also if the move failed after that; else no place
  };
  /// The same.
  [[nodiscard]] Moved move(const FSRef& folder, bool replace);

  /// The kind of the preset whose file begins with these bytes, or nothing if it is no preset's.
  /// The file's name does not matter.
  [[nodiscard]] static std::optional<std::uint32_t> kindOf(std::string_view start);
  /// Whether a file of these bytes is a preset's, but was cut before its kind.
  [[nodiscard]] static bool isCutBeforeKind(std::string_view bytes);
  /// Whether these bytes are as long as the preset file that they begin.
  [[nodiscard]] static bool isWhole(std::string_view start);

  // --- The file's image ---

  void fillVirtualFile(VirtualFile& file) const;
  /// Checks and reads an image. On a failed check only status() changes and the result is
  /// meaningless. Otherwise returns the result of extractVirtualFileData, with status() unchanged.
  long extractVirtualFile(VirtualFile& file);
  /// Rebuilds the image and returns its size. Its bytes are flattenedData(), owned by the preset.
  long getFlattenedPreset(char* unused);
  const char* flattenedData() const;
  /// Reads the record from an image, and marks it edited.
  long setFlattenedPreset(const char* data, long size);

 protected:
  void* payload() { return const_cast<void*>(getData()); }

 private:
  OSErr open(std::int8_t permissions);
  void takeFile(const FSRef& ref);
  void changeFile(const FSRef& ref);
  void changeName(const FSRef& ref);
  OSErr checkUnchanged(std::string_view image);
  void takeNamesFromFile();
  void deleteIfEmpty();
  long extractImage(VirtualFile& file, std::int64_t size);

  OSErr _status = noErr;
  OSErr _why_never_written = noErr;
  std::int16_t _fork_ref = 0;  // 0 when closed
  bool _delete_on_destroy = false;
  bool _edited = false;
  FSRef _file_ref;
  /// A place whose last part is the preset's host name: the file's exact name when this preset was
  /// made. A rename does not change it, on purpose.
  FSRef _host_name_ref;
  FSRef _parent_ref;               // the folder that the file is, or was, in
  std::uint64_t _fingerprint = 0;  // of the file as last read or written; 0 if not known
  std::int32_t _index = 0;
  std::int32_t _file_index = _index;
  std::uint8_t _rom = 0;
  bool _is_file_whole = true;
  bool _is_file_read = true;
  std::shared_ptr<VirtualFile> _flat_file;  // null until there is one
};

}  // namespace cairnset
#pragma GCC visibility pop
