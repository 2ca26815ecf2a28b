// What the resident program may be told by the program that shows its windows.

#include "platform/linux/window/Protocol.hpp"
#include "tests/fuzz/Fuzz.hpp"

void fuzz::check(std::string_view input) {
    using namespace platform::linux;
    const std::optional<Event> event = decodeEvent(input);
    if (!event) {
        return;
    }
    require(event->value.has_value() == (event->kind == Event::Kind::Changed), "exactly a change has a value");
    const std::string message = encode(*event);
    require(message.size() <= longestMessage, "what was read fits into a message");
    require(decodeEvent(message) == event, "an event arrives as it was sent");
}
