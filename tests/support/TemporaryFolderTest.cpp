// Tests leave nothing behind, however they end.

#include "tests/support/TemporaryFolder.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>

namespace {

using namespace std::chrono_literals;

bool isGoneSoon(const std::filesystem::path& path) {
    for (int tries = 0; tries < 500 && std::filesystem::exists(path); ++tries) {
        std::this_thread::sleep_for(10ms);
    }
    return !std::filesystem::exists(path);
}

TEST(TemporaryFolderTest, GoesWithItsFilesAtTheEnd) {
    std::optional<TemporaryFolder> folder{std::in_place};
    const std::filesystem::path file = folder->write("file", "contents");
    EXPECT_TRUE(std::filesystem::exists(file));
    const std::filesystem::path path = folder->path;
    folder.reset();
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(TemporaryFolderTest, GoesWhenTheTestIsKilled) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const pid_t test = fork();
    ASSERT_GE(test, 0);
    if (test == 0) {
        const TemporaryFolder folder;
        folder.write("file", "contents");
        const std::string path = folder.path;
        if (write(pipe[1], path.data(), path.size()) > 0) {
            raise(SIGKILL);
        }
        _exit(1);
    }
    close(pipe[1]);
    std::string path(1024, '\0');
    const ssize_t size = read(pipe[0], path.data(), path.size());
    close(pipe[0]);
    ASSERT_GT(size, 0);
    path.resize(static_cast<std::size_t>(size));
    int status = 0;
    ASSERT_EQ(waitpid(test, &status, 0), test);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_TRUE(isGoneSoon(path)) << path;
}

} // namespace
