#include "platform/linux/window/helper/Windows.hpp"

#include "platform/Overloaded.hpp"
#include "platform/linux/window/helper/AlertPicture.hpp"
#include "platform/linux/window/helper/Content.hpp"
#include "platform/linux/window/helper/Mnemonics.hpp"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

namespace platform::linux {
namespace {

constexpr const char* alertTitle = "Marvelode Timer";
constexpr int widestLineInCharacters = 50;
constexpr std::size_t longestWithoutBreaks = 40; ///< In bytes, which are no fewer than the characters.

GtkWidget* textLabel(const std::string& text) {
    GtkWidget* label = gtk_label_new(text.c_str());
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    if (text.size() > longestWithoutBreaks) { // to find where a line may break delays the window
        gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
        gtk_label_set_max_width_chars(GTK_LABEL(label), widestLineInCharacters);
    }
    return label;
}

GtkWidget* messageLabel(const std::string& text) {
    GtkWidget* label = textLabel(text);
    PangoAttrList* attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_scale_new(1.2));
    pango_attr_list_insert(attributes, pango_attr_weight_new(PANGO_WEIGHT_BOLD));
    gtk_label_set_attributes(GTK_LABEL(label), attributes);
    pango_attr_list_unref(attributes);
    return label;
}

} // namespace

/// One window on screen.
class Windows::Window {
public:
    explicit Window(std::uint32_t number)
        : number{number} {}
    virtual ~Window() = default;
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    virtual GtkWindow* window() const = 0;

    /// Shows these values in the controls.
    virtual void show(std::vector<ControlValue> values) = 0;

    /// Shows another content.
    virtual void show(PanelRequest request) = 0;

    const std::uint32_t number;
};

class Windows::Alert : public Window {
public:
    Alert(const AlertRequest& request, GtkWindow* below, const Tell& tell)
        : Window{request.window}
        , _topLevel{alertTitle, below, [tell, number = number] { tell({Event::Kind::Shown, number, 0, {}}); },
                    [tell, number = number] { tell({Event::Kind::Closed, number, 0, {}}); }} {
        const NSAlert& alert = request.alert;
        GtkWidget* texts = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
        gtk_container_add(GTK_CONTAINER(texts), messageLabel(alert.messageText));
        gtk_container_add(GTK_CONTAINER(texts), textLabel(alert.informativeText));
        GtkWidget* buttons = makeButtons(alert, tell);
        if (const auto* checkBox = alert.suppressionButton()) {
            gtk_container_add(GTK_CONTAINER(texts), makeCheckBox(*checkBox, alert.buttons().size(), tell));
        }

        GtkWidget* message = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 20);
        gtk_container_add(GTK_CONTAINER(message), alertPicture(request));
        gtk_container_add(GTK_CONTAINER(message), texts);
        GtkWidget* content = gtk_box_new(GTK_ORIENTATION_VERTICAL, 24);
        gtk_container_add(GTK_CONTAINER(content), message);
        gtk_container_add(GTK_CONTAINER(content), buttons);

        gtk_style_context_add_class(gtk_widget_get_style_context(content), "alert");
        AtkObject* accessible = gtk_widget_get_accessible(GTK_WIDGET(_topLevel.window()));
        atk_object_set_role(accessible, ATK_ROLE_ALERT);
        atk_object_set_description(accessible, alert.informativeText.c_str());
        _topLevel.appearEverywhere();
        if (!below) { // it comes unasked
            _topLevel.ignoreEarlyKeys();
            _topLevel.returnWhenLost();
        }
        _topLevel.moveByBackground();
        _topLevel.present(content, _defaultButton);
    }

    GtkWindow* window() const override { return _topLevel.window(); }
    void show(std::vector<ControlValue>) override {} // an alert's check box follows the user alone
    void show(PanelRequest) override {}

