#pragma once

// One callable made of several, for visiting a variant: each of its kinds is handled by the callable that takes it.
// It holds them by value and lives, as a rule, as long as the visit.

#include <concepts>

namespace platform {

/// One of several kinds that are treated alike: naming them all, instead of taking `auto`, makes the compiler ask
/// about a new kind.
template <typename Kind, typename... Kinds>
concept OneOf = (std::same_as<Kind, Kinds> || ...);

template <typename... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

} // namespace platform
