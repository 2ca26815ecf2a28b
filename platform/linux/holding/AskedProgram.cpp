#include "platform/linux/holding/AskedProgram.hpp"

#include <sys/wait.h>

#include <utility>

namespace platform::linux {

void AskedProgram::await(pid_t process, std::chrono::milliseconds patience, Answered answered) {
    _answered = std::move(answered);
    _process.emplace(process, [this](int status) { ended(status); });
    _deadline.start(patience, [this] {
        const Answered answer = std::exchange(_answered, nullptr);
        giveUp();
        answer(std::nullopt);
    });
}

void AskedProgram::giveUp() {
    _deadline.cancel();
    _answered = nullptr;
    if (_process) {
        _process->kill();
    }
}

void AskedProgram::ended(int status) {
    _deadline.cancel();
    _process.reset();
    if (const Answered answer = std::exchange(_answered, nullptr)) {
        answer(WIFEXITED(status) ? std::optional{WEXITSTATUS(status)} : std::nullopt);
    }
}

} // namespace platform::linux
