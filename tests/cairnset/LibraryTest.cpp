#include "cairnset/Library.h"
#include "host/files/HeldFolder.h"
#include "tests/PresetFile.h"

namespace cairnset {
namespace {

using Access = Library::Access;
using Kind = Library::Kind;

class LibraryTest : public MemoryTest {
 protected:
  LibraryTest() {
    for (const char* kind : {"Velocity Maps", "Effects", "Programs", "Sessions"})
      put(*this, PresetFile{std::string(kind) + "/Default", true});
    for (const char* kind : {"Velocity Maps", "Effects", "Programs"})
      makeFolder(std::string("lib/Presets/") + kind + "/User");  // a load would make them
    put(*this, PresetFile{"Effects/Halls/caf\xC3\xA9", true, 1});
    put(*this, PresetFile{"Effects/bad?", true, 2});
    put(*this, PresetFile{"Programs/p", true, 1, {"CAF\x83"}});  // Mac Roman
    put(*this, PresetFile{"Programs/q", true, 2, {"lost"}});
  }

  // Each preset with what it uses and what uses it: "p>café" leads there, "q>lost!" nowhere.
  std::string look() const {
    std::string text;
    const auto presets = library.presets();
    for (const Library::Preset& preset : presets) {
      if (preset.name == "Default") continue;
      text += preset.path.substr(preset.path.find('/') + 1);
      for (const auto& use : preset.uses)
        text += '>' + (use.preset ? presets[*use.preset].name : use.name + '!');
      for (const std::size_t user : preset.users)
        text += '<' + presets[user].name;
      text += ' ';
    }
    return text;
  }

  Library library;
};

constexpr const char* kBefore = "Halls/caf\xC3\xA9<p bad? p>caf\xC3\xA9 q>lost! ";

TEST_F(LibraryTest, RenamesInTheSameWayInADryRunWhichTouchesNothing) {
  const auto before = items();
  for (const Access access : {Access::kDryRun, Access::kChange}) {
    ASSERT_FALSE(library.open(path("lib"), access));
    EXPECT_EQ(look(), kBefore);
    std::vector<Library::Rename> renames{{"Effects/Halls/caf\xC3\xA9", "bar"}};
    EXPECT_EQ(library.rename(renames).rewritten, std::vector<std::string>{"Programs/p"});
    EXPECT_EQ(look(), "Halls/bar<p bad? p>bar q>lost! ");
    EXPECT_TRUE(library.relink(Kind::kEffects, "LOST", "Bar").errors.empty());
    EXPECT_TRUE(library.rename(library.nameRepairs()).errors.empty());
    EXPECT_EQ(look(), "Halls/bar<p<q bad_ p>bar q>bar ");
    EXPECT_EQ(library.changes().size(), access == Access::kDryRun ? 4u : 0u);
    library.close();
    EXPECT_EQ(items() == before, access == Access::kDryRun);
  }
  ASSERT_FALSE(library.open(path("lib"), Access::kDryRun));
  EXPECT_EQ(look(), "Halls/bar<p<q bad_ p>bar q>bar ");
}

TEST_F(LibraryTest, ReportsWhatCannotBeDoneAndLeavesTheDiskAsItIs) {
  makeFolder("empty");
  const auto before = items();
  EXPECT_EQ(library.rename({}).errors.at(0).code, Library::kNotOpen);
  EXPECT_EQ(library.open(path("none")).code, fnfErr);
  EXPECT_EQ(library.open(path("lib/Presets/Programs/p")).code, dirNFErr);
  EXPECT_EQ(library.open(path("empty")).code, Library::kNoLibrary);
  ASSERT_FALSE(library.open(path("lib")));
  EXPECT_EQ(Library().open(path("lib")).code, Library::kAlreadyOpen);
  const Library::Rename both[] = {{"Programs/p", "r"}, {"Programs/q", "R"}};
  EXPECT_EQ(library.rename(both).errors.at(0).code, Library::kRefused);
  EXPECT_EQ(library.relink(Kind::kSession, "a", "b").errors.at(0).code, Library::kRefused);
  EXPECT_EQ(look(), kBefore);
  EXPECT_TRUE(items() == before);
}

TEST_F(LibraryTest, KeepsTheOldNameUntilAllReferrersAreRewritten) {
  const Library::Rename change[] = {{"Effects/Halls/caf\xC3\xA9", "bar"}};
  host().calls.flock = [](auto...) { return failWith(EWOULDBLOCK); };
  host().calls.sleep = [](auto) {};
  EXPECT_EQ(library.open(path("lib")).code, Library::kBusy);
  host().calls = toSee();
  ASSERT_FALSE(library.open(path("lib")));
  host().calls.pwrite = [](auto...) { return failWith(EROFS); };
  const Library::Outcome failed = library.rename(change);
  ASSERT_EQ(failed.errors.size(), 2u);
  EXPECT_EQ(failed.errors[0].code, vLckdErr);
  EXPECT_EQ(failed.errors[1].code, Library::kKeepsOldName);
  EXPECT_TRUE(failed.rewritten.empty() && exists("lib/Presets/Effects/Halls/caf\xC3\xA9"));
  host().calls = toSee();
  ASSERT_FALSE(library.open(path("lib")));
  EXPECT_TRUE(library.rename(change).errors.empty());
  EXPECT_EQ(look(), "Halls/bar<p bad? p>bar q>lost! ");
}

TEST_F(LibraryTest, ShowsWhatWasPassedOverAndWhatIsDamaged) {
  write("lib/Presets/Programs/q", PresetFile{"Programs/q"}.bytes().substr(0, 200));
  remove("lib/Presets/Sessions");
  write("lib/Presets/Sessions", "a file");
  ASSERT_FALSE(library.open(path("lib"), Access::kDryRun));
  EXPECT_TRUE(library.presets().back().isDamaged && library.presets().back().name == "q");
  ASSERT_EQ(library.passedOver().size(), 1u);
  EXPECT_EQ(library.passedOverCount(), 1u);
  EXPECT_EQ(library.passedOver()[0].path, "Sessions");
  EXPECT_FALSE(library.settings(0).empty());
}

}  // namespace
}  // namespace cairnset
