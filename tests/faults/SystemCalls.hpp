#pragma once

// What a running program asks of the system, call by call, as a debugger sees it.

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace faults {

/// The numbers of the next `count` calls that the first thread of `process` begins, without the `getpid` of the
/// library that is preloaded into it. It must be a child of this one.
std::vector<std::uint64_t> nextSystemCalls(pid_t process, std::size_t count);

} // namespace faults
