// Runs of the program. Each file of tests/transcripts/ is a library and what is done to it:
//
//   // ...            a comment
//   : ITEM            an item of the library, before the first run
//   * STATUS OPTIONS  a run of "cairnset -e lib OPTIONS". What follows is all that it prints after
//                     the banner and the line that tells the path, and all that it changes.
//   $ STATUS COMMAND  the same with a command line of the shell, and all of what it prints. It runs
//                     beside the library, "lib"; XDG_CONFIG_HOME is "config" there.
//   > TEXT            a line on standard output
//   ! TEXT            a line on standard error
//   + ITEM            an item that was not there before, with the folder that it lies in
//   ~ ITEM            a file that was written to, even to no effect, and what it holds now
//   - PATH            an item that is gone
//   - PATH to PATH    a file that was renamed or moved, perhaps to a new folder, but not written to
//   end               the last line
//
// An ITEM is one of
//
//   complete                      the four kinds' folders, "User" in three of them, and "Default"s
//   PATH/                         a folder
//   PATH = BYTES                  a file
//   PATH @ TARGET                 a symbolic link
//   PATH ROM|RAM INDEX CHANGE...  a preset file of the kind in whose folder it lies, with a pattern
//                                 in all fields that are not given
//
// with these changes:
//
//   at OFFSET BYTES  overwrites; the stored name is at 12, a program's keyset at 161
//   zero             all of the payload but its length
//   cut SIZE         makes the file shorter
//   tail BYTES       makes it longer
//   fresh            any payload will do, but for the references
//   -> NAME...       the references, up to the end of the line; "Default" where not given
//
// A PATH is below the library's "Presets", or with "/" in front below the folder that holds "lib".
// Words with blanks are quoted; %HH is a byte.
#include <chrono>
#include <cstdlib>
#include <iomanip>
#include <map>
#include <sstream>
#include <sys/wait.h>

#include "tests/PresetFile.h"

