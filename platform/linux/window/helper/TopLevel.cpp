#include "platform/linux/window/helper/TopLevel.hpp"

#include "platform/linux/window/helper/Backend.hpp"
#include "platform/linux/window/helper/Layers.hpp"
#include "platform/linux/window/helper/Pictures.hpp"

#ifdef GDK_WINDOWING_X11
#include <gdk/gdkx.h>
#endif

#include <algorithm>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

constexpr guint keylessMilliseconds = 500;
constexpr guint secondsUntilReturn = 60;

GdkMonitor* monitorOfPointer(GdkDisplay* display) {
    gint x = 0;
    gint y = 0;
    gdk_device_get_position(gdk_seat_get_pointer(gdk_display_get_default_seat(display)), nullptr, &x, &y);
    return gdk_display_get_monitor_at_point(display, x, y);
}

/// The controls inside `widget` that can have the keyboard, in the order of the tree.
void collectControls(GtkWidget* widget, std::vector<GtkWidget*>& controls) {
    if (gtk_widget_get_can_focus(widget)) {
        controls.push_back(widget);
    }
    if (GTK_IS_CONTAINER(widget)) {
        const auto collect = [](GtkWidget* child, gpointer all) {
            collectControls(child, *static_cast<std::vector<GtkWidget*>*>(all));
        };
        gtk_container_forall(GTK_CONTAINER(widget), collect, &controls);
    }
}

std::vector<GtkWidget*> controlsIn(GtkWidget* content) {
    std::vector<GtkWidget*> controls;
    collectControls(content, controls);
    return controls;
}

bool isReturn(guint key) { return key == GDK_KEY_Return || key == GDK_KEY_KP_Enter || key == GDK_KEY_ISO_Enter; }

} // namespace

TopLevel::TopLevel(const std::string& title, GtkWindow* below, std::function<void()> shown,
                   std::function<void()> wantsToClose)
    : _window{GTK_WINDOW(gtk_window_new(GTK_WINDOW_TOPLEVEL))}
    , _wantsToClose{std::move(wantsToClose)} {
    gtk_window_set_title(_window, title.c_str());
    gtk_window_set_type_hint(_window, GDK_WINDOW_TYPE_HINT_DIALOG);
    gtk_window_set_resizable(_window, FALSE);
    gtk_window_set_keep_above(_window, TRUE);
    if (below) {
        gtk_window_set_transient_for(_window, below);
        gtk_window_set_modal(_window, TRUE);
    }

    // an invisible title bar of our own: the desktop draws none then, but GTK draws shadow and corners
    GtkWidget* titleBar = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    gtk_widget_set_no_show_all(titleBar, TRUE);
    gtk_window_set_titlebar(_window, titleBar);

    connect(_window, "delete-event", [this](GdkEvent*) -> gboolean {
        _wantsToClose();
        return GDK_EVENT_STOP;
    });
    connect(_window, "map-event", [this](GdkEvent*) -> gboolean {
        ignoreKeysFromNow();
        return GDK_EVENT_PROPAGATE;
    });
    // on Wayland a window counts as mapped before the compositor knows it; it is drawn when that has answered
    connect(_window, "draw", [shown = std::move(shown), wasShown = false](cairo_t*) mutable -> gboolean {
        if (!std::exchange(wasShown, true)) {
            shown();
        }
        return GDK_EVENT_PROPAGATE;
    });
    // for lists of windows, in all sizes that are installed: to read them takes as long as to show the window
    afterFirstFrame(GTK_WIDGET(_window), [](GtkWidget* window, GdkFrameClock*, gpointer) -> gboolean {
        gtk_window_set_icon_name(GTK_WINDOW(window), applicationId);
        return G_SOURCE_REMOVE;
    });
    connect(_window, "key-press-event", [this](GdkEventKey* event) { return keyPressed(*event); });
}

TopLevel::~TopLevel() {
    if (_takesKeyboard != 0) {
        g_source_remove(_takesKeyboard);
    }
    cancelReturn();
    GtkWindow* below = gtk_window_get_transient_for(_window);
    gtk_widget_destroy(GTK_WIDGET(_window));
    if (below) {
        setIsInFront(below, true);
    }
}

void TopLevel::moveByBackground() {
    if (isInLayer(_window)) {
        return; // those stay where the compositor puts them
    }
    gtk_widget_add_events(GTK_WIDGET(_window), GDK_BUTTON_PRESS_MASK);
    connect(_window, "button-press-event", [this](GdkEventButton* event) -> gboolean {
        if (event->type != GDK_BUTTON_PRESS || event->button != GDK_BUTTON_PRIMARY) {
            return GDK_EVENT_PROPAGATE;
        }
        gtk_window_begin_move_drag(_window, static_cast<gint>(event->button), static_cast<gint>(event->x_root),
                                   static_cast<gint>(event->y_root), event->time);
        return GDK_EVENT_STOP;
    });
}

void TopLevel::appearEverywhere() {
    gtk_window_stick(_window);
    putInLayer(_window);
    if (GtkWindow* below = gtk_window_get_transient_for(_window)) {
        setIsInFront(below, false);
    }
}

void TopLevel::returnWhenLost() {
    if (isInLayer(_window) || isOnX11()) {
        return;
    }
    connect(_window, "notify::is-active", [this](GParamSpec*) { waitToReturn(); });
    waitToReturn();
}

void TopLevel::waitToReturn() {
    cancelReturn();
    if (gtk_window_is_active(_window)) {
        return;
    }
    const auto comeBack = [](gpointer data) -> gboolean {
        auto* self = static_cast<TopLevel*>(data);
        self->_return = 0;
        gtk_widget_hide(GTK_WIDGET(self->_window)); // what is shown anew comes to the front; what asks may not
        gtk_window_present(self->_window);
        self->waitToReturn(); // in case that it does not get the keyboard
        return G_SOURCE_REMOVE;
    };
    _return = g_timeout_add_seconds(secondsUntilReturn, comeBack, this);
}

