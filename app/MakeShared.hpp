#pragma once

// Makes components that hand out closures which own them. A constructor cannot hand those out, since its object has
// no owner yet; so such a component is constructed first and finished afterwards.

#include <memory>
#include <utility>

namespace marvelode {

/// Held by `makeShared()` alone, so that no component can be constructed and left unfinished.
class ConstructionKey {
    ConstructionKey() = default;

    template <typename Component, typename... Arguments>
    friend std::shared_ptr<Component> makeShared(Arguments&&... arguments);
};

/// Constructs a component and calls its `finishConstruction`, in which `shared_from_this()` can be used.
template <typename Component, typename... Arguments>
std::shared_ptr<Component> makeShared(Arguments&&... arguments) {
    const ConstructionKey key;
    auto component = std::make_shared<Component>(key, std::forward<Arguments>(arguments)...);
    component->finishConstruction(key);
    return component;
}

} // namespace marvelode
