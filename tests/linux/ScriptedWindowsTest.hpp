#pragma once

// The program as a process of its own, with a script in place of the one that shows windows.

#include "platform/linux/window/Protocol.hpp"
#include "tests/linux/MainTest.hpp"

#include <filesystem>
#include <string>

namespace platform::linux {

/// The program, installed beside a script that takes the place of the one that shows windows.
class ScriptedWindowsTest : public MainTest {
protected:
    ScriptedWindowsTest() {
        std::filesystem::create_directories(folder.path / "bin");
        std::filesystem::create_directories(folder.path / "libexec/marvelode-timer");
        std::filesystem::copy_file(PROGRAM, program);
        std::filesystem::create_symlink(std::filesystem::path{PROGRAM}.parent_path().parent_path() / "share",
                                        folder.path / "share");
    }

    /// The script first notes its display.
    void installWindowProgram(const std::string& commands) {
        const std::filesystem::path script =
            folder.write("libexec/marvelode-timer/marvelode-timer-window",
                         "#!/bin/sh\necho $DISPLAY >'" + display.string() + "'\n" + commands);
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    }

    const std::string shown = encode(Event{Event::Kind::Shown, 1, 0, {}});
    const std::filesystem::path program = folder.path / "bin/marvelode-timer";
    const std::filesystem::path display = folder.path / "display";
};

} // namespace platform::linux
