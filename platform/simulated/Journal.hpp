#pragma once

// What happened on the desktop, in its order: what the program stored, published, played, showed, printed and
// logged. The story can read all of it, or what is new of one kind.

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace platform::simulated {

class Journal {
public:
    enum class Kind { Stored, Published, Heard, Shown, Closed, Printed, Logged };

    /// Adds an entry. A store that repeats the entry before it is left out: in a first run, every read of a setting
    /// is one.
    void add(Kind kind, std::string text);

    /// The texts of that kind that were not yet asked for.
    std::vector<std::string> news(Kind kind);

    /// Everything since this was asked last, each text behind the name of its kind, such as "heard Bowl". It counts
    /// as asked for.
    std::vector<std::string> all();

private:
    struct Entry {
        Kind kind;
        std::string text;
        bool operator==(const Entry&) const = default;
    };

    std::vector<Entry> _entries;
    std::array<std::size_t, static_cast<std::size_t>(Kind::Logged) + 1>
        _asked{}; ///< For each kind, the number of entries that were looked through.
};

} // namespace platform::simulated
