#include "platform/linux/RegularFile.hpp"

#include "platform/linux/glib/Handles.hpp"

#include <fcntl.h>
#include <glib.h>
#include <glib/gstdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace platform::linux {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t randomLetters = 6; // or digits
constexpr mode_t ownerOnlyFile = 0600;
constexpr mode_t ownerOnlyFolder = 0700;

std::string problemWith(const fs::path& path, int error) {
    return path.string() + ": " + std::generic_category().message(error);
}

/// How the name of a file begins that is to take the place of `target`: a name that nobody gives to a file.
std::string unfinished(const fs::path& target) {
    return ".unfinished-by-marvelode-timer-" + target.filename().string() + "-";
}

std::string notRegular(const fs::path& path) { return path.string() + " is no regular file"; }

class Descriptor {
public:
    explicit Descriptor(int number)
        : number{number} {}
    ~Descriptor() {
        if (number >= 0) {
            close(number);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    const int number;
};

/// Reads up to one byte more than the largest file has; returns an error number or 0.
int readAll(int file, std::string& bytes) {
    std::array<char, 4096> chunk; // NOLINT(*-member-init): written before it is read
    while (bytes.size() <= largestFile) {
        const ssize_t count = read(file, chunk.data(), chunk.size());
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        if (count == 0) {
            break;
        }
        bytes.append(chunk.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return 0;
}

int writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(file, bytes.data(), bytes.size());
        if (count == 0 || (count < 0 && errno != EINTR)) {
            return count == 0 ? EIO : errno;
        }
        bytes.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return fsync(file) == 0 ? 0 : errno;
}

/// Writes a new file beside `target` and puts it there; returns an error number or 0.
int replace(const fs::path& target, std::string_view bytes, mode_t permissions) {
    std::string name = (target.parent_path() / (unfinished(target) + std::string(randomLetters, 'X'))).string();
    int error = 0;
    {
        const Descriptor file{g_mkstemp_full(name.data(), O_WRONLY | O_CLOEXEC, ownerOnlyFile)};
        if (file.number < 0) {
            return errno;
        }
        fchmod(file.number, permissions); // a file system without permissions need not have them
        error = writeAll(file.number, bytes);
    }
    if (error == 0 && rename(name.c_str(), target.c_str()) != 0) {
        error = errno;
    }
    if (error != 0) {
        unlink(name.c_str());
    }
    return error;
}

} // namespace

FileContent readRegularFile(const fs::path& path) {
    struct stat status{};
    if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        return {{}, false, notRegular(path)}; // opening a device may have an effect
    }
    const Descriptor file{open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)};
    if (file.number < 0) {
        const int error = errno;
        return error == ENOENT ? FileContent{{}, true, {}} : FileContent{{}, false, problemWith(path, error)};
    }
    FileContent content;
    if (const int error = readAll(file.number, content.bytes); error != 0) {
        content.problem = problemWith(path, error);
    } else if (content.bytes.size() > largestFile) {
        content.problem = path.string() + " is larger than a megabyte";
    }
    return content;
}

std::string replaceRegularFile(const fs::path& path, std::string_view bytes) {
    const fs::path target = linkTarget(path);
    struct stat status{};
    const bool isThere = stat(target.c_str(), &status) == 0;
    if (!isThere && errno != ENOENT) {
        return problemWith(target, errno);
    }
    if (isThere && !S_ISREG(status.st_mode)) {
        return notRegular(target);
    }
    if (isThere && (status.st_mode & S_IWUSR) == 0) {
        return target.string() + " is read-only";
    }
    g_mkdir_with_parents(target.parent_path().c_str(), ownerOnlyFolder); // a failure shows at once below
    constexpr mode_t permissions = 0777;
    const int error = replace(target, bytes, isThere ? status.st_mode & permissions : ownerOnlyFile);
    return error == 0 ? std::string{} : problemWith(target, error);
}

void removeLeftovers(const fs::path& path) {
    const fs::path target = linkTarget(path);
    const std::string start = unfinished(target);
    const FolderHandle folder{g_dir_open(target.parent_path().c_str(), 0, nullptr)};
    while (const char* name = folder ? g_dir_read_name(folder.get()) : nullptr) {
        const std::string_view text{name};
        if (!text.starts_with(start) || text.size() != start.size() + randomLetters) {
            continue;
        }
        if (const fs::path file = target.parent_path() / name; g_file_test(file.c_str(), G_FILE_TEST_IS_REGULAR)) {
            g_unlink(file.c_str());
        }
    }
}

fs::path linkTarget(fs::path path) {
    constexpr int mostLinks = 40;
    for (int links = 0; links < mostLinks; ++links) {
        const TextHandle target{g_file_read_link(path.c_str(), nullptr)};
        if (!target) {
            return path;
        }
        path = path.parent_path() / target.get();
    }
    return path;
}

} // namespace platform::linux
