#include "host/terminal/Process.h"

#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <signal.h>
#include <unistd.h>

#include "host/terminal/ReportText.h"

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

int nextOption(int argc, char** argv, const char* options) {
  ::opterr = 0;
  const int letter = ::getopt(argc, argv, options);
  if (letter == '?') {
    const char option = static_cast<char>(::optopt);
    const char* known = std::strchr(options, option);
    writeGivenText(std::cerr, argv[0]);
    std::cerr << (known != nullptr && option != ':' ? ": option requires an argument -- '"
                                                    : ": invalid option -- '");
    writeGivenText(std::cerr, {&option, 1});
    std::cerr << "'\n";
  }
  return letter;
}

const char* optionArgument() {
  return ::optarg;
}

void restartOptions() {
#if defined(__GLIBC__)
  ::optind = 0;
#else
  ::optind = 1;
#endif
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
