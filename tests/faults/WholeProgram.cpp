#include "tests/faults/WholeProgram.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace faults {
namespace {

namespace fs = std::filesystem;
using namespace platform::linux;

constexpr const char* name = "org.marvelode.Timer";
constexpr const char* object = "/org/marvelode/Timer";

/// How long anything may take that does not wait for the program's clock, on a machine that is busy.
constexpr gint64 patience = 10 * G_USEC_PER_SEC;

std::string contentOf(const fs::path& path) {
    std::ifstream stream{path, std::ios::binary};
    return {std::istreambuf_iterator{stream}, {}};
}

FaultPlan* mapPlan(const fs::path& path) {
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    EXPECT_EQ(ftruncate(file, sizeof(FaultPlan)), 0);
    void* memory = mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    return std::construct_at(static_cast<FaultPlan*>(memory));
}

} // namespace

WholeProgram::WholeProgram()
    : _plan{mapPlan(_folder.path / "plan")} {
    const fs::path program = PROGRAM;
    const fs::path helpers = _folder.path / "libexec/marvelode-timer";
    fs::create_directories(_folder.path / "bin");
    fs::create_directories(helpers);
    fs::create_directories(configuration());
    fs::copy_file(program, _folder.path / "bin/marvelode-timer");
    fs::create_symlink(program.parent_path().parent_path() / "share", _folder.path / "share");
    fs::copy_file(SCRIPTED_WINDOW, helpers / "marvelode-timer-window");
    install("marvelode-timer-sound", "");
    connectToSystem(); // which is said to be there from here on
}

WholeProgram::~WholeProgram() {
    if (isRunning()) {
        g_source_remove(_end);
        ::kill(_process, SIGKILL);
        waitpid(_process, nullptr, 0);
    }
    munmap(_plan, sizeof(FaultPlan));
}

void WholeProgram::store(std::string_view settings) const {
    for (const auto& each : fs::directory_iterator{configuration()}) {
        fs::remove(each);
    }
    std::ofstream{configuration() / "settings", std::ios::binary} << settings;
}

std::string WholeProgram::stored() const { return contentOf(configuration() / "settings"); }

std::string WholeProgram::storedFiles() const {
    std::string names;
    for (const auto& each : fs::directory_iterator{configuration()}) {
        names += each.path().filename().string() + " ";
    }
    return names;
}

void WholeProgram::install(const char* helper, const std::string& commands) const {
    const std::string place = std::string{"libexec/marvelode-timer/"} + helper;
    fs::remove(_folder.path / place);
    fs::permissions(_folder.write(place, "#!/bin/sh\n" + commands), fs::perms::owner_all);
}

