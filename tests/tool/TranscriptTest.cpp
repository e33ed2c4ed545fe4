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
//   = PATH to PATH    a file that has got a second name
//   end               the last line
//
// Of items and paths there can be several in a line, with " ; " between them.
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
//   -> NAME...       the references, up to the end of the item; "Default" where not given
//
// A PATH is below the library's "Presets", or with "/" in front below the folder that holds "lib".
// Words with blanks are quoted; %HH is a byte.
#include <chrono>
#include <iomanip>
#include <sys/wait.h>

#include "tests/PresetFile.h"

namespace cairnset {
namespace {

using Words = std::vector<std::string>;

constexpr const char* kBanner =
    "\nCairnset v1.71.00  Jul 11 2008 09:28:09\nCopyright (c) 2008-2026 the Cairnset authors\n"
    "Cairnset explicit path set to: [lib]\n";
const fs::file_time_type kLongAgo =
    std::chrono::floor<std::chrono::hours>(fs::file_time_type::clock::now()) -
    std::chrono::hours(9);

// The words of each item in a line.
std::vector<Words> itemsIn(const std::string& line) {
  std::vector<Words> items(1);
  std::istringstream in(line);
  for (std::string word; in >> std::quoted(word);) {
    for (std::size_t at = 0; (at = word.find('%', at)) != std::string::npos; ++at)
      word.replace(at, 3, 1, static_cast<char>(std::stoi(word.substr(at + 1, 2), nullptr, 16)));
    word == ";" ? void(items.emplace_back()) : items.back().push_back(word);
  }
  return items;
}

struct Item {
  std::string content = "/";  // as a TestFolder has it
  std::size_t shown = std::string::npos;
  bool isWritten = false;

  std::string text(const std::string& name) const {
    return name + ": " + std::to_string(content.size()) + (isWritten ? " written " : " ") +
           testing::PrintToString(content.substr(0, shown)) + "\n";
  }
};

using Place = std::pair<std::string, Item>;
using Items = std::map<std::string, Item>;

Place itemFrom(const Words& words) {
  const std::string& path = words.at(0);
  if (words.size() == 1 && path.back() == '/') return {path.substr(0, path.size() - 1), {}};
  if (words.at(1) == "=") return {path, {"=" + words.at(2)}};
  if (words.at(1) == "@") return {path, {"->" + words.at(2)}};
  if (words[1] != "ROM" && words[1] != "RAM") throw std::runtime_error("not an item: " + path);
  const auto arrow = std::find(words.begin(), words.end(), "->");
  PresetFile preset{path, words[1] == "ROM", static_cast<unsigned>(std::stoul(words.at(2)))};
  if (arrow != words.end()) preset.references.assign(arrow + 1, words.end());
  Item item{preset.bytes()};
  for (auto word = words.begin() + 3; word < arrow; ++word) {
    if (*word == "zero") {
      std::fill(item.content.begin() + 93, item.content.end(), '\0');
    } else if (*word == "fresh") {
      item.shown = 94 + 64 * formatOf(path).references;
    } else if (*word == "cut") {
      item.content.resize(std::stoul(*++word));
    } else if (*word == "tail") {
      item.content += *++word;
    } else if (*word == "at") {
      item.content.replace(std::stoul(word[1]), word[2].size(), word[2]);
      word += 2;
    } else {
      throw std::runtime_error("not a change: " + *word);
    }
  }
  item.content.insert(0, 1, '=');
  return {path, item};
}

struct Command {
  int status;
  std::string command, out, err;
  std::vector<std::pair<char, Words>> changes{};
};

class TranscriptTest : public testing::TestWithParam<std::string>, protected TestFolder {
 protected:
  void make(const Place& place) const {
    const auto& [name, item] = place;
    const std::string below = name.front() == '/' ? name.substr(1) : "lib/Presets/" + name;
    if (item.content.front() == '/') makeFolder(below);
    if (item.content.front() == '-') fs::create_symlink(item.content.substr(2), path(below));
    if (item.content.front() == '=') write(below, item.content.substr(1));
  }

