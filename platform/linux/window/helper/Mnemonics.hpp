#pragma once

// The underlined letters that, together with Alt, lead to a window's controls. Each letter is given out once per
// window, preferring the beginnings of words.

#include <set>
#include <string>

namespace platform::linux {

class Mnemonics {
public:
    /// `title` with an underscore before its letter, if one was left, and with every underscore of its own doubled.
    std::string mark(const std::string& title);

private:
    std::set<char> _taken;
};

} // namespace platform::linux
