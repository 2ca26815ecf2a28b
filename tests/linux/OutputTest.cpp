// Nothing that the program prints keeps it waiting.

#include "platform/linux/Output.hpp"

#include "platform/linux/ErrorLog.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

namespace platform::linux {
namespace {

/// Two ends of something to write into; what is written at one is read at the other.
struct Ends {
    int reader = -1;
    int writer = -1;
    ~Ends() {
        close(reader);
        close(writer);
    }
};

/// Whether `work` comes to an end within a few seconds, in a process of its own.
bool ends(const std::function<void()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        constexpr unsigned patience = 5;
        alarm(patience);
        work();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status);
}

void fill(int descriptor) {
    const int flags = fcntl(descriptor, F_GETFL);
    fcntl(descriptor, F_SETFL, flags | O_NONBLOCK);
    while (write(descriptor, "x", 1) == 1) {
    }
    fcntl(descriptor, F_SETFL, flags);
}

std::string readFrom(int descriptor) {
    std::array<char, 100> text{};
    const ssize_t size = read(descriptor, text.data(), text.size());
    return {text.data(), static_cast<std::size_t>(size > 0 ? size : 0)};
}

void openTerminal(Ends& terminal) {
    terminal.reader = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    grantpt(terminal.reader);
    unlockpt(terminal.reader);
    terminal.writer = open(ptsname(terminal.reader), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(terminal.writer, 0);
}

TEST(Output, GoesToATerminal) {
    Ends terminal;
    openTerminal(terminal);
    writeAtOnce(terminal.writer, "words");
    EXPECT_EQ(readFrom(terminal.reader), "words");
}

TEST(Output, IsNotWaitedForAtATerminalThatItsUserHasStopped) {
    Ends terminal;
    openTerminal(terminal);
    tcflow(terminal.writer, TCOOFF);
    EXPECT_TRUE(ends([&] { writeAtOnce(terminal.writer, "words"); }));
    EXPECT_TRUE(ends([&] {
        dup2(terminal.writer, STDERR_FILENO);
        StandardErrorLog{}.add("words");
    }));
}

TEST(Output, IsNotWaitedForAtAPipeThatNobodyReads) {
    std::array<int, 2> both{};
    ASSERT_EQ(pipe2(both.data(), O_CLOEXEC), 0);
    Ends pipe{both[0], both[1]};
    writeAtOnce(pipe.writer, "words");
    EXPECT_EQ(readFrom(pipe.reader), "words");
    fill(pipe.writer);
    EXPECT_TRUE(ends([&] { writeAtOnce(pipe.writer, "words"); }));
}

TEST(Output, IsNotWaitedForAtASocketThatNobodyReads) {
    std::array<int, 2> both{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, both.data()), 0);
    Ends socket{both[0], both[1]};
    writeAtOnce(socket.writer, "words");
    EXPECT_EQ(readFrom(socket.reader), "words");
    fill(socket.writer);
    EXPECT_TRUE(ends([&] { writeAtOnce(socket.writer, "words"); }));
}

TEST(Output, IsAddedToAFileBehindWhatOthersWrote) {
    const TemporaryFolder folder;
    const auto path = folder.write("log", "");
    Ends file{-1, open(path.c_str(), O_WRONLY | O_CLOEXEC)};
    writeAtOnce(file.writer, "first ");
    EXPECT_TRUE(ends([&] { writeAtOnce(file.writer, "second "); }));
    writeAtOnce(file.writer, "third");
    std::ifstream stream{path};
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>{stream}, {}), "first second third");
}

} // namespace
} // namespace platform::linux
