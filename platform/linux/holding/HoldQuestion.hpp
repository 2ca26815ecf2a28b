#pragma once

// The question whether something on the desktop holds reminders back. All that the settings name are asked at the
// same time; the first that says yes decides. What does not answer in time counts as not holding.

#include "platform/linux/DesktopSettings.hpp"
#include "platform/linux/ErrorLog.hpp"
#include "platform/linux/HelperProgram.hpp"
#include "platform/linux/glib/BusCall.hpp"
#include "platform/linux/holding/AskedProgram.hpp"
#include "platform/linux/holding/BusQuestions.hpp"

#include <chrono>
#include <functional>
#include <list>
#include <set>
#include <string>
#include <vector>

namespace platform::linux {

class HoldQuestion {
public:
    /// Why reminders are held back, or an empty text.
    using Answered = std::function<void(const std::string& reason)>;

    /// How long each is waited for.
    struct Patience {
        std::chrono::milliseconds service{500};
        std::chrono::milliseconds command{2000};
    };

    /// Asks over `sessionBus` and over what `systemBus` returns, which may be null; and through `helper`, the
    /// program that knows displays and GNOME's settings. `errorLog` is told once of each thing that cannot be known
    /// here.
    HoldQuestion(GDBusConnection* sessionBus, std::function<GDBusConnection*()> systemBus,
                 const HelperProgram& helper, ErrorLog& errorLog);
    HoldQuestion(GDBusConnection* sessionBus, std::function<GDBusConnection*()> systemBus,
                 const HelperProgram& helper, ErrorLog& errorLog, Patience patience);

    /// Asks what `values` name, and calls `answered` once: at once if there is nothing to ask, else within the
    /// longer patience. None may be open.
    void ask(const DesktopValues& values, Answered answered);

private:
    void askFor(DesktopValues::Cause cause);
    void askBus(const BusQuestion& question, const char* reason);
    void askHelper(AskedProgram& program, const char* word, const char* reason);
    void askCommand(const std::vector<std::string>& words);
    void answer(bool holds, const std::string& reason);
    void complainOnce(const std::string& problem);

    ObjectHandle<GDBusConnection> _sessionBus;
    std::function<GDBusConnection*()> _systemBus;
    const HelperProgram& _helper;
    ErrorLog& _errorLog;
    const Patience _patience;
    std::set<std::string> _complaints;
    Answered _answered;
    int _open = 0; ///< Answers that are still to come.
    std::list<BusCall> _calls;
    AskedProgram _doNotDisturb;
    AskedProgram _fullScreen;
    AskedProgram _command;
};

} // namespace platform::linux
