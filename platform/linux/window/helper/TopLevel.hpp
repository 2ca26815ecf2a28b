#pragma once

// A window as all windows of this program are: a small frameless card with rounded corners in the middle of the
// screen with the pointer, above other windows, with the keyboard. It never closes by itself.

#include "platform/linux/window/helper/Gtk.hpp"

#include <functional>
#include <memory>
#include <string>

namespace platform::linux {

class TopLevel {
public:
    /// `below` is the window that this one is about, and that takes no input meanwhile; null if there is none.
    /// `shown` is called when the window is on the screen, `wantsToClose` when the user or the desktop wants it to
    /// go away.
    TopLevel(const std::string& title, GtkWindow* below, std::function<void()> shown,
             std::function<void()> wantsToClose);

    /// Takes the window off the screen.
    ~TopLevel();
    TopLevel(const TopLevel&) = delete;
    TopLevel& operator=(const TopLevel&) = delete;

    GtkWindow* window() const { return _window; }

    /// Makes everything in the window that is no control a handle to drag it by, where the desktop moves windows.
    void moveByBackground();

    /// Shows the window wherever the user works, above full-screen windows too where the desktop allows it. The one
    /// below, which must be shown so too, is without the keyboard until this one is destroyed.
    void appearEverywhere();

    /// Where windows cannot be kept above others: shows this one anew whenever it has been without the keyboard for
    /// a minute, since it may be covered then; nobody tells. To be called once it appears everywhere.
    void returnWhenLost();

    /// Leaves the keyboard to other windows while this one, which appears everywhere, is up. Most desktops do so by
    /// themselves, but not with a window in a layer: there the keyboard leaves it with the pointer and comes back
    /// with a click.
    void shareTheKeyboard();

    /// Ignores keys for the window's first half second, and for half a second after a letter that comes in that
    /// time: a user who is typing as it appears does not mean it.
    void ignoreEarlyKeys();

    /// Shows the window without taking the keyboard from the one that has it, where the desktop allows it.
    void leaveTheKeyboard();

    /// Shows `content` with the keyboard on `defaultButton`, which the Return key presses; it may be null.
    void present(GtkWidget* content, GtkWidget* defaultButton);

    /// Shows `content` instead of what was presented, with the keyboard on the control at the same place.
    void replace(GtkWidget* content);

private:
    void ignoreKeysFromNow();
    gboolean keyPressed(const GdkEventKey& event);
    void centre();
    void waitToReturn();
    void cancelReturn();

    using Gesture = std::unique_ptr<GtkGesture, decltype(&g_object_unref)>;

    GtkWindow* _window;
    GtkWidget* _content = nullptr; ///< Owned by the window.
    std::function<void()> _wantsToClose;
    Gesture _clicks{nullptr, g_object_unref};
    bool _ignoresEarlyKeys = false;
    gint64 _listensFrom = 0;     ///< In microseconds of the monotonic clock.
    unsigned _return = 0;        ///< A source while the window is without the keyboard and will return.
    unsigned _takesKeyboard = 0; ///< A source while a window in a layer leaves the keyboard to others.
};

} // namespace platform::linux
