#include "platform/linux/sound/SoundPlayer.hpp"

#include "platform/linux/HelperProcess.hpp"
#include "platform/linux/glib/DelayedCall.hpp"
#include "platform/linux/glib/Handles.hpp"
#include "platform/linux/sound/Mpeg4.hpp"

#include <fcntl.h>
#include <glib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <system_error>
#include <utility>

namespace platform::linux {
namespace {

/// The last line of what was written to the pipe and not read yet, as far as a pipe holds it.
std::string lastLine(int pipe) {
    constexpr std::size_t capacity = 65'536;
    std::string text;
    std::array<char, 1024> chunk{};
    while (text.size() < capacity) {
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
        if (_errors >= 0) {
            close(_errors);
        }
    }

    /// Starts it; returns the reason if that is impossible, otherwise an empty text.
    std::string start() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            return std::generic_category().message(errno);
        }
        _errors = ends[0];
        fcntl(_errors, F_SETFL, O_NONBLOCK);
        const HelperProgram::Started started = _player._program.start({.arguments = arguments, .errors = ends[1]});
        close(ends[1]);
        if (started.process != 0) {
            _process.emplace(started.process, [this](int status) { _player.ended(*this, complaint(status)); });
            _deadline.start(_player._longestSound, [this] {
                _wasOverdue = true;
                _process->kill();
            });
        }
        return started.problem;
    }

    std::vector<std::string> arguments;
    const std::string description;

private:
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
    std::optional<HelperProcess> _process;
    int _errors = -1;
    DelayedCall _deadline;
    bool _wasOverdue = false;
};

SoundPlayer::SoundPlayer(const HelperProgram& program, ErrorLog& errorLog, std::chrono::milliseconds longestSound)
    : _program{program}
    , _errorLog{errorLog}
    , _longestSound{longestSound} {}

SoundPlayer::~SoundPlayer() = default;

bool SoundPlayer::canPlay(const std::filesystem::path& sound) const { return holdsAac(sound); }

bool SoundPlayer::play(const std::filesystem::path& sound, Volume volume) {
    return start({"play", sound.string()}, volume, "The sound " + sound.filename().string());
}

void SoundPlayer::beep(Volume volume) { start({"beep"}, volume, "The alert beep"); }

bool SoundPlayer::start(std::vector<std::string> arguments, Volume volume, const std::string& description) {
    if (volume) {
        std::array<char, G_ASCII_DTOSTR_BUF_SIZE> text{};
        arguments.emplace_back(g_ascii_dtostr(text.data(), text.size(), *volume));
    }
    const bool isPlaying = std::any_of(_helpers.begin(), _helpers.end(),
                                       [&](const auto& helper) { return helper->arguments == arguments; });
    if (isPlaying || !_program.session().isWorthASound()) {
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