  // All that is there; what was found is then as if written long ago.
  Items found() const {
    Items all;
    for (const auto& [name, content] : items()) {
      const bool isFile = content.front() == '=';
      all[name.starts_with("lib/Presets/") ? name.substr(12) : "/" + name] = {
          content, std::string::npos, isFile && fs::last_write_time(path(name)) != kLongAgo};
      if (isFile) fs::last_write_time(path(name), kLongAgo);
    }
    return all;
  }

  static void change(Items& items, char sign, const Words& words) {
    if (sign == '=') return void(items[words.at(2)] = items.at(words[0]));
    auto before = items.extract(words.at(0));
    if (before.empty() != (sign == '+')) throw std::runtime_error("not so before: " + words[0]);
    if (sign == '-' && words.size() == 1) return;
    auto [name, item] = sign == '-' ? std::pair(words.back(), before.mapped()) : itemFrom(words);
    item.isWritten = sign != '-' && item.content.front() == '=';
    items.insert({name.substr(0, name.rfind('/')), {}});  // the folder it lies in
    EXPECT_TRUE(items.insert({name, item}).second) << name;
  }

  // Runs the command, in which the program is "cairnset", in the folder.
  void check(const Command& run, Items& items) const {
    SCOPED_TRACE("$ " + run.command);
    const TestFolder output;
    const std::string program = CAIRNSET_PROGRAM;
    const int status = std::system(
        ("cd '" + path("") + "' && export HOME=$PWD XDG_CONFIG_HOME=$PWD/config PATH=\"" +
         program.substr(0, program.rfind('/')) + ":$PATH\" && { " + run.command + "\n} >'" +
         output.path("out") + "' 2>'" + output.path("err") + "' </dev/null")
            .c_str());
    EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, run.status);
    EXPECT_EQ(output.read("out"), run.out);
    EXPECT_EQ(output.read("err"), run.err);
    for (const auto& [sign, words] : run.changes)
      change(items, sign, words);
    Items actual = found();
    std::string expectedText, actualText;
    for (const auto& [name, item] : items)
      expectedText += item.text(name);
    for (auto& [name, item] : actual) {
      if (items.count(name) > 0) item.shown = items[name].shown;
      actualText += item.text(name);
      item = {item.content};
    }
    EXPECT_EQ(actualText, expectedText);
    items = actual;
  }
};

TEST_P(TranscriptTest, GoesAsWritten) {
  std::ifstream file(GetParam());
  std::vector<Command> runs;
  std::string line;
  while (std::getline(file, line) && line != "end") {
    if (line.empty() || line.starts_with("//")) continue;
    const char sign = line.front();
    const std::string text = line.size() > 2 ? line.substr(2) : "";
    if (sign == '*' || sign == '$') {
      const std::string rest = text.substr(std::min(text.find(' '), text.size()));
      runs.push_back({std::stoi(text), (sign == '*' ? "cairnset -e lib" : "") + rest,
                      sign == '*' ? kBanner : "", ""});
    } else if (runs.empty() == (sign != ':')) {
      throw std::runtime_error("not the place for: " + line);
    } else if (text == "complete") {
      for (const std::string kind : {"Velocity Maps/", "Effects/", "Programs/", "Sessions/"}) {
        make(itemFrom({kind + "Default", "ROM", "0"}));
        if (kind != "Sessions/") make({kind + "User", {}});
      }
    } else if (sign == '>' || sign == '!') {
      (sign == '>' ? runs.back().out : runs.back().err) += text + '\n';
    } else if (std::strchr(":+~-=", sign) != nullptr) {
      for (const Words& words : itemsIn(text))
        sign == ':' ? make(itemFrom(words)) : void(runs.back().changes.emplace_back(sign, words));
    } else {
      throw std::runtime_error("not understood: " + line);
    }
  }
  if (line != "end" || runs.empty()) throw std::runtime_error("empty, or without its end");
  found();
  Items items = found();
  for (const Command& run : runs)
    check(run, items);
}

std::set<std::string> transcripts() {
  std::set<std::string> paths;
  for (const auto& entry : fs::directory_iterator(CAIRNSET_TRANSCRIPTS))
    paths.insert(entry.path().string());
  return paths.empty() ? throw std::runtime_error("no transcripts") : paths;
}

INSTANTIATE_TEST_SUITE_P(Files, TranscriptTest, testing::ValuesIn(transcripts()),
                         [](const auto& file) { return fs::path(file.param).stem().string(); });

}  // namespace
}  // namespace cairnset
