#pragma once

// A folder for the files of one test. It goes, with all that is in it, when the test ends.

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
        std::string name = std::filesystem::temp_directory_path() / "marvelode-sound-XXXXXX";
        if (!mkdtemp(name.data())) {
            throw std::filesystem::filesystem_error{"no temporary folder",
                                                    std::error_code{errno, std::generic_category()}};
        }
        path = name;
    }

    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Writes a file and gives its path.
    std::filesystem::path write(const std::string& name, std::string_view contents) const {
        std::filesystem::remove(path / name); // a new file need not reach the disk, an overwritten one does
        std::ofstream file{path / name, std::ios::binary};
        file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
        return path / name;
    }

    std::filesystem::path path;
};
