#include "host/files/FileSystemHelpers.h"
#include "tests/host/FileTest.h"

namespace cairnset {

// The ways that a rename can take: what the volume answers instead, 0 where it does as asked.
struct Road {
  int rename, link;
};

constexpr Road kRoads[] = {{0, 0},          {EINVAL, 0},       {ENOSYS, 0},     {ENOTSUP, 0},
                           {EINVAL, EPERM}, {ENOSYS, ENOTSUP}, {EINVAL, EMLINK}};

class ChangesTest : public FileTest {
 protected:
  void take(const Road& road) {
    SystemCalls& calls = host().calls;
    calls = real;
    if (road.rename != 0) calls.renameNoReplace = [road](auto...) { return failWith(road.rename); };
    if (road.link != 0) calls.link = [road](auto...) { return failWith(road.link); };
  }
  static OSErr move(const FSRef& ref, const FSRef& folder, FSRef* out = nullptr) {
    return FSMoveObject(&ref, &folder, out);
  }
};

// Some volumes give the number of a deleted file to the next one that is made.
TEST_P(ChangesTest, AreRecordedInOrder) {
  const ChangeRecord record;
  const FSRef top = ref("");
  FSRef file;
  for (const std::u16string_view name : {u"a", u"b"}) {
    EXPECT_EQ(create(top, name, &file), noErr);
    EXPECT_EQ(rename(file, u"c", &file), noErr);
    EXPECT_EQ(FSDeleteObject(&file), noErr);
  }
  std::string changes;
  for (const auto& [kind, from, to] : record.changesIn(top))
    changes += wordsFor(kind) + (' ' + from) + ' ' + to + ';';
  EXPECT_EQ(changes, "make a ;rename a c;delete c ;make b ;rename b c;delete c ;");
}

// Every kind of item onto every kind of occupant, by rename and by move, then onto a free name.
TEST_P(ChangesTest, NeverReplacesAnything) {
  if (!keepsNames()) GTEST_SKIP() << "this volume changes names";
  for (const std::string at : {"", "other/"}) {
    write(at + "file", at + " bytes");
    makeFolder(at + "folder");
    write(at + "full/inner", at);
    symlink("nowhere", at + "alias");
    hardLink(at + "file", at + "FILE");
  }
  const FSRef top = ref(""), folder = ref("other");
  const std::string before = look();
  const std::u16string_view kinds[] = {u"file", u"folder", u"full", u"alias", u"FILE"};
  for (const Road& way : kRoads) {
    take(way);
    for (const auto& from : kinds) {
      SCOPED_TRACE(testing::Message() << way.rename << ' ' << way.link << ' ' << from.size());
      FSRef item, moved{77};
      ASSERT_EQ(find(top, from, &item), noErr);
      for (const auto& to : kinds)
        EXPECT_TRUE(from == to || rename(item, to, &moved) == dupFNErr) << to.size();
      EXPECT_EQ(move(item, folder, &moved), dupFNErr);
      EXPECT_EQ(moved.node, 77u);
      ASSERT_EQ(look(), before);
      EXPECT_EQ(rename(item, u"free", &moved), noErr);
      EXPECT_TRUE(FSRefIsValid(item) == fnfErr && rename(item, u"x") == fnfErr);
      EXPECT_EQ(move(moved, folder, &moved), noErr);
      EXPECT_TRUE(exists("other/free"));
      EXPECT_EQ(move(moved, top, &moved), noErr);
      EXPECT_EQ(rename(moved, from, &moved), noErr);
      EXPECT_EQ(moved, item) << "one place, one reference";
      ASSERT_EQ(look(), before);
    }
  }
}

// A volume that takes "wARM" for "Warm"; then one whose file numbers are all alike, besides.
TEST_P(ChangesTest, CaseAloneIsNoCollision) {
  for (const Road& way : kRoads) {
    take({way.rename != 0 ? way.rename : EEXIST, way.link != 0 ? way.link : EEXIST});
    bool sameNumbers = false;
    host().calls.lstat = [&sameNumbers, this](int folder, const char* name, struct stat* out) {
      int result = real.lstat(folder, name, out);
      if (std::string other = name; result != 0 && other.ends_with("wARM")) {
        other.replace(other.size() - 4, 4, "Warm");
        result = real.lstat(folder, other.c_str(), out);
      }
      if (sameNumbers) out->st_ino = 1, out->st_nlink = 1;
      return result;
    };
    if (exists("in")) remove("in");
    write("in/Warm", "warm");
    FSRef item = ref("in/Warm");
    EXPECT_EQ(rename(item, u"Warm", &item), noErr) << way.rename << ' ' << way.link;
    EXPECT_EQ(rename(item, u"wARM", &item), noErr) << way.rename << ' ' << way.link;
    sameNumbers = true;
    write("in/Cold", "cold");
    EXPECT_EQ(rename(item, u"Cold"), dupFNErr) << way.rename << ' ' << way.link;
    EXPECT_EQ(look("in"), "in/Cold=cold in/wARM=warm ");
  }
}

TEST_P(ChangesTest, ResultCodes) {
  makeFolder("folder/inner"), makeFolder("gone");
  write("file", "x");
  symlink("folder", "alias");
  const FSRef top = ref(""), folder = ref("folder"), file = ref("file"), gone = ref("gone"),
              none{0};
  FSRef alias, lost, made;
  ASSERT_EQ(find(top, u"alias", &alias) + create(gone, u"lost", &lost), noErr);
  const FSRef unused{lost.node + 1}, far{0xFFFFFFFF}, root{NodeTable::kRoot};
  remove("gone");
  std::int16_t fork;
  const auto newFolder = [&](const FSRef& at, std::u16string_view name) {
    return FSCreateDirectoryUnicode(&at, name.size(), name.data(), &made, nullptr, nullptr);
  };
  const auto newAlias = [](const FSRef& at, std::u16string_view name, const FSRef& target) {
    return FSCreateAliasFile(&at, name.size(), name.data(), &target, nullptr);
  };
  const std::u16string longest(255, u'n'), tooLong(256, u'n');
  const std::pair<OSErr, std::vector<OSErr>> cases[] = {
      {dupFNErr, {create(top, u"file"), newFolder(top, u"alias"), newAlias(top, u"file", folder)}},
      {dirNFErr,
       {create(alias, u"x"), create(file, u"x"), create(gone, u"x"), newFolder(alias, u"x"),
        newAlias(top, u"x", lost), rename(lost, u"x"), move(file, alias), move(file, gone),
        move(lost, top), find(gone, u"x", &made), find(file, u"x", &made), FSDeleteObject(&lost),
        FSRefIsValid(lost), setCreationDate(&lost, 1), openFork(lost, fsRdPerm, &fork)}},
      {bdNamErr, {create(top, u".."), create(top, u"a:b"), rename(file, tooLong)}},
      {errFSBadFSRef,
       {create(none, u"x"), rename(none, u"x"), rename(root, u"x"), move(file, none),
        FSDeleteObject(&none), setCreationDate(&none, 1), FSRefIsValid(unused), FSRefIsValid(far)}},
      {paramErr, {move(folder, ref("folder/inner"))}},
      {fBsyErr, {FSDeleteObject(&folder)}},
      {noErr, {create(top, longest), newFolder(folder, u"x"), FSDeleteObject(&made)}},
      {fnfErr,
       {FSDeleteObject(&made), rename(made, u"x"), move(made, top), FSRefIsValid(made),
        find(top, u"x", &made)}}};
  for (const auto& [expected, results] : cases)
    EXPECT_EQ(results, std::vector<OSErr>(results.size(), expected));
  const std::string all =
      "alias->folder file=x folder/ folder/inner/ " + std::string(255, 'n') + "= ";
  EXPECT_EQ(look(), all);
  for (const auto& [error, expected] :
       {std::pair(EXDEV, diffVolErr), {EROFS, vLckdErr}, {EPERM, permErr}}) {
    take({error, 0});
    EXPECT_EQ(move(file, folder), expected);
  }
  int unlinks = 0;
  take({EINVAL, 0});
  host().calls.unlink = [&unlinks, this](auto... args) {
    return ++unlinks == 1 ? failWith(EACCES) : real.unlink(args...);
  };
  EXPECT_EQ(rename(file, u"other"), permErr);
  EXPECT_EQ(look(), all) << "nor is the second name left";
}

ON_DISK_AND_OVERLAYS(ChangesTest);

}  // namespace cairnset
