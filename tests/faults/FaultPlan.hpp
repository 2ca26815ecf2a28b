#pragma once

// What is to go wrong in a program that is tested, and how far its clocks are ahead. A file that the test and the
// library preloaded into the program both map, so that each sees at once what the other writes.

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace faults {

/// Kinds of calls, each counted for itself, over all threads of the program.
enum class Kind : std::size_t {
    Open,       ///< open a file
    Read,       ///< from a file
    Write,      ///< to a file
    Close,      ///< a file; it is closed whatever the answer
    Sync,       ///< a file with the disk
    Rename,     ///< a file
    Status,     ///< ask for a file's size and times
    Descriptor, ///< make a socket, a pipe or the like
    Send,       ///< to a socket
    Receive,    ///< from a socket
    Poll,       ///< wait
    Spawn,      ///< start a program
    Thread,     ///< start a thread
    Map,        ///< get at least two pages of memory, which is how large blocks are allocated
    Memory,     ///< get memory, little or much
};
inline constexpr std::size_t kinds = 15;

/// In place of an error number: the call does the least that it can, a single byte.
inline constexpr int shortOfAll = 0;

struct FaultPlan {
    std::atomic<std::int64_t> secondsPassed = 0; ///< That all clocks are ahead.
    std::atomic<std::int64_t> secondsAsleep = 0; ///< That those are ahead in addition which count sleep.
    std::atomic<std::int64_t> secondsSet = 0;    ///< The same for the wall clock alone.
    std::atomic<Kind> kind = Kind::Open;         ///< Of the call that is to fail.
    std::atomic<int> number = 0;                 ///< Which of its kind that is, from 1; 0 for none.
    std::atomic<int> error = 0;                  ///< Its error number, or `shortOfAll`.
    std::array<std::atomic<int>, kinds> calls{}; ///< How many there were.
};

/// The environment variable with the path of the file.
inline constexpr const char* planVariable = "MARVELODE_FAULT_PLAN";

} // namespace faults
