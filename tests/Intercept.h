// Standing between the host and the system.
#pragma once

#include <functional>

#include "host/Host.h"

namespace cairnset {

/// Puts `wrapper` in the place of a system call of the host's table. It gets what was there before,
/// and then the arguments.
template <typename Result, typename... Args, typename Wrapper>
void intercept(std::function<Result(Args...)>& call, Wrapper wrapper) {
  call = [real = call, wrapper](Args... args) -> Result { return wrapper(real, args...); };
}

}  // namespace cairnset
