#include "host/terminal/Process.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <getopt.h>
#include <ostream>
#include <signal.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace cairnset {

namespace {

// How many HeldSignals live: only the outermost unblocks the signals.
int holders = 0;
sigset_t maskBefore;

}  // namespace

void prepareProcess() {
  for (int descriptor = 0; descriptor <= 2; ++descriptor) {
    // open returns the lowest free number: this one, since all below it are taken.
    if (::fcntl(descriptor, F_GETFD) == -1) (void)::open("/dev/null", O_RDONLY);
  }
  ::signal(SIGPIPE, SIG_DFL);
  ::signal(SIGXFSZ, SIG_IGN);
}

void writeWithoutMemory(std::string_view text) {
  // Nothing is left to do if this fails.
  (void)!::write(STDERR_FILENO, text.data(), text.size());
}

// NOLINTNEXTLINE(readability-function-cognitive-complexity): one case for each kind of argument
GivenOptions readOptions(int argc, char** argv, std::span<const OptionName> names) {
  using Fault = GivenOptions::Fault;
  constexpr int kFirstWord = 256;  // words are numbered from here, above all letters
  std::string letters = "+:";      // stop at what is no option; report missing arguments as ':'
  std::vector<struct ::option> words;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const OptionName& name = names[i];
    if (name.letter != '\0') (letters += name.letter) += name.takesArgument ? ":" : "";
    if (name.word != nullptr)
      words.push_back({name.word, name.takesArgument ? required_argument : no_argument, nullptr,
                       kFirstWord + static_cast<int>(i)});
  }
  words.push_back({});

#if defined(__GLIBC__)
  ::optind = 0;
#else
  ::optind = 1;
#endif
  ::opterr = 0;
  GivenOptions given;
  const auto stopAt = [&given](Fault fault, const char* argument, std::size_t index = 0) {
    given.fault = fault;
    given.faulty = argument;
    given.faultyIndex = index;
    return given;
  };
  for (int found;
       (found = ::getopt_long(argc, argv, letters.c_str(), words.data(), nullptr)) != -1;) {
    const bool isFault = found == '?' || found == ':';
    const int option = isFault ? ::optopt : found;
    const char* last = argv[::optind - 1];
    if (option == 0) return stopAt(Fault::kUnknownWord, last);
    if (option >= kFirstWord) {
      const auto index = static_cast<std::size_t>(option - kFirstWord);
      const bool isSeparate = !isFault && names[index].takesArgument && ::optarg == last;
      const char* const word = isSeparate ? argv[::optind - 2] : last;
      if (std::string_view(word + 2, std::strcspn(word + 2, "=")) != names[index].word)
        return stopAt(Fault::kUnknownWord, word);
      if (found == '?') return stopAt(Fault::kUnwantedArgument, word);
      if (found == ':') return stopAt(Fault::kMissingArgument, word, index);
      given.options.push_back({index, names[index].takesArgument ? ::optarg : nullptr, '\0'});
      continue;
    }
    const auto letter = static_cast<char>(option);
    const auto name = std::find_if(names.begin(), names.end(),
                                   [letter](const OptionName& n) { return n.letter == letter; });
    const auto index = static_cast<std::size_t>(name - names.begin());
    if (found == '?') {
      given.options.push_back({GivenOptions::kUnknown, nullptr, letter});
    } else if (found == ':') {
      return stopAt(Fault::kMissingArgument, last, index);
    } else {
      given.options.push_back({index, name->takesArgument ? ::optarg : nullptr, '\0'});
    }
  }
  return ::optind < argc ? stopAt(Fault::kNotAnOption, argv[::optind]) : given;
}

HeldSignals::HeldSignals(std::ostream* report) : _report(report) {
  if (holders++ > 0) return;
  sigset_t held;
  sigemptyset(&held);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP})
    sigaddset(&held, signal);
  ::sigprocmask(SIG_BLOCK, &held, &maskBefore);
}

HeldSignals::~HeldSignals() {
  if (_report != nullptr) _report->flush();
  if (--holders == 0) ::sigprocmask(SIG_SETMASK, &maskBefore, nullptr);
}

OutlivesReader::OutlivesReader(std::ostream& report)
    : _report(report), _before(::signal(SIGPIPE, SIG_IGN)) {}

OutlivesReader::~OutlivesReader() {
  _report.flush();
  ::signal(SIGPIPE, _before);
}

}  // namespace cairnset
