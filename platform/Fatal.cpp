#include "platform/Fatal.hpp"

#include <cstdlib>

namespace platform {

void fatal() noexcept { std::abort(); }

} // namespace platform
