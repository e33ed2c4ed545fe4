// What the four kinds have in common: a payload of fixed fields after the header.
#pragma once

#include "presets/Preset.h"
#include "presets/PresetFields.h"

#pragma GCC visibility push(default)
namespace cairnset {

/// A preset whose payload is `Fields`, a plain struct with the size and layout of getData(). The
/// struct defines the kind code, the mark in reports, the length declared in the file, the stored
/// fields in their order, and the defaults of a new preset.
template <typename Fields>
class PresetOfKind : public Preset {
 public:
  static constexpr std::uint32_t kKind = Fields::kKind;

  /// As the base's constructor; a new preset has the kind's defaults.
  PresetOfKind(const FSRef& ref, const char* name, bool create) : Preset(ref, name, kKind, create) {
    if (create) fields.setDefaults();
  }
  PresetOfKind(const PresetOfKind& source, const unsigned char* newName, const FSRef* folder)
      : Preset(source, newName, kKind, folder), fields(source.fields) {}

  const char* getTreeItemTypeName() const override { return Fields::kTypeName; }
  const void* getData() const override { return &fields; }
  long getDataSize() const override { return sizeof fields; }
  long getPresetType() const override { return kKind; }

  std::int64_t fileSize() const override {
    std::int64_t size = kHeaderSize + sizeof Fields::kDeclaredLength;
    Fields::forEach(fields, [&size](const auto&... field) {
      ((size += static_cast<std::int64_t>(sizeof field)), ...);
    });
    return size;
  }

  void fillVirtualFileData(VirtualFile& file) const override {
    writeField(file, Fields::kDeclaredLength);
    Fields::forEach(fields, [&file](const auto&... field) { (writeField(file, field), ...); });
  }

  long extractVirtualFileData(VirtualFile& file) override {
    std::int32_t declaredLength = 0;
    readField(file, declaredLength);
    Fields::forEach(fields, [&file](auto&... field) { (readField(file, field), ...); });
    return declaredLength;
  }

  /// All zero until read or given defaults.
  Fields fields{};
};

}  // namespace cairnset
#pragma GCC visibility pop
