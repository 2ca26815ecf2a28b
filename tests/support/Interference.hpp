#pragma once

// Makes a stand-in for a service misbehave when one of its methods is called: the calls are met on their way into
// the stand-in, which itself behaves as it should.

#include "platform/linux/glib/Handles.hpp"

#include <functional>
#include <memory>
#include <ostream>
#include <string>

enum class Misbehaviour { IsSilent, AnswersLate, Refuses, TalksNonsense, Floods, Dies };

class Interference {
public:
    /// A method, and what there is to say to those who call it.
    struct Step {
        std::string method;
        std::string answer;   ///< The right one, in GLib's text form.
        std::string nonsense; ///< An answer of another type.
        std::function<void(GDBusConnection*)> flood = [](GDBusConnection*) {};

        friend void PrintTo(const Step& step, std::ostream* stream) { *stream << step.method; }
    };

    static constexpr int always = -1;

    /// From now on, the next `times` calls of the step's method that `bus` receives meet that misbehaviour.
    Interference(GDBusConnection* bus, const Step& step, Misbehaviour misbehaviour, int times);
    ~Interference();
    Interference(const Interference&) = delete;
    Interference& operator=(const Interference&) = delete;

    /// How many calls have met it.
    int meetings() const;

    /// Sends the right answer to all calls that `AnswersLate` keeps waiting.
    void answerNow();

private:
    struct State;
    platform::linux::ObjectHandle<GDBusConnection> _bus;
    std::shared_ptr<State> _state;
    unsigned _filter;
};