namespace cairnset {
namespace {

namespace fs = std::filesystem;

constexpr const char* kBanner =
    "\nCairnset v1.71.00  Jul 11 2008 09:28:09\nCopyright (c) 2008-2026 the Cairnset authors\n"
    "Cairnset explicit path set to: [lib]\n";
const fs::file_time_type kLongAgo =
    std::chrono::floor<std::chrono::hours>(fs::file_time_type::clock::now()) -
    std::chrono::hours(9);

/// Runs a shell's command line, in which the program is "cairnset", in the folder. Answers its exit
/// status, or -1.
int shell(const TestFolder& folder, const std::string& command) {
  const std::string program = CAIRNSET_PROGRAM;
  const int status = std::system(("cd '" + folder.path("") + "' && PATH=\"" +
                                  program.substr(0, program.rfind('/')) + ":$PATH\" && " + command)
                                     .c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::vector<std::string> wordsOf(const std::string& line) {
  std::vector<std::string> words;
  std::istringstream in(line);
  for (std::string word; in >> std::quoted(word);) {
    for (std::size_t at = 0; (at = word.find('%', at)) != std::string::npos; ++at)
      word.replace(at, 3, 1, static_cast<char>(std::stoi(word.substr(at + 1, 2), nullptr, 16)));
    words.push_back(word);
  }
  return words;
}

struct Item {
  enum { kFolder, kLink, kFile } type = kFolder;
  std::string bytes{};  // a link's target
  std::size_t shown = std::string::npos;
  bool isWritten = false;

  std::string text(const std::string& name) const {
    if (type != kFile) return name + (type == kFolder ? " is a folder\n" : " -> " + bytes + "\n");
    return name + ": " + std::to_string(bytes.size()) + (isWritten ? " written " : " ") +
           testing::PrintToString(bytes.substr(0, shown)) + "\n";
  }
};

std::pair<std::string, Item> itemFrom(const std::vector<std::string>& words) {
  const std::string& path = words.at(0);
  if (words.size() == 1 && path.back() == '/') return {path.substr(0, path.size() - 1), {}};
  if (words.at(1) == "=") return {path, {Item::kFile, words.at(2)}};
  if (words.at(1) == "@") return {path, {Item::kLink, words.at(2)}};
  if (words[1] != "ROM" && words[1] != "RAM") throw std::runtime_error("not an item: " + path);
  const auto arrow = std::find(words.begin(), words.end(), "->");
  PresetFile preset{path, words[1] == "ROM", static_cast<unsigned>(std::stoul(words.at(2)))};
  if (arrow != words.end()) preset.references.assign(arrow + 1, words.end());
  Item item{Item::kFile, preset.bytes()};
  for (auto word = words.begin() + 3; word < arrow; ++word) {
    if (*word == "zero") {
      std::fill(item.bytes.begin() + 93, item.bytes.end(), '\0');
    } else if (*word == "fresh") {
      item.shown = 93 + 64 * formatOf(path).references;
    } else if (*word == "cut") {
      item.bytes.resize(std::stoul(*++word));
    } else if (*word == "tail") {
      item.bytes += *++word;
    } else if (*word == "at") {
      item.bytes.replace(std::stoul(word[1]), word[2].size(), word[2]);
      word += 2;
    } else {
      throw std::runtime_error("not a change: " + *word);
    }
  }
  return {path, item};
}

class TranscriptTest : public testing::TestWithParam<std::string>, protected TestFolder {
 protected:
  using Items = std::map<std::string, Item>;

  void make(const std::pair<std::string, Item>& place) const {
    const auto& [name, item] = place;
    const std::string below = name.front() == '/' ? name.substr(1) : "lib/Presets/" + name;
    if (item.type == Item::kFolder) fs::create_directories(path(below));
    if (item.type == Item::kLink) fs::create_symlink(item.bytes, path(below));
    if (item.type == Item::kFile) put(*this, below, item.bytes);
  }

  // All that is there; what was found is then as if written long ago.
  Items look() const {
    Items items;
    for (const auto& entry : fs::recursive_directory_iterator(path(""))) {
      const std::string below = entry.path().string().substr(path("").size());
      const bool isPreset = below.starts_with("/lib/Presets/");
      Item& item = items[isPreset ? below.substr(13) : below];
      if (entry.is_symlink()) {
        item = {Item::kLink, fs::read_symlink(entry).string()};
      } else if (entry.is_regular_file()) {
        item = {Item::kFile, read(below.substr(1))};
        item.isWritten = fs::last_write_time(entry) != kLongAgo;
        fs::last_write_time(entry, kLongAgo);
      }
    }
    return items;
  }

  struct Run {
    int status;
    std::string command, out, err;
    std::vector<std::string> changes;
  };

  static void change(Items& items, const std::string& line) {
    const std::vector<std::string> words = wordsOf(line.substr(1));
    auto before = items.extract(words.at(0));
    if (before.empty() != (line.front() == '+')) throw std::runtime_error("not so before: " + line);
    if (line.front() == '-' && words.size() == 1) return;
    auto [name, item] =
        line.front() == '-' ? std::pair(words.back(), before.mapped()) : itemFrom(words);
    item.isWritten = line.front() != '-' && item.type == Item::kFile;
    items.insert({name.substr(0, name.rfind('/')), {}});  // the folder it lies in
    EXPECT_TRUE(items.insert({name, item}).second) << line;
  }

  void check(const Run& run, Items& items) const {
    SCOPED_TRACE("$ " + run.command);
    const TestFolder output;
    EXPECT_EQ(
        shell(*this, "export HOME=$PWD XDG_CONFIG_HOME=$PWD/config && { " + run.command + "\n} >'" +
                         output.path("out") + "' 2>'" + output.path("err") + "' </dev/null"),
        run.status);
    EXPECT_EQ(output.read("out"), run.out);
    EXPECT_EQ(output.read("err"), run.err);
    for (const std::string& line : run.changes)
      change(items, line);
    Items actual = look();
    std::string expectedText, actualText;
    for (const auto& [name, item] : items)
      expectedText += item.text(name);
    for (auto& [name, item] : actual) {
      if (items.count(name) > 0) item.shown = items[name].shown;
      actualText += item.text(name);
      item.isWritten = false;
      item.shown = std::string::npos;
    }
    EXPECT_EQ(actualText, expectedText);
    items = actual;
  }
};

TEST_P(TranscriptTest, GoesAsWritten) {
  std::ifstream file(GetParam());
  std::vector<Run> runs;
  std::string line;
  while (std::getline(file, line) && line != "end") {
    if (line.empty() || line.starts_with("//")) continue;
    const char sign = line.front();
    const std::string text = line.size() > 2 ? line.substr(2) : "";
    if (sign == '*' || sign == '$') {
      const std::size_t end = text.find(' ');
      const char* start = sign == '*' ? "cairnset -e lib" : "";
      Run run{std::stoi(text), start + text.substr(std::min(end, text.size())), "", "", {}};
      if (sign == '*') run.out = kBanner;
      runs.push_back(run);
    } else if (runs.empty() == (sign != ':')) {
      throw std::runtime_error("not the place for: " + line);
    } else if (text == "complete") {
      for (const std::string kind : {"Velocity Maps/", "Effects/", "Programs/", "Sessions/"}) {
        make(itemFrom({kind + "Default", "ROM", "0"}));
        if (kind != "Sessions/") make({kind + "User", {}});
      }
    } else if (sign == ':') {
      make(itemFrom(wordsOf(text)));
    } else if (sign == '>' || sign == '!') {
      (sign == '>' ? runs.back().out : runs.back().err) += text + '\n';
    } else if (sign == '+' || sign == '~' || sign == '-') {
      runs.back().changes.push_back(line);
    } else {
      throw std::runtime_error("not understood: " + line);
    }
  }
  if (line != "end" || runs.empty()) throw std::runtime_error("empty, or without its end");
  look();
  Items items = look();
  for (const Run& run : runs)
    check(run, items);
}

std::vector<std::string> transcripts() {
  std::vector<std::string> paths;
  for (const auto& entry : fs::directory_iterator(CAIRNSET_TRANSCRIPTS))
    paths.push_back(entry.path().string());
  if (paths.empty()) throw std::runtime_error("no transcripts");
  std::sort(paths.begin(), paths.end());
  return paths;
}

INSTANTIATE_TEST_SUITE_P(Files, TranscriptTest, testing::ValuesIn(transcripts()),
                         [](const auto& file) { return fs::path(file.param).stem().string(); });

}  // namespace
}  // namespace cairnset
