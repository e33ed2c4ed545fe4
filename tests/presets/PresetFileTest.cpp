#include <functional>
#include <memory>
#include <sstream>

#include <gtest/gtest.h>

#include "host/FileManager.h"
#include "presets/EffectsPreset.h"
#include "presets/PresetComparison.h"
#include "presets/ProgramPreset.h"
#include "presets/SessionPreset.h"
#include "presets/VelocityMapPreset.h"
#include "tests/TestFolder.h"

namespace cairnset {
namespace {

using namespace std::string_literals;

std::string padded(std::string text, std::size_t width) {
  text.resize(width, '\0');
  return text;
}

std::string word(std::uint32_t value) {
  return {static_cast<char>(value >> 24), static_cast<char>(value >> 16),
          static_cast<char>(value >> 8), static_cast<char>(value)};
}

std::string real(float value) {
  return word(std::bit_cast<std::uint32_t>(value));
}

const unsigned char* pascal(const char* literal) {
  return reinterpret_cast<const unsigned char*>(literal);
}

std::string header(const char* kind, std::uint32_t size, const char* name, char rom,
                   std::uint32_t index) {
  return "OlPs"s + kind + word(size) + padded(name, 64) + "\0\0\0\0\0\0\0\0"s + rom + word(index);
}

using Make = std::function<std::unique_ptr<Preset>(const FSRef&, const char*, bool)>;

struct Kind {
  const char* code;
  Make make;
  std::size_t size;
  std::string defaults;  // the payload of a new preset
};

template <typename P>
Make maker() {
  return [](const FSRef& ref, const char* name, bool create) -> std::unique_ptr<Preset> {
    if constexpr (std::is_same_v<P, ProgramPreset>) {
      return std::make_unique<P>(nullptr, ref, name, create);
    } else {
      return std::make_unique<P>(ref, name, create);
    }
  };
}

// Worked from the parameter table: frequencies go up to the next entry of the table of 40 steps a
// decade (80 to 84.34, 11200 to 11246.83, 10000 to 10023.74).
std::vector<Kind> kinds() {
  const std::string zero = real(0);
  return {
      {"VMap", maker<VelocityMapPreset>(), 103, word(10) + "ord4" + zero + "\0\x7f"s},
      {"Effx", maker<EffectsPreset>(), 156,
       word(63) + "\0\0\0"s + real(11246.83F) + real(84.34F) + zero + zero + real(-50) + real(15) +
           real(50) + real(20) + real(1) + real(10023.74F) + "sma1" + real(17) + real(1) +
           real(50) + real(10023.74F)},
      {"Prog", maker<ProgramPreset>(), 265,
       word(108) + padded("Default", 64) + "\0\0\0\1"s + word(0) + word(0) + word(99) + word(0) +
           real(30) + zero + real(1) + real(1) + zero + zero + padded("No Piano Keyset", 32) +
           padded("No Synth Keyset", 32)},
      {"Sess", maker<SessionPreset>(), 243,
       word(150) + padded("Default", 64) + padded("Default", 64) + "\0\0\0\x18\0\1\0\0\0\0"s +
           word(0) + zero + real(440)},
  };
}

class PresetFile : public testing::Test, protected TestFolder {
 protected:
  std::unique_ptr<Preset> open(const Kind& kind, const char* name) {
    return kind.make(ref(name), nullptr, false);
  }
  // A file of the kind in which every byte of the payload says where it stands.
  std::string sample(const Kind& kind, const char* name) const {
    std::string bytes = header(kind.code, static_cast<std::uint32_t>(kind.size), name, 1, 4711) +
                        kind.defaults.substr(0, 4);
    while (bytes.size() < kind.size)
      bytes += static_cast<char>(bytes.size() % 251 + 1);
    return bytes;
  }
};

TEST_F(PresetFile, ANewPresetIsWrittenWithItsDefaults) {
  for (const Kind& kind : kinds()) {
    const std::uint32_t index = Preset::_index_count;
    const auto preset = kind.make(ref(""), kind.code, true);
    ASSERT_EQ(preset->status(), 0);
    EXPECT_EQ(read(kind.code), "") << "made, not yet written";
    EXPECT_EQ(preset->writeOut(), 0);
    EXPECT_EQ(read(kind.code),
              header(kind.code, static_cast<std::uint32_t>(kind.size), kind.code, 0, index) +
                  kind.defaults);
    EXPECT_EQ(Preset::_index_count, index + 1);
  }
}

TEST_F(PresetFile, ReadAndWrittenBackIsTheSameFile) {
  for (const Kind& kind : kinds()) {
    std::string bytes = sample(kind, kind.code);
    std::string dirty = bytes;
    dirty.replace(76, 8, "reserved");  // the one thing that is dropped
    dirty.replace(12, 4, "name");      // and what is made anew
    write(kind.code, dirty);
    const auto preset = open(kind, kind.code);
    EXPECT_EQ(preset->readIn(), 0);
    EXPECT_TRUE(preset->isROM());
    EXPECT_EQ(preset->index(), 4711);
    EXPECT_EQ(preset->writeOut(), 0);
    EXPECT_EQ(read(kind.code), bytes) << kind.code;
  }
}

TEST_F(PresetFile, EveryTruncationAndEveryChangedHeaderByteIsToldApart) {
  for (const Kind& kind : kinds()) {
    const std::string bytes = sample(kind, "f");
    const auto statusOf = [&](const std::string& content) {
      write("f", content);
      const auto preset = open(kind, "f");
      preset->readIn();
      const bool untouched =
          !preset->isROM() && std::string(static_cast<const char*>(preset->getData()),
                                          static_cast<std::size_t>(preset->getDataSize()))
                                      .find_first_not_of('\0') == std::string::npos;
      EXPECT_EQ(untouched, preset->status() != 0);
      return preset->status();
    };
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      const OSErr expected = length < 4   ? Preset::kWrongFileType
                             : length < 8 ? Preset::kWrongKind
                                          : Preset::kWrongSize;
      ASSERT_EQ(statusOf(bytes.substr(0, length)), expected) << kind.code << ' ' << length;
    }
    for (std::size_t i = 0; i < 12; ++i) {
      std::string changed = bytes;
      changed[i] = static_cast<char>(changed[i] ^ 0x20);
      const OSErr expected[] = {Preset::kWrongFileType, Preset::kWrongKind, Preset::kWrongSize};
      ASSERT_EQ(statusOf(changed), expected[i / 4]) << kind.code << ' ' << i;
    }
    EXPECT_EQ(statusOf(bytes + "x"), Preset::kWrongSize);
    EXPECT_EQ(statusOf(bytes), 0);
  }
}

TEST_F(PresetFile, ALongerFileKeepsItsTail) {
  const Kind kind = kinds()[0];
  write("f", std::string(110, 'z'));
  const auto preset = kind.make(ref(""), "f", true);  // taken over, not emptied
  EXPECT_EQ(preset->writeOut(), 0);
  EXPECT_EQ(read("f").substr(103), "zzzzzzz");
  EXPECT_EQ(preset->readIn(), Preset::kWrongSize);
  for (const std::size_t size :
       {200u, 5000u}) {  // declared, the tail is no harm; the second is not loaded whole
    write("f",
          padded(sample(kind, "f").replace(8, 4, word(static_cast<std::uint32_t>(size))), size));
    EXPECT_EQ(preset->readIn(), 0) << size;
  }
}

TEST_F(PresetFile, NamesAreWrittenCutAndNeverReadBack) {
  const std::string name(70, 'n');
  const auto preset = kinds()[0].make(ref(""), name.c_str(), true);
  preset->writeOut();
  EXPECT_EQ(read(name).substr(12, 64), std::string(63, 'n') + '\0');
  const Kind session = kinds()[3];
  std::string bytes = sample(session, "other");
  bytes.replace(93, 64, std::string(64, 'v'));
  write("s", bytes);
  const auto read = open(session, "s");
  read->readIn();
  EXPECT_STREQ(read->getTreeItemName(), "s");
  EXPECT_EQ(nameInField(static_cast<SessionPreset&>(*read).fields.velocityMapName),
            std::string(64, 'v'));
}

TEST_F(PresetFile, RenameMovesTheNameInMemoryButNotTheHostName) {
  const auto preset = kinds()[0].make(ref(""), "one", true);
  preset->writeOut();
  write("taken", "t");
  EXPECT_EQ(preset->rename(pascal("\5taken")), dupFNErr);
  EXPECT_EQ(preset->status(), dupFNErr);
  EXPECT_STREQ(preset->getTreeItemName(), "one");
  EXPECT_EQ(preset->rename(pascal("\3two")), 0);
  EXPECT_STREQ(preset->getTreeItemName(), "two");
  EXPECT_EQ(read("two").substr(12, 3), "one") << "until the next writeOut";
  makeFolder("into");
  write("into/one", "old host name");
  write("into/two", "in the way");
  EXPECT_EQ(preset->moveToFolder(ref("into"), true), dupFNErr);
  EXPECT_EQ(list("into"), (std::vector<std::string>{"two"})) << "the host name is still one";
}

TEST_F(PresetFile, MovingAnswersOneAndReplacesOnlyWhenAsked) {
  const auto preset = kinds()[0].make(ref(""), "p", true);
  preset->writeOut();
  makeFolder("into");
  write("into/p", "old");
  EXPECT_EQ(preset->moveToFolder(ref("into/p"), false), dirNFErr);
  EXPECT_EQ(preset->moveToFolder(ref("into"), false), dupFNErr);
  EXPECT_EQ(read("into/p"), "old");
  EXPECT_EQ(preset->moveToFolder(ref("into"), true), 1);
  EXPECT_EQ(preset->getParentFolderID(), ref("into").node);
  EXPECT_EQ(preset->moveToFolder(ref("into"), true), 1) << "onto itself: must not delete itself";
  EXPECT_EQ(read("into/p").size(), 103u);
}

TEST_F(PresetFile, ComesBackWhenDeletedBehindOurBack) {
  const Kind kind = kinds()[2];
  const auto preset = kind.make(ref(""), "p", true);
  preset->writeOut();
  const std::string bytes = read("p");
  EXPECT_EQ(preset->writeOutIfDeletedFromDisk(), 0);
  const FSRef file = ref("p");
  FSDeleteObject(&file);
  EXPECT_EQ(preset->writeOut(), 0) << "not open: told by the status alone";
  EXPECT_EQ(preset->status(), fnfErr);
  EXPECT_EQ(preset->writeOutIfDeletedFromDisk(), 0);
  EXPECT_EQ(read("p"), bytes);
}

TEST_F(PresetFile, CopiesShareTheIndexAndAreRAM) {
  write("p", sample(kinds()[2], "p"));
  ProgramPreset source(nullptr, ref("p"), nullptr, false);
  source.readIn();
  std::strcpy(source.fields.effectsName, "Hall");  // with what the file held behind it
  const ProgramPreset copy(nullptr, source, pascal("\1c"), nullptr);
  EXPECT_EQ(copy.status(), 0);
  EXPECT_STREQ(copy.getTreeItemName(), "c");
  EXPECT_TRUE(copy.index() == source.index() && !copy.isROM());
  EXPECT_EQ(std::string(copy.fields.effectsName, 64), padded("Hall", 64));
  EXPECT_FALSE(copy.equalParams(source)) << "the bytes behind the name differ";
  EXPECT_EQ(ProgramPreset(nullptr, source, pascal("\1c"), nullptr).status(), dupFNErr);
}

TEST_F(PresetFile, FlattenedIsTheFileImage) {
  for (const Kind& kind : kinds()) {
    const auto preset = kind.make(ref(""), kind.code, true);
    preset->writeOut();
    ASSERT_EQ(preset->getFlattenedPreset(nullptr), static_cast<long>(kind.size));
    EXPECT_EQ(std::string(preset->flattenedData(), kind.size), read(kind.code));
    const std::string other = sample(kind, "x");
    preset->setFlattenedPreset(other.data(), static_cast<long>(other.size()));
    EXPECT_EQ(preset->index(), 4711);
    EXPECT_TRUE(preset->edited());
    preset->setFlattenedPreset("OlPs", 4);
    EXPECT_EQ(preset->status(), Preset::kWrongKind);
    EXPECT_EQ(preset->index(), 4711);
  }
}

TEST_F(PresetFile, IsShownWithIndexKindRomMarkAndName) {
  const auto preset = kinds()[2].make(ref(""), "Gr\x8En", true);  // Mac Roman e acute
  std::ostringstream os;
  os.width(9);
  for (const bool rom : {false, true}) {
    preset->setTreeItemIndex(rom ? 12345 : 7);
    preset->setROM(rom);
    preset->printTreeItemInfo(os, 0);
  }
  EXPECT_EQ(os.str(), "  7 [Prog]      \"Gr\xC3\xA9n\"12345 [Prog] ROM  \"Gr\xC3\xA9n\"");
  EXPECT_EQ(os.width(), 9);
  Str255 name;
  preset->getListName(name);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(name), 7), "\6\xA5 Gr\x8En");
}

TEST(PresetComparison, StepsAndEmptyNames) {
  EXPECT_EQ(compareIntrinsic(440.0F, 440.2F, kParamTuneA440), 0);
  EXPECT_EQ(compareIntrinsic(440.0F, 440.3F, kParamTuneA440), 1);
  EXPECT_EQ(comparePresetNames("", "Default", 64), 0);
  EXPECT_EQ(comparePresetNames("Hall", "Hallway", 4), 0);
  EXPECT_LT(comparePresetNames("", "default", 64), 0);
}

}  // namespace
}  // namespace cairnset
