#pragma once

// What the desktop hands out with a click so that the window which the click opens may come to the front with the
// keyboard. One object is handed on by reference: the parts that hear of clicks keep tokens in it, and the parts
// that open windows take them out.

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace platform::linux {

class ActivationToken {
public:
    /// Desktops hand out some dozen bytes; what is longer would fit neither environment nor window.
    static constexpr std::size_t longest = 1024;

    /// Keeps `token` in place of an earlier one; returns false and changes nothing if it has more than `longest`
    /// bytes.
    bool keep(std::string_view token) {
        const bool fits = token.size() <= longest;
        if (fits) {
            _token = token;
        }
        return fits;
    }

    /// Returns the token, which can be used once; empty if there is none.
    std::string take() { return std::exchange(_token, {}); }

private:
    std::string _token;
};

} // namespace platform::linux
