// Calling again what failed for a moment. Internal to the host layer.
#pragma once

#include <cerrno>
#include <type_traits>

namespace cairnset {

/// Whether to repeat a call that failed; one object for a call and its repetitions. An interrupted
/// call, which some network and user-space volumes report although no signal was caught, is always
/// repeated. So are, twice, errors that can pass: a network that stalls, or another program that
/// uses up memory or descriptors for a moment. A preset that is passed over for such an error would
/// look missing.
class Retries {
 public:
  bool wants(int error);
  bool isRepeated() const { return _isRepeated; }

 private:
  int _passing = 0;
  bool _isRepeated = false;
};

/// The result of a system call, which is repeated as Retries has it. A call may succeed and still
/// return an error: if a repeated one fails with `meansDone`, it was done before, and 0 is
/// returned.
///
/// Not for close, after which nobody knows what the descriptor is, nor for a flush, which can
/// succeed after a failed one although the bytes are lost.
template <typename Call>
auto retried(Call call, int meansDone = 0) {
  using Result = std::invoke_result_t<Call>;
  for (Retries retries;;) {
    const Result result = call();
    if constexpr (std::is_pointer_v<Result>) {
      if (result != nullptr || !retries.wants(errno)) return result;
    } else {
      if (result >= 0) return result;
      if (retries.isRepeated() && errno == meansDone) return Result{0};
      if (!retries.wants(errno)) return result;
    }
  }
}

}  // namespace cairnset
