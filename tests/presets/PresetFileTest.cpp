#include <bit>

#include "presets/PresetComparison.h"
#include "tests/presets/PresetTest.h"

namespace cairnset {

static std::string reals(std::initializer_list<float> values) {
  std::string bytes;
  for (const float value : values)
    bytes += bigEndian(std::bit_cast<std::uint32_t>(value));
  return bytes;
}

const std::string kDefaultName = padded("Default", 64), kZeros(8, '\0');

// What a new preset of each kind holds after its payload's length. Worked from the parameter table:
// frequencies go up to the next entry of the table of 40 steps a decade (80 to 84.34, 11200 to
// 11246.83, 10000 to 10023.74).
const std::pair<std::string, std::string> kDefaults[] = {
    {"Velocity Maps/v", "ord4\0\0\0\0\0\x7f"s},
    {"Effects/e", "\0\0\0"s + reals({11246.83F, 84.34F, 0, 0, -50, 15, 50, 20, 1, 10023.74F}) +
                      "sma1" + reals({17, 1, 50, 10023.74F})},
    {"Programs/p", kDefaultName + "\0\0\0\1"s + kZeros + "\0\0\0\x63\0\0\0\0"s +
                       reals({30, 0, 1, 1, 0, 0}) + padded("No Piano Keyset", 32) +
                       padded("No Synth Keyset", 32)},
    {"Sessions/s", kDefaultName + kDefaultName + "\0\0\0\x18\0\1"s + kZeros + reals({0, 440})}};

class PresetFileTest : public FolderTest {
 protected:
  std::unique_ptr<Preset> written(const char* name, const char* code = "VMap") {
    auto preset = presetOf(code, ref(""), name, true);
    EXPECT_EQ(preset->writeOut(), 0);
    return preset;
  }
};

TEST_F(PresetFileTest, NewPresetsHoldTheDefaultsAndTakeTheNextIndex) {
  for (const auto& [path, defaults] : kDefaults) {
    const std::uint32_t index = Preset::_index_count;
    const std::string name(1, path.back());
    std::string bytes = PresetFile{path, false, index}.bytes();
    bytes.replace(93, bytes.size(), defaults);
    written(name.c_str(), formatOf(path).code);
    EXPECT_TRUE(read(name) == bytes && Preset::_index_count == index + 1) << path;
  }
}

TEST_F(PresetFileTest, EveryTruncationAndEveryChangedHeaderByteIsToldApart) {
  constexpr OSErr kWrong[] = {Preset::kWrongFileType, Preset::kWrongKind, Preset::kWrongSize};
  for (const auto& [path, defaults] : kDefaults) {
    // Every byte of the payload says where it stands.
    std::string bytes = PresetFile{path, true, 4711, {"one", "other"}}.bytes();
    bytes.replace(12, 72, 72, 'n');  // a name without an end, and what is reserved
    EXPECT_EQ(checkPresetFile(*this, bytes), 0);
    EXPECT_EQ(checkPresetFile(*this, bytes + "x"), Preset::kWrongSize);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      const OSErr wrong = kWrong[std::min<std::size_t>(i / 4, 2)];
      ASSERT_EQ(checkPresetFile(*this, bytes.substr(0, i)), wrong) << path << ' ' << i;
      std::string changed = bytes;
      changed[i] = static_cast<char>(changed[i] ^ 0x20);
      EXPECT_TRUE(i >= 12 || checkPresetFile(*this, changed) == wrong) << path << ' ' << i;
    }
  }
}

TEST_F(PresetFileTest, TailsAndLongNames) {
  const std::string name(70, 'n');
  write(name, std::string(110, 'z'));
  const auto preset = written(name.c_str());  // taken over, not emptied
  EXPECT_EQ(read(name).substr(103), "zzzzzzz");
  EXPECT_EQ(read(name).substr(12, 64), std::string(63, 'n') + '\0');
  // Declared, the tail is no harm; the second is not loaded whole.
  for (const std::string& size : {"\0\0\0\xC8"s, "\0\0\x13\x88"s}) {
    write(name, padded(read(name).replace(8, 4, size), size[2] == 0 ? 200 : 5000));
    EXPECT_EQ(preset->readIn(), 0) << size;
  }
  for (const std::uint32_t size : {629145600u, 629145601u}) {  // 600 MiB, and a byte more
    write(name, read(name).substr(0, 103).replace(8, 4, bigEndian(size)));
    fs::resize_file(path(name), size);
    EXPECT_EQ(preset->readIn(), size == 629145600 ? 0 : Preset::kWrongSize);
    fs::resize_file(path(name), 103);
  }
  EXPECT_STREQ(preset->getTreeItemName(), name.c_str()) << "never that in the file";
}

