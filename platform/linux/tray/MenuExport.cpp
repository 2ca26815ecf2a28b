#include "platform/linux/tray/MenuExport.hpp"

#include <algorithm>
#include <utility>

namespace platform::linux {
namespace {

constexpr const char* description = R"xml(<node><interface name="com.canonical.dbusmenu">
  <property name="Version" type="u" access="read"/>
  <property name="TextDirection" type="s" access="read"/>
  <property name="Status" type="s" access="read"/>
  <property name="IconThemePath" type="as" access="read"/>
  <method name="GetLayout">
    <arg type="i" direction="in"/><arg type="i" direction="in"/><arg type="as" direction="in"/>
    <arg type="u" direction="out"/><arg type="(ia{sv}av)" direction="out"/>
  </method>
  <method name="GetGroupProperties">
    <arg type="ai" direction="in"/><arg type="as" direction="in"/><arg type="a(ia{sv})" direction="out"/>
  </method>
  <method name="GetProperty">
    <arg type="i" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/>
  </method>
  <method name="Event">
    <arg type="i" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="in"/>
    <arg type="u" direction="in"/>
  </method>
  <method name="EventGroup">
    <arg type="a(isvu)" direction="in"/><arg type="ai" direction="out"/>
  </method>
  <method name="AboutToShow">
    <arg type="i" direction="in"/><arg type="b" direction="out"/>
  </method>
  <method name="AboutToShowGroup">
    <arg type="ai" direction="in"/><arg type="ai" direction="out"/><arg type="ai" direction="out"/>
  </method>
  <signal name="ItemsPropertiesUpdated"><arg type="a(ia{sv})"/><arg type="a(ias)"/></signal>
  <signal name="LayoutUpdated"><arg type="u"/><arg type="i"/></signal>
</interface></node>)xml";

constexpr std::int32_t root = 0;

VariantHandle property(std::string_view name) {
    constexpr unsigned protocolVersion = 3;
    if (name == "Version") {
        return owned(g_variant_new_uint32(protocolVersion));
    }
    if (name == "TextDirection") {
        return owned(g_variant_new_string("ltr"));
    }
    if (name == "Status") {
        return owned(g_variant_new_string("normal"));
    }
    return owned(g_variant_new_strv(nullptr, 0)); // no icons of the menu's own
}

VariantHandle childAt(GVariant* container, std::size_t index) {
    return VariantHandle{g_variant_get_child_value(container, index)};
}

std::int32_t integerAt(GVariant* tuple, std::size_t index) {
    return g_variant_get_int32(childAt(tuple, index).get());
}

std::vector<std::int32_t> integersAt(GVariant* tuple, std::size_t index) {
    const VariantHandle array = childAt(tuple, index);
    std::size_t count = 0;
    const auto* first =
        static_cast<const std::int32_t*>(g_variant_get_fixed_array(array.get(), &count, sizeof(std::int32_t)));
    return {first, first + count};
}

std::vector<std::string> textsAt(GVariant* tuple, std::size_t index) {
    const VariantHandle array = childAt(tuple, index);
    std::vector<std::string> texts;
    for (std::size_t each = 0; each < g_variant_n_children(array.get()); ++each) {
        texts.emplace_back(g_variant_get_string(childAt(array.get(), each).get(), nullptr));
    }
    return texts;
}

/// An underscore would mark the next letter as the entry's mnemonic.
std::string label(const std::string& title) {
    std::string escaped;
    for (const char each : title) {
        escaped.append(each == '_' ? 2 : 1, each);
    }
    return escaped;
}

} // namespace

MenuExport::MenuExport(GDBusConnection* bus, std::string path, std::function<void(std::function<void()>)> post)
    : _post{std::move(post)}
    , _interface{bus, std::move(path), description,
                 [this](std::string_view method, GVariant* arguments) { return answer(method, arguments); },
                 property} {}

void MenuExport::show(const std::shared_ptr<NSMenu>& menu) {
    _menu = menu;
    if (isShown()) {
        return;
    }
    const std::vector<Entry> before = std::exchange(_entries, {});
    for (const auto& item : itemsOf(_menu)) {
        _entries.push_back(entryOf(*item));
    }
    if (_entries.size() != before.size()) {
        _interface.emit("LayoutUpdated", g_variant_new("(ui)", ++_revision, root));
        return;
    }
    GVariantBuilder updated;
    g_variant_builder_init(&updated, G_VARIANT_TYPE("a(ia{sv})"));
    for (std::size_t index = 0; index < _entries.size(); ++index) {
        if (_entries[index] != before[index]) {
            g_variant_builder_add(&updated, "(i@a{sv})", static_cast<std::int32_t>(index + 1),
                                  properties(_entries[index], {}));
        }
    }
    _interface.emit("ItemsPropertiesUpdated", g_variant_new("(a(ia{sv})a(ias))", &updated, nullptr));
}

MenuExport::Entry MenuExport::entryOf(const NSMenuItem& item) const {
    return {&item, _menu->validates(item), item.hasState(), item.state() == NSMenuItem::StateValue::On};
}

/// Whether the panel was told everything already.
bool MenuExport::isShown() const {
    return std::ranges::equal(itemsOf(_menu), _entries, {}, [this](const auto& item) { return entryOf(*item); });
}

