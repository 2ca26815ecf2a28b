#pragma once

// A folder for the files of one test. It is removed with all that is in it when the test ends, even if that is
// killed.

#include <glib.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = std::filesystem::temp_directory_path() / "marvelode-test-XXXXXX";
        if (!mkdtemp(name.data())) {
            throw std::filesystem::filesystem_error{"no temporary folder",
                                                    std::error_code{errno, std::generic_category()}};
        }
        path = name;
        startCleaner(name);
    }

    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
        close(_lifeline);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Writes a file and returns its path.
    std::filesystem::path write(const std::string& name, std::string_view contents) const {
        std::filesystem::remove(path / name); // a new file need not reach the disk, an overwritten one does
        std::ofstream file{path / name, std::ios::binary};
        file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
        return path / name;
    }

    std::filesystem::path path;

private:
    /// Starts a process, no child of this one, that removes the folder once this process has ended.
    void startCleaner(std::string& name) {
        std::string shell = "/bin/sh";
        std::string option = "-c";
        std::string commands = R"(read -r line; rm -rf -- "$0")";
        std::array<char*, 5> arguments{shell.data(), option.data(), commands.data(), name.data(), nullptr};
        const auto flags = static_cast<GSpawnFlags>(G_SPAWN_CLOEXEC_PIPES | G_SPAWN_STDOUT_TO_DEV_NULL |
                                                    G_SPAWN_STDERR_TO_DEV_NULL);
        const auto standAlone = [](gpointer) { setsid(); };
        g_spawn_async_with_pipes(nullptr, arguments.data(), nullptr, flags, standAlone, nullptr, nullptr,
                                 &_lifeline, nullptr, nullptr, nullptr);
    }

    int _lifeline = -1;
};
