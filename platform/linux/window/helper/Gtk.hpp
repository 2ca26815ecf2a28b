#pragma once

// GTK, as this program uses it: signals connected to C++ callables. A callable lives as long as its object.

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <utility>

namespace platform::linux {

/// Calls `handler` with the signal's arguments, without the object itself, each time `object` emits `signal`.
template <typename Result, typename... Arguments>
void connect(gpointer object, const char* signal, std::function<Result(Arguments...)> handler) {
    using Handler = std::function<Result(Arguments...)>;
    const auto call = [](gpointer, Arguments... arguments, gpointer data) -> Result {
        return (*static_cast<Handler*>(data))(arguments...);
    };
    const auto destroy = [](gpointer data, GClosure*) {
        std::default_delete<Handler>{}(static_cast<Handler*>(data));
    };
    Result (*const callback)(gpointer, Arguments..., gpointer) = call;
    g_signal_connect_data(object, signal, G_CALLBACK(callback),
                          std::make_unique<Handler>(std::move(handler)).release(), destroy,
                          static_cast<GConnectFlags>(0));
}

template <typename Callable>
void connect(gpointer object, const char* signal, Callable handler) {
    connect(object, signal, std::function{std::move(handler)});
}

/// Calls `action` in each frame after the first one that `widget` is drawn in, until it asks for no more.
inline void afterFirstFrame(GtkWidget* widget, GtkTickCallback action) {
    connect(widget, "draw", [widget, action, wasDrawn = false](cairo_t*) mutable -> gboolean {
        if (!std::exchange(wasDrawn, true)) {
            gtk_widget_add_tick_callback(widget, action, nullptr, nullptr);
        }
        return GDK_EVENT_PROPAGATE;
    });
}

/// Calls `name` what assistive technology presents `widget` as.
inline void setAccessibleName(GtkWidget* widget, const char* name) {
    atk_object_set_name(gtk_widget_get_accessible(widget), name);
}

} // namespace platform::linux
