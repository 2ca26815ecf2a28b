#pragma once

// The program as a process of its own, on private buses and with settings of its own.

#include "tests/support/PrivateBuses.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace platform::linux {

class MainTest : public testing::Test {
protected:
    MainTest() {
        std::filesystem::create_directories(settings.parent_path());
        connectToSystem(); // which is said to be there from here on
    }
    void TearDown() override {
        if (process != 0) {
            kill(process, SIGKILL);
            waitpid(process, nullptr, 0);
        }
    }

    static constexpr const char* name = "org.marvelode.Timer";
    static constexpr const char* object = "/org/marvelode/Timer";

    static std::string contentOf(const std::filesystem::path& path) {
        std::ifstream stream{path, std::ios::binary};
        return {std::istreambuf_iterator{stream}, {}};
    }

    using Preparation = void (*)();
    static void nothing() {}

    /// Starts `command`, in a process that has run `prepare` before, and waits until it is on the bus.
    void start(std::vector<std::string> command, Preparation prepare = nothing) {
        launch(std::move(command), prepare);
        EXPECT_TRUE(await([&] { return !property("State").empty() || !isRunning(); }));
        EXPECT_TRUE(isRunning()) << contentOf(folder.path / "output");
    }
    void start(Preparation prepare = nothing) { start({PROGRAM}, prepare); }

    void launch(std::vector<std::string> command, Preparation prepare = nothing) {
        process = spawn(std::move(command), "output", prepare);
    }

    /// Starts `command`, whose messages go into that file.
    pid_t spawn(std::vector<std::string> command, const char* messages, Preparation prepare = nothing) {
        std::vector<char*> arguments;
        for (std::string& argument : command) {
            arguments.push_back(argument.data());
        }
        arguments.push_back(nullptr);
        g_setenv("XDG_CONFIG_HOME", folder.path.c_str(), TRUE);
        g_unsetenv("G_SLICE");
        const pid_t child = fork();
        if (child == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            const int output = open((folder.path / messages).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            dup2(output, STDOUT_FILENO);
            dup2(output, STDERR_FILENO);
            close(output);
            prepare();
            execv(arguments[0], arguments.data());
            _exit(127);
        }
        return child;
    }

    /// Asks again and again, for a few seconds.
    static bool await(const std::function<bool()>& holds) {
        return runLoopUntil([&] {
            const bool isDone = holds();
            runLoopFor(std::chrono::milliseconds{isDone ? 0 : 5});
            g_main_context_wakeup(nullptr);
            return isDone;
        });
    }

    bool isRunning() {
        if (process != 0 && waitpid(process, &status, WNOHANG) == process) {
            process = 0;
        }
        return process != 0;
    }

    std::string property(const char* property) {
        std::string error;
        const VariantHandle answer = call(bus.get(), name, object, "org.freedesktop.DBus.Properties", "Get",
                                          g_variant_new("(ss)", name, property), &error);
        return answer ? TextHandle{g_variant_print(answer.get(), FALSE)}.get() : "";
    }
    bool awaitProperty(const char* which, const std::string& value) {
        return await([&] { return property(which) == value || !isRunning(); }) && isRunning();
    }
    bool run(const char* method) {
        std::string error;
        call(bus.get(), name, object, name, method, nullptr, &error);
        return error.empty();
    }
    void run(const char* method, std::function<void()> answered) {
        const auto call = [](GObject*, GAsyncResult*, gpointer data) {
            const std::unique_ptr<std::function<void()>> tell{static_cast<std::function<void()>*>(data)};
            (*tell)();
        };
        auto tell = std::make_unique<std::function<void()>>(std::move(answered));
        constexpr int noTimeout = G_MAXINT;
        g_dbus_connection_call(bus.get(), name, object, name, method, nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE,
                               noTimeout, nullptr, call, tell.release());
    }
    /// How many threads GLib keeps in the program for good; not those of its pool, which come and go.
    int threadsOfGlibs() const {
        int threads = 0;
        for (const auto& task : std::filesystem::directory_iterator{"/proc/" + std::to_string(process) + "/task"}) {
            const std::string thread = contentOf(task.path() / "comm");
            threads += thread == "gmain\n" || thread == "gdbus\n" || thread == "pool-spawner\n" ? 1 : 0;
        }
        return threads;
    }
    void endBy(int signal) {
        kill(process, signal);
        EXPECT_TRUE(await([&] { return !isRunning(); })) << "it does not end";
        EXPECT_EQ(status, 0);
    }
    void quit() {
        EXPECT_TRUE(run("Quit")) << "the call was not answered";
        EXPECT_TRUE(await([&] { return !isRunning(); })) << "it does not end";
        EXPECT_EQ(status, 0);
    }

    TemporaryFolder folder;
    const std::filesystem::path settings = folder.path / "marvelode-timer/settings";
    ObjectHandle<GDBusConnection> bus = connectToSession();
    pid_t process = 0;
    int status = -1;
};

} // namespace platform::linux
