#pragma once

// The widgets for a tree of views. The widgets call the operations of the tree's controls when the user uses them,
// and show again what the controls are bound to when told to.

#include "platform/View.hpp"
#include "platform/linux/window/helper/Gtk.hpp"
#include "platform/linux/window/helper/Mnemonics.hpp"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace platform::linux {

class Content {
public:
    /// Makes the widgets; `view` must outlive them.
    explicit Content(const View& view);
    Content(const Content&) = delete;
    Content& operator=(const Content&) = delete;

    /// The outermost widget, with a floating reference until a container takes it.
    GtkWidget* root() const { return _root; }

    /// The button that the Return key presses; null if there is none.
    GtkWidget* defaultButton() const { return _defaultButton; }

    /// Hands over what was typed into text fields and not yet handed over.
    void commitEdits();

    /// Shows what the controls are bound to, except where the user is typing.
    void refresh();

    /// Shows the texts of `fresh`, and takes input where it does, with the widgets that are there. Returns false,
    /// and is of no use any more, if they cannot be those of `fresh`.
    bool follow(const View& fresh);

private:
    /// A view's widgets: the one that takes the view's place, and inside it the one that is the view itself.
    struct Widgets {
        GtkWidget* outer;
        GtkWidget* inner;
    };

    /// A text field on screen.
    struct Field {
        const node::TextField* node;
        GtkEntry* entry;
        std::string shown; ///< The text last put there by the program; any other was typed.

        std::string text() const { return gtk_entry_get_text(entry); }
        bool isEdited() const { return text() != shown; }
        void show();
    };

    bool follow(const View& before, const View& fresh, std::vector<GtkWidget*>::const_iterator& widget);
    bool follow(const node::Stack& before, const node::Stack& fresh,
                std::vector<GtkWidget*>::const_iterator& widget);

    Widgets build(const View& view, Font font);
    GtkWidget* build(const node::Image& image, const View& view);
    GtkWidget* build(const node::TextField& node);
    GtkWidget* build(const node::Toggle& node);
    GtkWidget* build(const node::Picker& node);
    GtkWidget* build(const node::Button& node);
    GtkWidget* build(const node::Stack& stack, Font font);

    GtkWidget* framed(GtkWidget* widget, const modifier::Frame& frame);
    GtkWidget* modified(GtkWidget* widget, GtkWidget* inner, const Modifier& modifier);

    /// Names the widget by the label beside it, for assistive technology and for the keyboard.
    void name(GtkWidget* widget, GtkWidget* label);

    struct Unreference {
        void operator()(gpointer object) const { g_object_unref(object); }
    };

    const View& _view;
    GtkWidget* _root = nullptr;
    std::vector<GtkWidget*> _widgets; ///< What each view is itself, in the order of the tree, children first.
    GtkWidget* _defaultButton = nullptr;
    std::vector<std::unique_ptr<Field>> _fields;
    std::vector<std::function<void()>> _refreshers;
    std::map<double, std::unique_ptr<GtkSizeGroup, Unreference>>
        _columns; ///< Frames of one width stay equally wide.
    Mnemonics _mnemonics;
};

} // namespace platform::linux
