#pragma once

// Whether the desktop starts the program: an entry in the user's autostart folder, as most desktops and some
// session managers read it. Desktops switch such an entry off by a mark in it.

#include <filesystem>
#include <string>

namespace platform::linux {

class Autostart {
public:
    /// `original` is the entry that was installed with the program, `entry` the one that desktops read.
    Autostart(std::filesystem::path original, std::filesystem::path entry);

    /// The one of the user who runs this process. `resources` is the folder of the program's own resources.
    static Autostart ofThisUser(const std::filesystem::path& resources);

    /// Whether there is an entry without such a mark, and the program that it names is there.
    bool isOn() const;

    /// Makes the entry. If there is one, removes the mark from it, has it start the installed program in place of
    /// one that is gone, and keeps the rest. Returns the problem if that fails, or else an empty text; what cannot
    /// be understood as an entry is a problem, and left alone.
    std::string turnOn() const;

    /// Removes the entry, or marks it if its user has made it his own; the same.
    std::string turnOff() const;

private:
    std::filesystem::path _original;
    std::filesystem::path _entry;
};

} // namespace platform::linux
