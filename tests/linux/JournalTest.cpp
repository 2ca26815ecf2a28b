// What the journal is told, by a stand-in for it.

#include "platform/linux/Journal.hpp"

#include "tests/support/TemporaryFolder.hpp"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <string>

namespace platform::linux {
namespace {

class JournalTest : public testing::Test {
protected:
    JournalTest() {
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        EXPECT_EQ(bind(journal, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }
    void TearDown() override { close(journal); }

    void write(std::string_view message) const {
        writeToJournal(Logger{"Timer", "Cycle"}, Logger::Level::Error, message, path.c_str());
    }
    std::string received() const {
        std::array<char, 1000> entry{};
        const ssize_t size = recv(journal, entry.data(), entry.size(), MSG_DONTWAIT);
        return {entry.data(), static_cast<std::size_t>(size > 0 ? size : 0)};
    }

    const TemporaryFolder folder;
    const std::string path = (folder.path / "journal").string();
    const int journal = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
};

TEST_F(JournalTest, HearsWhoComplainsOfWhat) {
    write("What a day.");
    EXPECT_EQ(received(), "MESSAGE=What a day.\nPRIORITY=3\nSYSLOG_IDENTIFIER=marvelode-timer\nSUBSYSTEM=Timer\n"
                          "CATEGORY=Cycle\n");
}

TEST_F(JournalTest, TellsALineEndFromTheEndOfAMessage) {
    write("a\nb");
    EXPECT_EQ(received().substr(0, 21), std::string("MESSAGE\n\3\0\0\0\0\0\0\0a\nb\nP", 21));
}

TEST_F(JournalTest, IsNotWaitedForWhenItTakesNothing) {
    const pid_t child = fork();
    if (child == 0) {
        constexpr unsigned patience = 5;
        constexpr int moreThanFit = 10'000;
        alarm(patience);
        for (int count = 0; count < moreThanFit; ++count) {
            write("again");
        }
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_NE(received(), "");
}

TEST_F(JournalTest, NeedNotBeThere) {
    writeToJournal(Logger{"Timer", "Cycle"}, Logger::Level::Error, "lost", (path + "-elsewhere").c_str());
    EXPECT_EQ(received(), "");
}

} // namespace
} // namespace platform::linux