void TopLevel::cancelReturn() {
    if (_return != 0) {
        g_source_remove(std::exchange(_return, 0));
    }
}

void TopLevel::ignoreEarlyKeys() {
    _ignoresEarlyKeys = true;
    if (!isInLayer(_window)) {
        return;
    }
    setHasKeyboard(_window, false);
    const auto takeKeyboard = [](gpointer data) -> gboolean {
        auto* self = static_cast<TopLevel*>(data);
        self->_takesKeyboard = 0;
        self->ignoreKeysFromNow();
        setHasKeyboard(self->_window, true);
        return G_SOURCE_REMOVE;
    };
    _takesKeyboard = g_timeout_add(keylessMilliseconds, takeKeyboard, this);
}

void TopLevel::shareTheKeyboard() {
    if (!isInLayer(_window)) {
        return;
    }
    gtk_widget_add_events(GTK_WIDGET(_window), GDK_LEAVE_NOTIFY_MASK);
    connect(_window, "leave-notify-event", [this](GdkEventCrossing* event) -> gboolean {
        const bool isOverMenu = gtk_grab_get_current() != GTK_WIDGET(_window); // which is modal
        if (event->detail != GDK_NOTIFY_INFERIOR && !isOverMenu) {
            setHasKeyboard(_window, false);
        }
        return GDK_EVENT_PROPAGATE;
    });
    _clicks.reset(gtk_gesture_multi_press_new(GTK_WIDGET(_window)));
    gtk_event_controller_set_propagation_phase(GTK_EVENT_CONTROLLER(_clicks.get()), GTK_PHASE_CAPTURE);
    connect(_clicks.get(), "pressed", [this](gint, gdouble, gdouble) { setHasKeyboard(_window, true); });
}

void TopLevel::leaveTheKeyboard() { gtk_window_set_focus_on_map(_window, FALSE); }

void TopLevel::ignoreKeysFromNow() {
    _listensFrom = g_get_monotonic_time() + gint64{keylessMilliseconds} * G_TIME_SPAN_MILLISECOND;
}

gboolean TopLevel::keyPressed(const GdkEventKey& event) {
    if (_ignoresEarlyKeys && g_get_monotonic_time() < _listensFrom) {
        const bool goesOnTyping = gdk_keyval_to_unicode(event.keyval) >= ' ';
        if (goesOnTyping) {
            ignoreKeysFromNow();
        }
        return GDK_EVENT_STOP;
    }
    if (event.keyval == GDK_KEY_Escape) {
        _wantsToClose();
        return GDK_EVENT_STOP;
    }
    GtkWidget* focus = gtk_window_get_focus(_window);
    GtkWidget* defaultButton = gtk_window_get_default_widget(_window);
    const bool isOnPicker = focus && gtk_widget_get_ancestor(focus, GTK_TYPE_COMBO_BOX);
    if (isReturn(event.keyval) && isOnPicker && defaultButton) { // would open the picker, which Space does
        return gtk_widget_activate(defaultButton);
    }
    return GDK_EVENT_PROPAGATE;
}

void TopLevel::centre() {
    GdkRectangle area{};
    gdk_monitor_get_workarea(monitorOfPointer(gtk_widget_get_display(GTK_WIDGET(_window))), &area);
    gint width = 0;
    gint height = 0;
    gtk_window_get_size(_window, &width, &height);
    gtk_window_move(_window, area.x + (area.width - width) / 2, area.y + (area.height - height) / 2);
}

void TopLevel::present(GtkWidget* content, GtkWidget* defaultButton) {
    _content = content;
    gtk_container_add(GTK_CONTAINER(_window), content);
    gtk_widget_show_all(content);
    if (defaultButton) {
        gtk_window_set_default(_window, defaultButton);
        gtk_widget_grab_focus(defaultButton);
    }
    gtk_widget_realize(GTK_WIDGET(_window));
    bool isPlacedByUs = false;
    const bool takesKeyboard = gtk_window_get_focus_on_map(_window) != FALSE;
    guint32 now = GDK_CURRENT_TIME;
#ifdef GDK_WINDOWING_X11
    GdkWindow* surface = gtk_widget_get_window(GTK_WIDGET(_window));
    if (GDK_IS_X11_WINDOW(surface)) {
        isPlacedByUs = true;
        centre();
        if (takesKeyboard) { // window managers give it to what happened last
            now = gdk_x11_get_server_time(surface);
            gdk_x11_window_set_user_time(surface, now);
        }
    }
#endif
    if (!isPlacedByUs) {
        gtk_window_set_modal(_window, TRUE); // GNOME puts others into a corner
    }
    if (takesKeyboard) {
        gtk_window_present_with_time(_window, now);
    } else {
        gtk_widget_show(GTK_WIDGET(_window));
    }
}

void TopLevel::replace(GtkWidget* content) {
    const std::vector<GtkWidget*> before = controlsIn(_content);
    const auto focus = std::find(before.begin(), before.end(), gtk_window_get_focus(_window)) - before.begin();
    gtk_widget_destroy(_content);
    _content = content;
    gtk_container_add(GTK_CONTAINER(_window), content);
    gtk_widget_show_all(content);
    const std::vector<GtkWidget*> now = controlsIn(content);
    if (static_cast<std::size_t>(focus) < now.size()) {
        gtk_widget_grab_focus(now[static_cast<std::size_t>(focus)]);
    }
}

} // namespace platform::linux