TEST_F(PresetFileTest, RenamingMovingAndComingBack) {
  const auto preset = written("one"), other = written("p");
  const std::string bytes = read("p");
  for (const char* there : {"taken", "into/one", "into/two", "into/p"})
    write(there, "old");
  EXPECT_TRUE(preset->rename(pascal("taken")) == dupFNErr && preset->status() == dupFNErr);
  EXPECT_EQ(preset->getTreeItemName(), "one"s);
  EXPECT_EQ(preset->rename(pascal("two")), 0);
  EXPECT_EQ(read("two").substr(12, 3), "one") << "until the next writeOut";
  EXPECT_EQ(preset->moveToFolder(ref("taken"), false), dirNFErr);
  EXPECT_EQ(preset->moveToFolder(ref("into"), false), dupFNErr);
  EXPECT_EQ(preset->moveToFolder(ref("into"), true), dupFNErr);
  EXPECT_EQ(look("into"), "into/p=old into/two=old ") << "the host name is still one";
  remove("into/two");
  write("into/one", "old");
  EXPECT_EQ(preset->moveToFolder(ref("into"), true), 1);
  EXPECT_FALSE(exists("into/one")) << "nor does it have to be in the way";
  makeFolder("on");
  hardLink("into/two", "on/one");
  EXPECT_EQ(preset->moveToFolder(ref("on"), true), 1);
  EXPECT_TRUE(exists("on/one") && exists("on/two")) << "it may be its only name";
  for (int round = 0; round < 2; ++round)
    EXPECT_EQ(other->moveToFolder(ref("into"), true), 1) << "never deletes itself";
  makeFolder("on/p");
  for (const char* folder : {"on", "into"})
    EXPECT_EQ(other->moveToFolder(ref(folder), true), 1) << "an empty folder makes room too";
  EXPECT_EQ(other->getParentFolderID(), ref("into").node);
  EXPECT_EQ(read("into/p"), bytes);
  remove("into/p");
  EXPECT_TRUE(other->writeOut() == 0 && other->status() == fnfErr)
      << "not open: told by the status";
  for (int round = 0; round < 2; ++round)
    EXPECT_EQ(other->writeOutIfDeletedFromDisk(), 0);
  EXPECT_EQ(read("into/p"), bytes);
}

TEST_F(PresetFileTest, CopiesShareTheIndexAndAreRAM) {
  write("p", PresetFile{"Programs/p", true, 4711}.bytes());
  ProgramPreset source(nullptr, ref("p"), nullptr, false);
  source.readIn();
  std::memcpy(source.fields.effectsName, "Hall\0x", 6);  // with what the file held behind it
  const ProgramPreset copy(nullptr, source, pascal("c"), nullptr);
  EXPECT_TRUE(copy.status() == 0 && copy.index() == 4711 && !copy.isROM());
  EXPECT_EQ(std::string(copy.fields.effectsName, 64), padded("Hall", 64));
  EXPECT_FALSE(copy.equalParams(source)) << "the bytes behind the name differ";
  const ProgramPreset failed(nullptr, source, pascal("c"), nullptr);
  EXPECT_TRUE(failed.status() == dupFNErr && *failed.getTreeItemName() == '\0');
  const std::string image = imageOf(source);
  source.setFlattenedPreset(source.flattenedData(), static_cast<long>(image.size()));
  EXPECT_EQ(imageOf(source), image);
  auto first = std::make_unique<ProgramPreset>(source),
       second = std::make_unique<ProgramPreset>(*first);
  EXPECT_TRUE(second->getTreeItemName() == source.getTreeItemName() &&
              second->flattenedData() == source.flattenedData());
  first.reset(), source.setTreeItemName("another");
  EXPECT_STREQ(second->getTreeItemName(), "p");
  EXPECT_EQ(std::string(second->flattenedData(), image.size()), image);
}

TEST(PresetComparison, StepsAndEmptyNames) {
  EXPECT_EQ(compareIntrinsic(440.0F, 440.2F, kParamTuneA440), 0);
  EXPECT_EQ(compareIntrinsic(440.0F, 440.3F, kParamTuneA440), 1);
  EXPECT_EQ(comparePresetNames("", "Default", 64) | comparePresetNames("Default", "", 64), 0);
  EXPECT_TRUE(comparePresetNames("Hall", "Hallway", 4) == 0 &&
              comparePresetNames("", "default", 64) < 0);
}

TEST_F(PresetFileTest, WhatAHeldPresetTakesAndGives) {
  const std::string longest(254, 'n');
  const auto preset = written(longest.c_str());
  Str255 name;
  for (const std::string start : {"", "\xA5 "}) {
    preset->setROM(!start.empty());
    preset->getListName(name);
    EXPECT_EQ(std::string(name + 1, name + 1 + name[0]), (start + longest).substr(0, 255));
  }
  const auto twin = written("twin");
  const std::string bytes(static_cast<const char*>(twin->getData()), 8);
  preset->setData((bytes.substr(0, 1) + "1234567").c_str(), 1);
  EXPECT_TRUE(preset->equalParams(*twin)) << "no more than it is given";
  preset->setData(padded("12345678", 4096).c_str(), LONG_MAX);
  EXPECT_EQ(std::memcmp(preset->getData(), "12345678", 8), 0);
  host().calls.close = [](int descriptor) { return ::close(descriptor), failWith(ENOSPC); };
  EXPECT_EQ(preset->writeOut(), dskFulErr) << "some volumes report a lost write only here";
}

}  // namespace cairnset
