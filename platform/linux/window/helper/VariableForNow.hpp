#pragma once

#include <glib.h>

#include <optional>
#include <string>

namespace platform::linux {

/// Changes a variable of the environment until this object is destroyed. What is started from a window, such as a
/// browser, finds what the user had.
class VariableForNow {
public:
    /// Unsets the variable if `value` is null.
    VariableForNow(const char* name, const char* value)
        : _name{name} {
        if (const char* before = g_getenv(name)) {
            _before = before;
        }
        set(value);
    }
    ~VariableForNow() { set(_before ? _before->c_str() : nullptr); }
    VariableForNow(const VariableForNow&) = delete;
    VariableForNow& operator=(const VariableForNow&) = delete;

private:
    void set(const char* value) const {
        if (value) {
            g_setenv(_name, value, TRUE);
        } else {
            g_unsetenv(_name);
        }
    }

    const char* _name;
    std::optional<std::string> _before;
};

} // namespace platform::linux
