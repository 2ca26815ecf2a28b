#pragma once

// The windows that the resident program asked for, the topmost last. Requests come in; events tell what the user
// does.

#include "platform/linux/window/Protocol.hpp"
#include "platform/linux/window/helper/TopLevel.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace platform::linux {

class Windows {
public:
    using Tell = std::function<void(const Event&)>;

    /// `tell` is called with everything that the user does.
    explicit Windows(Tell tell);
    ~Windows();
    Windows(const Windows&) = delete;
    Windows& operator=(const Windows&) = delete;

    /// Does what the resident program asks for.
    void handle(Request request);

private:
    class Window;
    class Alert;
    class Panel;

    GtkWindow* topmost() const;

    Tell _tell;
    std::vector<std::unique_ptr<Window>> _windows;
};

} // namespace platform::linux
