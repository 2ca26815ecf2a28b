// What panels, and the watcher that collects items for them, may do to the status item: one thing in each line of
// the input, or `show`, for its words to change.

#include "platform/linux/tray/StatusNotifierItem.hpp"
#include "tests/fuzz/BusStandIn.hpp"
#include "tests/fuzz/Fuzz.hpp"
#include "tests/support/CollectedErrors.hpp"

#include <optional>
#include <string_view>

void fuzz::check(std::string_view input) {
    using namespace platform::linux;
    static const Resources resources{""};
    std::optional<bool> isPresent;
    const auto trayChanged = [&](bool isPresentNow) {
        require(isPresent != isPresentNow, "only changes of the tray are told");
        isPresent = isPresentNow;
    };
    int clicks = 0;
    ActivationToken token;
    CollectedErrors errors;
    StatusContent content{"", {}, "Marvelode.png", {}, "Break in 9 minutes"}; // pictures of texts take long
    {
        StatusNotifierItem item{bus(), resources, content, trayChanged, [&] { ++clicks; }, token, errors};
        while (!input.empty()) {
            const auto [line, rest] = cut(input, "\n");
            clicks = 0;
            if (line == "show") {
                content.words += '.';
                item.show(content);
            }
            const Answer answer = happen(line);
            require(clicks <= (answer == Answer::Value ? 1 : 0), "one call is one click");
            require(token.take().size() <= ActivationToken::longest, "a token fits into a window's environment");
            input = rest;
        }
        content.words = "Break in 8 minutes";
        item.show(content);
        readProperties();
        requireThatAllAreAnswered();
    }
    while (unansweredCalls() != 0) {
        happen("answer ()"); // which comes too late
    }
}
