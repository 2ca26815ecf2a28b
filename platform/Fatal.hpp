#pragma once

// The one way in which the program stops on a condition that cannot occur in a correct installation. It leaves
// no message: such a condition is a defect of the program or of its installation, never something to tell a user.

namespace platform {

/// Ends the process at once by SIGABRT; runs no destructors and flushes nothing.
[[noreturn]] void fatal() noexcept;

} // namespace platform
