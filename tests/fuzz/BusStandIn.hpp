#pragma once

// Stands for a bus in targets that link it: what is exported on `bus()` is called by `happen` here, in GLib's
// place, and what is called, watched and subscribed to on it hears what the input says. It holds the program to
// what its interfaces declare.

#include <gio/gio.h>

#include <cstddef>
#include <string_view>

namespace fuzz {

/// A connection to put objects on. It leads nowhere, and belongs to this stand-in.
GDBusConnection* bus();

/// What has become of a call to the program.
enum class Answer { None, Value, Error };

/// Lets happen what a line of the input says; a line that makes no sense is passed over.
///
///     Event (1, 'clicked', <0>, uint32 7)    a method that is exported is called; its answer is returned
///     ask /Path org.some.Interface Get ('x',)  a question comes to who looks at messages first
///     signal ActionInvoked (uint32 1, 'x')   the subscribers to the signal hear it
///     answer (uint32 1,)                     the oldest call by the program is answered
///     appears                                the watchers of names learn that these have an owner
///     vanishes                               and that they have none
///
/// An answer of another type than the call expects is an error.
Answer happen(std::string_view line);

/// Reads every property of every interface that is exported.
void readProperties();

/// Ends the run if a call to the program still waits, and forgets those before.
void requireThatAllAreAnswered();

/// How many calls by the program are not answered yet.
std::size_t unansweredCalls();

} // namespace fuzz
