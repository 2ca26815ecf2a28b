#include "platform/linux/SessionEnvironment.hpp"

#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace platform::linux {
namespace {

constexpr std::array tokens{"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"};

template <typename Names>
bool contains(const Names& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool namesDisplay(const SessionEnvironment::Variables& session) {
    return std::any_of(session.begin(), session.end(), [](const auto& variable) {
        return (variable.first == "DISPLAY" || variable.first == "WAYLAND_DISPLAY") && !variable.second.empty();
    });
}

} // namespace

void SessionEnvironment::adopt(Variables session) {
    std::erase_if(session, [](const auto& variable) { return !contains(variables, variable.first); });
    if (!namesDisplay(session)) {
        return;
    }
    _missed = 0;
    if (session != _inUse.variables) {
        if (_inUse.wasReached) { // or else it is not worth going back to
            _other = std::move(_inUse);
        }
        _inUse = {std::move(session)};
        ++_display;
    }
}

void SessionEnvironment::displayWasFound(unsigned display) {
    _missed = _reminders = 0;
    _inUse.wasReached = _inUse.wasReached || display == _display;
}

void SessionEnvironment::displayWasMissing(unsigned display) {
    if (display == _display && _inUse.variables != _other.variables) {
        std::swap(_inUse, _other);
        ++_display;
    }
}

std::vector<std::string> SessionEnvironment::forHelpers() const {
    std::vector<std::string> environment;
    for (char** variable = environ; *variable; ++variable) {
        const std::string_view whole{*variable};
        const std::string_view name = whole.substr(0, whole.find('='));
        const bool isReplaced = !_inUse.variables.empty() && contains(variables, name);
        if (!isReplaced && !contains(tokens, name)) {
            environment.emplace_back(whole);
        }
    }
    for (const auto& [name, value] : _inUse.variables) {
        environment.push_back(name + "=" + value); // NOLINT(performance-inefficient-string-concatenation): rare
    }
    return environment;
}

} // namespace platform::linux