private:
    GtkWidget* makeCheckBox(const NSSuppressionButton& suppression, std::size_t control, const Tell& tell) {
        GtkWidget* checkBox = gtk_check_button_new_with_mnemonic(_mnemonics.mark(suppression.title).c_str());
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(checkBox),
                                     suppression.state == NSSuppressionButton::StateValue::On);
        gtk_widget_set_margin_top(checkBox, 12);
        gtk_widget_set_halign(checkBox, GTK_ALIGN_START);
        connect(checkBox, "toggled", [tell, checkBox, number = number, control] {
            const bool isTicked = gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(checkBox)) != FALSE;
            tell({Event::Kind::Changed, number, static_cast<std::uint32_t>(control), isTicked});
        });
        return checkBox;
    }

    /// The first button, which is the default one, stands at the end of the row, as on most desktops.
    GtkWidget* makeButtons(const NSAlert& alert, const Tell& tell) {
        GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 8);
        gtk_box_set_homogeneous(GTK_BOX(row), TRUE);
        gtk_widget_set_halign(row, GTK_ALIGN_END);
        std::uint32_t control = 0;
        for (const std::string& title : alert.buttons()) {
            GtkWidget* button = gtk_button_new_with_mnemonic(_mnemonics.mark(title).c_str());
            connect(button, "clicked",
                    [tell, number = number, control] { tell({Event::Kind::Pressed, number, control, {}}); });
            gtk_box_pack_end(GTK_BOX(row), button, TRUE, TRUE, 0);
            if (control++ == 0) {
                gtk_widget_set_can_default(button, TRUE);
                gtk_style_context_add_class(gtk_widget_get_style_context(button), GTK_STYLE_CLASS_SUGGESTED_ACTION);
                _defaultButton = button;
            }
        }
        return row;
    }

    TopLevel _topLevel;
    Mnemonics _mnemonics;
    GtkWidget* _defaultButton = nullptr;
};

class Windows::Panel : public Window {
public:
    Panel(PanelRequest request, GtkWindow* below, const Tell& tell)
        : Window{request.window}
        , _filling{std::make_unique<Filling>(std::move(request))}
        , _topLevel{_filling->request.title, below,
                    [tell, number = number] { tell({Event::Kind::Shown, number, 0, {}}); },
                    [this, tell] {
                        _filling->content.commitEdits(); // the form is closed unsaved, but keeps what it holds
                        tell({Event::Kind::Closed, number, 0, {}});
                    }} {
        if (_filling->request.isModal) {
            _topLevel.appearEverywhere();
            _topLevel.shareTheKeyboard();
        }
        if (_filling->request.isMovableByBackground) {
            _topLevel.moveByBackground();
        }
        if (_filling->request.comesUnasked) {
            _topLevel.leaveTheKeyboard();
            _topLevel.ignoreEarlyKeys();
        }
        _topLevel.present(_filling->content.root(), _filling->content.defaultButton());
    }

    GtkWindow* window() const override { return _topLevel.window(); }

    void show(std::vector<ControlValue> values) override {
        *_filling->request.values = std::move(values);
        _filling->content.refresh();
    }

    void show(PanelRequest request) override {
        if (_filling->content.follow(request.content)) {
            show(*request.values);
            return;
        }
        auto filling = std::make_unique<Filling>(std::move(request));
        _topLevel.replace(filling->content.root());
        _filling = std::move(filling); // the old one is destroyed after the widgets that call its operations
    }

private:
    struct Filling {
        explicit Filling(PanelRequest shown)
            : request{std::move(shown)}
            , content{request.content} {
            gtk_style_context_add_class(gtk_widget_get_style_context(content.root()), "panel");
        }
        PanelRequest request;
        Content content;
    };

    std::unique_ptr<Filling> _filling;
    TopLevel _topLevel; // destroyed first: its widgets call the content's operations
};

Windows::Windows(Tell tell)
    : _tell{std::move(tell)} {}

Windows::~Windows() {
    while (!_windows.empty()) {
        _windows.pop_back();
    }
}

GtkWindow* Windows::topmost() const { return _windows.empty() ? nullptr : _windows.back()->window(); }

void Windows::handle(Request request) {
    const auto named = [this](std::uint32_t number) {
        const auto found = std::find_if(_windows.begin(), _windows.end(),
                                        [&](const auto& window) { return window->number == number; });
        return found == _windows.end() ? nullptr : found->get();
    };
    std::visit(
        Overloaded{
            [&](AlertRequest& alert) { _windows.push_back(std::make_unique<Alert>(alert, topmost(), _tell)); },
            [&](PanelRequest& panel) {
                if (Window* shown = named(panel.window)) {
                    shown->show(std::move(panel));
                } else {
                    _windows.push_back(std::make_unique<Panel>(std::move(panel), topmost(), _tell));
                }
            },
            [&](ValuesRequest& fresh) {
                if (Window* shown = named(fresh.window)) {
                    shown->show(std::move(fresh.values));
                }
            },
            [&](CloseRequest& closed) {
                std::erase_if(_windows, [&](const auto& window) { return window->number == closed.window; });
            },
        },
        request);
}

} // namespace platform::linux
