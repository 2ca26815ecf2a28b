#include "platform/linux/sound/SoundPlayer.hpp"

#include "platform/linux/glib/Handles.hpp"
#include "platform/linux/sound/Mpeg4.hpp"

#include <glib-unix.h>
#include <glib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

namespace platform::linux {
namespace {

/// The last line of what was written to the pipe and not read yet, without waiting for more.
std::string lastLine(int pipe) {
    std::string text;
    std::array<char, 1024> chunk{};
    g_unix_set_fd_nonblocking(pipe, TRUE, nullptr);
    for (;;) {
        const ssize_t count = read(pipe, chunk.data(), chunk.size());
        if (count <= 0) {
            break;
        }
        text.append(chunk.data(), static_cast<std::size_t>(count));
    }
    text.erase(text.find_last_not_of('\n') + 1);
    text.erase(0, text.rfind('\n') + 1);
    const TextHandle valid{g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()))};
    return valid.get();
}

} // namespace

/// A helper program that was started, until it has ended.
class SoundPlayer::Helper {
public:
    Helper(SoundPlayer& player, std::vector<std::string> arguments, std::string description)
        : arguments{std::move(arguments)}
        , description{std::move(description)}
        , _player{player} {}

    Helper(const Helper&) = delete;
    Helper& operator=(const Helper&) = delete;

    ~Helper() {
        if (_deadline) {
            g_source_remove(_deadline);
        }
        if (_watch) {
            g_source_remove(_watch);
            kill(_process, SIGKILL);
            while (waitpid(_process, nullptr, 0) < 0 && errno == EINTR) {
            }
        }
        if (_errors >= 0) {
            close(_errors);
        }
    }

    /// Starts it; gives the reason if that is impossible, otherwise an empty text.
    std::string start() {
        std::string program = _player._helperProgram.string();
        std::vector<char*> command{program.data()};
        for (std::string& argument : arguments) {
            command.push_back(argument.data());
        }
        command.push_back(nullptr);
        const auto flags = static_cast<GSpawnFlags>(G_SPAWN_DO_NOT_REAP_CHILD | G_SPAWN_CLOEXEC_PIPES |
                                                    G_SPAWN_STDOUT_TO_DEV_NULL);
        ErrorSlot error;
        if (!g_spawn_async_with_pipes(nullptr, command.data(), nullptr, flags, nullptr, nullptr, &_process, nullptr,
                                      nullptr, &_errors, error.out())) {
            return error.message();
        }
        _watch = g_child_watch_add(_process, onEnd, this);
        _deadline = g_timeout_add(static_cast<guint>(_player._longestSound.count()), onDeadline, this);
        return {};
    }

    std::vector<std::string> arguments;
    const std::string description;

private:
    static gboolean onDeadline(gpointer data) {
        auto& self = *static_cast<Helper*>(data);
        self._deadline = 0;
        self._wasOverdue = true;
        kill(self._process, SIGKILL);
        return G_SOURCE_REMOVE;
    }

    static void onEnd(GPid, int status, gpointer data) {
        auto& self = *static_cast<Helper*>(data);
        self._watch = 0;
        self._player.ended(self, self.complaint(status));
    }

    std::string complaint(int status) const {
        if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
            return {};
        }
        if (_wasOverdue) {
            return "its player did not come to an end.";
        }
        if (WIFSIGNALED(status)) {
            return std::string{"its player was ended by a signal: "} + g_strsignal(WTERMSIG(status)) + ".";
        }
        const std::string reason = lastLine(_errors);
        return reason.empty() ? "its player failed with status " + std::to_string(WEXITSTATUS(status)) + "."
                              : reason;
    }

    SoundPlayer& _player;
    GPid _process = 0;
    int _errors = -1;
    guint _watch = 0;
    guint _deadline = 0;
    bool _wasOverdue = false;
};

SoundPlayer::SoundPlayer(std::filesystem::path helperProgram, ErrorLog& errorLog,
                         std::chrono::milliseconds longestSound)
    : _helperProgram{std::move(helperProgram)}
    , _errorLog{errorLog}
    , _longestSound{longestSound} {}

SoundPlayer::~SoundPlayer() = default;

bool SoundPlayer::canPlay(const std::filesystem::path& sound) const { return holdsAac(sound); }

bool SoundPlayer::play(const std::filesystem::path& sound) {
    return start({"play", sound.string()}, "The sound " + sound.filename().string());
}

void SoundPlayer::beep() { start({"beep"}, "The alert beep"); }

bool SoundPlayer::start(std::vector<std::string> arguments, const std::string& description) {
    const bool isPlaying = std::any_of(_helpers.begin(), _helpers.end(),
                                       [&](const auto& helper) { return helper->arguments == arguments; });
    if (isPlaying) {
        return false;
    }
    auto helper = std::make_unique<Helper>(*this, std::move(arguments), description);
    if (const std::string reason = helper->start(); !reason.empty()) {
        _errorLog.add(description + " could not be played: " + reason);
        return false;
    }
    _helpers.push_back(std::move(helper));
    return true;
}

void SoundPlayer::ended(const Helper& helper, const std::string& complaint) {
    const std::string description = helper.description;
    std::erase_if(_helpers, [&](const auto& one) { return one.get() == &helper; });
    if (!complaint.empty()) {
        _errorLog.add(description + " could not be played: " + complaint);
    }
}

} // namespace platform::linux
