#pragma once

// One callable made of several, for visiting a variant: each of its kinds is handled by the callable that takes it.
// It holds them by value and lives, as a rule, as long as the visit.

namespace platform {

template <typename... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

} // namespace platform