void WholeProgram::start(std::vector<std::string> arguments) {
    for (auto& count : _plan->calls) {
        count = 0;
    }
    _plan->secondsPassed = 0;
    arguments.insert(arguments.begin(), _folder.path / "bin/marvelode-timer");
    std::vector<char*> words;
    for (std::string& argument : arguments) {
        words.push_back(argument.data());
    }
    words.push_back(nullptr);
    gchar** environment = g_get_environ();
    for (const auto& [variable, value] : {std::pair{"XDG_CONFIG_HOME", (_folder.path / "config").string()},
                                          {"HOME", _folder.path.string()},
                                          {"XDG_RUNTIME_DIR", _folder.path.string()},
                                          {"LANG", "C.UTF-8"},
                                          {"MARVELODE_SCRIPTED_USER", (_folder.path / "user").string()},
                                          {"LD_PRELOAD", FAILING_CALLS},
                                          {planVariable, (_folder.path / "plan").string()}}) {
        environment = g_environ_setenv(environment, variable, value.c_str(), TRUE);
    }
    const auto end = [](GPid process, int status, gpointer data) {
        auto& self = *static_cast<WholeProgram*>(data);
        g_spawn_close_pid(process);
        self._process = 0;
        self._end = 0;
        self._status = status;
    };
    const auto endWithTest = [](gpointer) { prctl(PR_SET_PDEATHSIG, SIGKILL); };
    const int output = open((_folder.path / "output").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    ErrorSlot error;
    ASSERT_TRUE(g_spawn_async_with_fds(nullptr, words.data(), environment, G_SPAWN_DO_NOT_REAP_CHILD, endWithTest,
                                       nullptr, &_process, -1, output, output, error.out()))
        << error.message();
    g_strfreev(environment);
    close(output);
    _end = g_child_watch_add(_process, end, this);
}

void WholeProgram::kill() {
    if (isRunning()) {
        ::kill(_process, SIGKILL);
        await([this] { return !isRunning(); }, "its end by a signal");
    }
}

std::string WholeProgram::output() const { return contentOf(_folder.path / "output"); }

int WholeProgram::memory() const {
    std::ifstream sizes{"/proc/" + std::to_string(_process) + "/smaps_rollup"};
    int sum = 0;
    for (std::string line; std::getline(sizes, line);) {
        std::istringstream words{line};
        std::string key;
        int size = 0;
        words >> key >> size;
        sum += key.starts_with("Private_") ? size : 0;
    }
    return sum;
}

void WholeProgram::await(const std::function<bool()>& holds, const std::string& what) {
    const gint64 deadline = g_get_monotonic_time() + patience;
    while (!holds()) {
        if (!isRunning()) {
            throw Over{};
        }
        if (g_get_monotonic_time() > deadline) {
            throw Stuck{"waited in vain for " + what};
        }
        runLoopFor(std::chrono::milliseconds{1});
    }
}

std::string WholeProgram::get(const char* property) {
    std::string error;
    const VariantHandle answer = call(_bus.get(), name, object, "org.freedesktop.DBus.Properties", "Get",
                                      g_variant_new("(ss)", name, property), &error);
    return answer ? TextHandle{g_variant_print(answer.get(), FALSE)}.get() : "";
}

bool WholeProgram::succeeds(const char* method, GVariant* arguments) {
    std::string error;
    call(_bus.get(), name, object, name, method, arguments, &error);
    return error.empty();
}

void WholeProgram::passTime(std::int64_t seconds) {
    _plan->secondsPassed += seconds;
    get("State");
}

void WholeProgram::awaitReminder() {
    constexpr std::int64_t interval = 31;
    constexpr std::int64_t snooze = 5;
    constexpr int snoozes = 60;
    constexpr std::chrono::milliseconds moment{200};
    await([this] { return !_user.isWaiting(); }, "the last window to close");
    get("State"); // which is told once the timer runs that comes after the window
    const int before = _user.reminders;
    passTime(interval);
    for (int time = 0; time < snoozes; ++time) {
        const gint64 begin = g_get_monotonic_time();
        while (g_get_monotonic_time() < begin + std::chrono::microseconds{moment}.count()) {
            if (_user.reminders > before) {
                return;
            }
            if (!isRunning()) {
                throw Over{};
            }
            runLoopFor(std::chrono::milliseconds{1});
        }
        passTime(snooze);
    }
    throw Stuck{"no reminder came in five minutes"};
}

void WholeProgram::awaitRestart() {
    constexpr int reminders = 4;
    for (int time = 0; time < reminders; ++time) {
        _user.nextButton = 0;
        awaitReminder();
        const auto restarts = [this] { return get("State") == "(<'Timing'>,)"; };
        if (runLoopUntil([&] { return !isRunning() || restarts(); })) {
            return;
        }
    }
    throw Stuck{"it cannot be restarted"};
}

void WholeProgram::quit() {
    constexpr int times = 4;
    for (int time = 0; time < times && isRunning(); ++time) {
        succeeds("Quit");
        runLoopUntil([this] { return !isRunning(); });
    }
    if (isRunning()) {
        throw Stuck{"it does not end"};
    }
}

} // namespace faults
