#include "platform/linux/holding/HoldQuestion.hpp"

#include <unistd.h>

#include <csignal>
#include <utility>

namespace platform::linux {
namespace {

using Cause = DesktopValues::Cause;

const char* nameOf(Cause cause) {
    switch (cause) {
    case Cause::DoNotDisturb:
        return "do not disturb";
    case Cause::Locked:
        return "the session is locked";
    case Cause::FullScreen:
        return "a full-screen window";
    }
    return "";
}

/// Starts a program of the user's, with the environment of the session; 0, with a reason in `error`, if that fails.
GPid start(std::vector<std::string> words, std::vector<std::string> environment, ErrorSlot& error) {
    const auto pointers = [](std::vector<std::string>& texts) {
        std::vector<char*> result;
        for (std::string& text : texts) {
            result.push_back(text.data());
        }
        result.push_back(nullptr);
        return result;
    };
    const auto prepare = [](gpointer) {
        setpgid(0, 0);
        std::signal(SIGPIPE, SIG_DFL); // this program ignores it
    };
    constexpr auto flags =
        static_cast<GSpawnFlags>(G_SPAWN_DO_NOT_REAP_CHILD | G_SPAWN_SEARCH_PATH | G_SPAWN_LEAVE_DESCRIPTORS_OPEN |
                                 G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);
    GPid process = 0;
    g_spawn_async(nullptr, pointers(words).data(), pointers(environment).data(), flags, prepare, nullptr, &process,
                  error.out());
    return process;
}

} // namespace

HoldQuestion::HoldQuestion(GDBusConnection* sessionBus, std::function<GDBusConnection*()> systemBus,
                           const HelperProgram& helper, ErrorLog& errorLog)
    : HoldQuestion{sessionBus, std::move(systemBus), helper, errorLog, Patience{}} {}

HoldQuestion::HoldQuestion(GDBusConnection* sessionBus, std::function<GDBusConnection*()> systemBus,
                           const HelperProgram& helper, ErrorLog& errorLog, Patience patience)
    : _sessionBus{shared(sessionBus)}
    , _systemBus{std::move(systemBus)}
    , _helper{helper}
    , _errorLog{errorLog}
    , _patience{patience} {}

void HoldQuestion::ask(const DesktopValues& values, Answered answered) {
    _answered = std::move(answered);
    _open = 1; // until all are asked
    for (const Cause cause : values.holdWhile) {
        askFor(cause);
    }
    if (!values.holdCommand.empty()) {
        askCommand(values.holdCommand);
    }
    answer(false, {});
}

void HoldQuestion::askFor(Cause cause) {
    const char* const reason = nameOf(cause);
    for (const BusQuestion& question : busQuestionsFor(cause)) {
        askBus(question, reason);
    }
    if (cause == Cause::DoNotDisturb) {
        askHelper(_doNotDisturb, "do-not-disturb", reason);
    } else if (cause == Cause::FullScreen) {
        askHelper(_fullScreen, "full-screen", reason);
    }
}

void HoldQuestion::askBus(const BusQuestion& question, const char* reason) {
    GDBusConnection* const bus = question.isOnSystemBus ? _systemBus() : _sessionBus.get();
    if (!bus) {
        return;
    }
    ++_open;
    _calls.emplace_back().start(
        bus, question.method, argumentsOf(question), nullptr,
        [this, reason](const VariantHandle& result, const ErrorSlot&) { answer(saysYes(result.get()), reason); },
        _patience.service);
}

void HoldQuestion::askHelper(AskedProgram& program, const char* word, const char* reason) {
    if (program.isRunning()) {
        return;
    }
    const HelperProgram::Started started = _helper.start({.arguments = {word}});
    if (started.process == 0) {
        complainOnce("The desktop cannot be asked for \"" + std::string{word} + "\": " + started.problem);
        return;
    }
    ++_open;
    program.await(started.process, _patience.service, [this, word, reason](std::optional<int> status) {
        constexpr int cannotBeKnown = 3;
        if (status == cannotBeKnown) {
            complainOnce("HoldWhile: this session cannot tell of \"" + std::string{word} + '"');
        }
        answer(status == 0, reason);
    });
}

void HoldQuestion::askCommand(const std::vector<std::string>& words) {
    if (_command.isRunning()) {
        return;
    }
    ErrorSlot error;
    const GPid process = start(words, _helper.session().forHelpers(), error);
    if (process == 0) {
        complainOnce(std::string{"HoldCommand cannot be started: "} + error.message());
        return;
    }
    ++_open;
    _command.await(process, _patience.command,
                   [this](std::optional<int> status) { answer(status == 0, "HoldCommand says so"); });
}

/// One has answered. The first to say yes, or the last to say no, ends the question.
void HoldQuestion::answer(bool holds, const std::string& reason) {
    --_open;
    if (_answered && (holds || _open == 0)) {
        const Answered tell = std::exchange(_answered, nullptr);
        const std::string answer = holds ? reason : std::string{};
        _calls.clear(); // and with it the function that called this one
        for (AskedProgram* program : {&_doNotDisturb, &_fullScreen, &_command}) {
            program->giveUp();
        }
        tell(answer);
    }
}

void HoldQuestion::complainOnce(const std::string& problem) {
    if (_complaints.insert(problem).second) {
        _errorLog.add(problem);
    }
}

} // namespace platform::linux
