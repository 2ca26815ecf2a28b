#pragma once

// Stands for a bus in targets that link it: what is exported on `bus()` is called by `call` here, in GLib's place.
// It holds the answers to what the interfaces declare.

#include <gio/gio.h>

#include <string_view>

namespace fuzz {

/// A connection to export objects on. It leads nowhere, and belongs to this stand-in.
GDBusConnection* bus();

/// What has become of a call.
enum class Answer { None, Value, Error };

/// Calls the method that a line such as "Event (1, 'clicked', <0>, 7)" names, on the interface that declares it. A
/// line that is no call of a method exported gives `None`, as does a call that waits for its answer.
Answer call(std::string_view line);

/// Reads every property of every interface that is exported.
void readProperties();

/// Ends the run if a call still waits, and forgets those before.
void requireThatAllAreAnswered();

} // namespace fuzz