/// The properties named in `wanted`, or all of them if that is empty.
GVariant* MenuExport::properties(const Entry& entry, const std::vector<std::string>& wanted) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_VARDICT);
    const auto add = [&](const char* name, GVariant* value) {
        const VariantHandle kept = owned(value);
        if (wanted.empty() || std::find(wanted.begin(), wanted.end(), name) != wanted.end()) {
            g_variant_builder_add(&builder, "{sv}", name, kept.get());
        }
    };
    if (entry.item->isSeparatorItem()) {
        add("type", g_variant_new_string("separator"));
        return g_variant_builder_end(&builder);
    }
    add("label", g_variant_new_string(label(entry.item->title).c_str()));
    add("enabled", g_variant_new_boolean(entry.isEnabled));
    if (entry.isToggle) {
        add("toggle-type", g_variant_new_string("checkmark"));
        add("toggle-state", g_variant_new_int32(entry.isOn));
    }
    if (const std::string& key = entry.item->keyEquivalent; !key.empty()) {
        const char* const combination[] = {"Control", key.c_str()};
        GVariant* const keys = g_variant_new_strv(combination, 2);
        add("shortcut", g_variant_new_array(G_VARIANT_TYPE_STRING_ARRAY, &keys, 1));
    }
    return g_variant_builder_end(&builder);
}

VariantHandle MenuExport::answer(std::string_view method, GVariant* arguments) {
    if (method == "GetLayout") {
        return layout(integerAt(arguments, 0), textsAt(arguments, 2));
    }
    if (method == "GetGroupProperties") {
        return groupProperties(integersAt(arguments, 0), textsAt(arguments, 1));
    }
    if (method == "GetProperty") {
        return oneProperty(integerAt(arguments, 0), g_variant_get_string(childAt(arguments, 1).get(), nullptr));
    }
    if (method == "Event") {
        const bool isKnown =
            handle(integerAt(arguments, 0), g_variant_get_string(childAt(arguments, 1).get(), nullptr));
        return isKnown ? owned(g_variant_new("()")) : nullptr;
    }
    if (method == "EventGroup") {
        GVariantBuilder unknown;
        g_variant_builder_init(&unknown, G_VARIANT_TYPE("ai"));
        const VariantHandle events = childAt(arguments, 0);
        for (std::size_t index = 0; index < g_variant_n_children(events.get()); ++index) {
            const VariantHandle event = childAt(events.get(), index);
            const std::int32_t identifier = integerAt(event.get(), 0);
            if (!handle(identifier, g_variant_get_string(childAt(event.get(), 1).get(), nullptr))) {
                g_variant_builder_add(&unknown, "i", identifier);
            }
        }
        return owned(g_variant_new("(ai)", &unknown));
    }
    if (method == "AboutToShow") {
        return owned(g_variant_new("(b)", FALSE)); // every change was announced when it happened
    }
    return owned(g_variant_new("(aiai)", nullptr, nullptr));
}

VariantHandle MenuExport::layout(std::int32_t parent, const std::vector<std::string>& wanted) const {
    if (parent != root) {
        const Entry* const leaf = entry(parent);
        return leaf ? owned(g_variant_new("(u(i@a{sv}av))", _revision, parent, properties(*leaf, wanted), nullptr))
                    : nullptr;
    }
    GVariantBuilder children;
    g_variant_builder_init(&children, G_VARIANT_TYPE("av"));
    for (std::size_t index = 0; index < _entries.size(); ++index) {
        g_variant_builder_add(&children, "v",
                              g_variant_new("(i@a{sv}av)", static_cast<std::int32_t>(index + 1),
                                            properties(_entries[index], wanted), nullptr));
    }
    GVariantBuilder own;
    g_variant_builder_init(&own, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&own, "{sv}", "children-display", g_variant_new_string("submenu"));
    return owned(g_variant_new("(u(ia{sv}av))", _revision, root, &own, &children));
}

VariantHandle MenuExport::groupProperties(const std::vector<std::int32_t>& identifiers,
                                          const std::vector<std::string>& wanted) const {
    GVariantBuilder group;
    g_variant_builder_init(&group, G_VARIANT_TYPE("a(ia{sv})"));
    for (std::size_t index = 0; index < _entries.size(); ++index) {
        const auto identifier = static_cast<std::int32_t>(index + 1);
        if (identifiers.empty() ||
            std::find(identifiers.begin(), identifiers.end(), identifier) != identifiers.end()) {
            g_variant_builder_add(&group, "(i@a{sv})", identifier, properties(_entries[index], wanted));
        }
    }
    return owned(g_variant_new("(a(ia{sv}))", &group));
}

VariantHandle MenuExport::oneProperty(std::int32_t identifier, const char* name) const {
    const Entry* const found = entry(identifier);
    if (!found) {
        return nullptr;
    }
    const VariantHandle all = owned(properties(*found, {}));
    const VariantHandle value{g_variant_lookup_value(all.get(), name, nullptr)};
    return value ? owned(g_variant_new("(v)", value.get())) : nullptr;
}

const MenuExport::Entry* MenuExport::entry(std::int32_t identifier) const {
    const bool isKnown = identifier > root && static_cast<std::size_t>(identifier) <= _entries.size();
    return isKnown ? &_entries[static_cast<std::size_t>(identifier) - 1] : nullptr;
}

/// Returns whether there is such an entry.
bool MenuExport::handle(std::int32_t identifier, std::string_view event) {
    if (identifier == root) {
        return true; // the menu itself was opened or closed
    }
    if (!entry(identifier)) {
        return false;
    }
    if (event == "clicked") {
        const std::shared_ptr<NSMenuItem> item = _menu->items()[static_cast<std::size_t>(identifier) - 1];
        _post([menu = _menu, item] { menu->performActionForItem(*item); });
    }
    return true;
}

} // namespace platform::linux
