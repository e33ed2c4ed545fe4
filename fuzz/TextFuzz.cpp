// Path helpers, tokenizer and file-name rules. Every buffer has exactly the room that the headers
// ask for.
#include "fuzz/Fuzz.h"
#include "host/FileNameRules.h"
#include "host/PascalStrings.h"
#include "host/PathStrings.h"
#include "host/SystemVersion.h"
#include "host/Tokenizer.h"
#include "tool/FilenameRepair.h"

namespace cairnset {
namespace {

void checkPath(const std::string& path) {
  const auto whole = exactCopy(path), file = exactCopy(path), folder = exactCopy(path);
  extractFilename(whole.get(), file.get());
  extractPath(whole.get(), folder.get());
  check(path.ends_with(file.get()) && path.starts_with(folder.get()), "parts of a path", path);
  (void)findFileFromPath(file.get());
  const auto uniform = exactCopy(path), native = exactCopy(path, 9);
  makePathUniform(uniform.get());
  convertToNativePathFormat(native.get());
  check(std::strchr(native.get(), isRunningOSX() ? ':' : '/') == nullptr, "a native path", path);
}

void checkTokens(const std::string& text) {
  const auto copy = std::make_unique<char[]>(text.size());  // ends where the text does
  std::copy(text.begin(), text.end(), copy.get());
  char *pos = copy.get(), *const end = pos + text.size();
  while (pos < end) {
    char* line = pos;
    skipLine(&line, end);
    const long length = getToken(&pos, end);
    check(length >= 0 && length <= end - pos && line <= end, "they lie within", text);
    pos += std::max(length, 1l);
  }
}

void checkRules(const std::string& name) {
  const auto corrected = exactCopy(name), pascal = exactCopy(name);
  RemoveAllIllegalFilenameCharsInPlace(corrected.get());
  std::string want = name;
  for (char& c : want)
    if ((c >= 1 && c < ' ') || std::string("\"*/<>?\\|").find(c) != want.npos) c = '_';
  want.resize(want.find_last_not_of(" .") + 1);
  check(want == corrected.get(), "corrected", name);
  if (name.size() > 255) return;
  const char* reported = isIllegalFilename(name.c_str());
  check(name == want ? reported == nullptr : want == reported, "illegal is what would change",
        name);
  CtoPstr(pascal.get());  // the NUL's place makes room for the length
  RemoveAllIllegalFilenameCharsInPlace(reinterpret_cast<unsigned char*>(pascal.get()));
  PtoCstr(pascal.get());
  check(want == pascal.get(), "Pascal strings have the same rules", name);
}

}  // namespace
}  // namespace cairnset

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace cairnset;
  FuzzedDataProvider input(data, size);
  gestaltAnswers().systemVersion = input.ConsumeBool() ? 0x0FFF : 0x1040;
  const std::string text = takeText(input, 400);
  checkPath(text);
  checkRules(text);
  checkTokens(input.ConsumeRemainingBytesAsString());
  return 0;
}
