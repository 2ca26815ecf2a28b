// What a notification service may tell of a message, one thing in each line of the input.

#include "platform/linux/trayless/Notification.hpp"
#include "tests/fuzz/BusStandIn.hpp"
#include "tests/fuzz/Fuzz.hpp"

#include <string_view>

void fuzz::check(std::string_view input) {
    using namespace platform::linux;
    int choices = 0;
    ActivationToken token;
    {
        Notification notification{bus(), [&](std::string_view) { ++choices; }, token};
        notification.show("Title", "Text", {{"default", "Show"}, {"quit", "Quit"}});
        while (!input.empty()) {
            const auto [line, rest] = cut(input, "\n");
            choices = 0;
            if (line == "show") {
                notification.show("Title", "Text", {});
            } else if (line == "withdraw") {
                notification.withdraw();
            } else {
                happen(line);
            }
            require(choices <= (line.starts_with("signal ActionInvoked ") ? 1 : 0), "one signal is one choice");
            require(token.take().size() <= ActivationToken::longest, "a token fits into a window's environment");
            input = rest;
        }
    }
    while (unansweredCalls() != 0) {
        happen("answer ()"); // which comes too late
    }
}
