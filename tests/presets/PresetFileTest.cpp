#include <bit>
#include <cstring>
#include <functional>
#include <memory>

#include "presets/EffectsPreset.h"
#include "presets/PresetComparison.h"
#include "presets/ProgramPreset.h"
#include "presets/SessionPreset.h"
#include "presets/VelocityMapPreset.h"
#include "tests/PresetFile.h"

namespace cairnset {
namespace {

using namespace std::string_literals;

std::string padded(std::string text, std::size_t width) {
  text.resize(width, '\0');
  return text;
}

std::string reals(std::initializer_list<float> values) {
  std::string bytes;
  for (const float value : values)
    for (int shift = 24; shift >= 0; shift -= 8)
      bytes += static_cast<char>(std::bit_cast<std::uint32_t>(value) >> shift);
  return bytes;
}

const unsigned char* pascal(const char* literal) {
  return reinterpret_cast<const unsigned char*>(literal);
}

struct Kind {
  std::string path;
  std::function<std::unique_ptr<Preset>(const FSRef&, const char*, bool)> make;
  std::string defaults;  // what a new preset holds after its payload's length
  // A file in which every byte of the payload says where it stands.
  std::string sample() const { return PresetFile{path, true, 4711, {"one", "other"}}.bytes(); }
};

template <typename P>
auto make(const FSRef& ref, const char* name, bool isNew) {
  if constexpr (std::is_same_v<P, ProgramPreset>) {
    return std::make_unique<P>(nullptr, ref, name, isNew);
  } else {
    return std::make_unique<P>(ref, name, isNew);
  }
}

const std::string kDefaultName = padded("Default", 64), kZeros(8, '\0');

// Worked from the parameter table: frequencies go up to the next entry of the table of 40 steps a
// decade (80 to 84.34, 11200 to 11246.83, 10000 to 10023.74).
const Kind kKinds[] = {
    {"Velocity Maps/v", make<VelocityMapPreset>, "ord4\0\0\0\0\0\x7f"s},
    {"Effects/e", make<EffectsPreset>,
     "\0\0\0"s + reals({11246.83F, 84.34F, 0, 0, -50, 15, 50, 20, 1, 10023.74F}) + "sma1" +
         reals({17, 1, 50, 10023.74F})},
    {"Programs/p", make<ProgramPreset>,
     kDefaultName + "\0\0\0\1"s + kZeros + "\0\0\0\x63\0\0\0\0"s + reals({30, 0, 1, 1, 0, 0}) +
         padded("No Piano Keyset", 32) + padded("No Synth Keyset", 32)},
    {"Sessions/s", make<SessionPreset>,
     kDefaultName + kDefaultName + "\0\0\0\x18\0\1"s + kZeros + reals({0, 440})}};

class PresetFileTest : public testing::Test, protected TestFolder {
 protected:
  std::unique_ptr<Preset> written(const char* name, const Kind& kind = kKinds[0]) {
    auto preset = kind.make(ref(""), name, true);
    EXPECT_EQ(preset->writeOut(), 0);
    return preset;
  }
};

TEST_F(PresetFileTest, DefaultsAndSamplesAreWrittenByteForByte) {
  for (const Kind& kind : kKinds) {
    const std::uint32_t index = Preset::_index_count;
    const char* code = formatOf(kind.path).code;
    std::string fresh = PresetFile{formatOf(kind.path).folder + "/"s + code, false, index}.bytes();
    fresh.replace(93, fresh.size(), kind.defaults);
    EXPECT_EQ(read((written(code, kind), code)), fresh);
    EXPECT_EQ(Preset::_index_count, index + 1);
    const std::string bytes = kind.sample(), name = kind.path.substr(kind.path.size() - 1);
    std::string dirty = bytes;
    dirty.replace(76, 8, "reserved").replace(12, 4, "name");  // dropped, and made anew
    write(name, dirty);
    const auto preset = kind.make(ref(name), nullptr, false);
    EXPECT_TRUE(preset->readIn() == 0 && preset->isROM() && preset->index() == 4711);
    EXPECT_EQ(preset->writeOut(), 0);
    EXPECT_EQ(read(name), bytes);
    ASSERT_EQ(preset->getFlattenedPreset(nullptr), static_cast<long>(bytes.size()));
    EXPECT_EQ(std::string(preset->flattenedData(), bytes.size()), bytes);
    fresh.replace(12, 4, name + "\0\0\0"s);
    preset->setFlattenedPreset(fresh.data(), static_cast<long>(fresh.size()));
    EXPECT_TRUE(preset->edited() && preset->index() == static_cast<std::int32_t>(index));
    EXPECT_EQ(preset->writeOut(), 0);
    EXPECT_EQ(read(name), fresh);
    preset->setFlattenedPreset("OlPs", 4);
    EXPECT_EQ(preset->status(), Preset::kWrongKind);
  }
}

TEST_F(PresetFileTest, EveryTruncationAndEveryChangedHeaderByteIsToldApart) {
  constexpr OSErr kWrong[] = {Preset::kWrongFileType, Preset::kWrongKind, Preset::kWrongSize};
  for (const Kind& kind : kKinds) {
    const std::string bytes = kind.sample();
    const auto statusOf = [&](const std::string& content) {
      write("f", content);
      const auto preset = kind.make(ref("f"), nullptr, false);
      const auto blank = kind.make(ref("f"), nullptr, false);
      preset->readIn();
      const bool isUntouched = !preset->isROM() && preset->equalParams(*blank);
      EXPECT_EQ(isUntouched, preset->status() != 0);
      return preset->status();
    };
    for (std::size_t length = 0; length < bytes.size(); ++length)
      ASSERT_EQ(statusOf(bytes.substr(0, length)), kWrong[std::min<std::size_t>(length / 4, 2)]);
    for (std::size_t i = 0; i < 12; ++i) {
      std::string changed = bytes;
      changed[i] = static_cast<char>(changed[i] ^ 0x20);
      ASSERT_EQ(statusOf(changed), kWrong[i / 4]) << kind.path << ' ' << i;
    }
    EXPECT_EQ(statusOf(bytes + "x"), Preset::kWrongSize);
    EXPECT_EQ(statusOf(bytes), 0);
  }
}

TEST_F(PresetFileTest, TailsAndLongNames) {
  const std::string name(70, 'n');
  write(name, std::string(110, 'z'));
  const auto preset = written(name.c_str());  // taken over, not emptied
  EXPECT_EQ(read(name).substr(103), "zzzzzzz");
  EXPECT_EQ(read(name).substr(12, 64), std::string(63, 'n') + '\0');
  EXPECT_EQ(preset->readIn(), Preset::kWrongSize);
  // Declared, the tail is no harm; the second is not loaded whole.
  for (const std::string& size : {"\0\0\0\xC8"s, "\0\0\x13\x88"s}) {
    write(name, padded(kKinds[0].sample().replace(8, 4, size), size[2] == 0 ? 200 : 5000));
    EXPECT_EQ(preset->readIn(), 0) << size;
  }
  EXPECT_STREQ(preset->getTreeItemName(), name.c_str()) << "never that in the file";
  write("s", PresetFile{kKinds[3].path, false, 0, {name}}.bytes());
  SessionPreset session(ref("s"), nullptr, false);
  session.readIn();
  EXPECT_EQ(nameInField(session.fields.velocityMapName), name.substr(0, 64));
}

TEST_F(PresetFileTest, RenamingAndMoving) {
  const auto preset = written("one");
  makeFolder("into");
  for (const char* there : {"taken", "into/one", "into/two"})
    write(there, "old");
  EXPECT_EQ(preset->rename(pascal("\5taken")), dupFNErr);
  EXPECT_EQ(preset->status(), dupFNErr);
  EXPECT_STREQ(preset->getTreeItemName(), "one");
  EXPECT_EQ(preset->rename(pascal("\3two")), 0);
  EXPECT_STREQ(preset->getTreeItemName(), "two");
  EXPECT_EQ(read("two").substr(12, 3), "one") << "until the next writeOut";
  EXPECT_EQ(preset->moveToFolder(ref("taken"), false), dirNFErr);
  EXPECT_EQ(preset->moveToFolder(ref("into"), false), dupFNErr);
  EXPECT_EQ(preset->moveToFolder(ref("into"), true), dupFNErr);
  EXPECT_EQ(list("into"), (std::vector<std::string>{"two"})) << "the host name is still one";
  EXPECT_EQ(read("into/two"), "old");
  const auto other = written("p");
  write("into/p", "old");
  for (int round = 0; round < 2; ++round)
    EXPECT_EQ(other->moveToFolder(ref("into"), true), 1) << "never deletes itself";
  EXPECT_EQ(other->getParentFolderID(), ref("into").node);
  EXPECT_EQ(read("into/p").size(), 103u);
}

TEST_F(PresetFileTest, ComesBackWhenDeletedBehindOurBack) {
  const auto preset = written("p", kKinds[2]);
  const std::string bytes = read("p");
  EXPECT_EQ(preset->writeOutIfDeletedFromDisk(), 0);
  std::filesystem::remove(path("p"));
  EXPECT_EQ(preset->writeOut(), 0) << "not open: told by the status alone";
  EXPECT_EQ(preset->status(), fnfErr);
  EXPECT_EQ(preset->writeOutIfDeletedFromDisk(), 0);
  EXPECT_EQ(read("p"), bytes);
}

TEST_F(PresetFileTest, CopiesShareTheIndexAndAreRAM) {
  write("p", kKinds[2].sample());
  ProgramPreset source(nullptr, ref("p"), nullptr, false);
  source.readIn();
  std::memcpy(source.fields.effectsName, "Hall\0x", 6);  // with what the file held behind it
  const ProgramPreset copy(nullptr, source, pascal("\1c"), nullptr);
  EXPECT_TRUE(copy.status() == 0 && copy.index() == source.index() && !copy.isROM());
  EXPECT_STREQ(copy.getTreeItemName(), "c");
  EXPECT_EQ(std::string(copy.fields.effectsName, 64), padded("Hall", 64));
  EXPECT_FALSE(copy.equalParams(source)) << "the bytes behind the name differ";
  EXPECT_EQ(ProgramPreset(nullptr, source, pascal("\1c"), nullptr).status(), dupFNErr);
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
