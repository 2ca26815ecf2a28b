#include "platform/linux/tray/StatusNotifierItem.hpp"

#include <bit>
#include <cstdint>
#include <utility>

namespace platform::linux {
namespace {

constexpr const char* description = R"xml(<node><interface name="org.kde.StatusNotifierItem">
  <property name="Category" type="s" access="read"/>
  <property name="Id" type="s" access="read"/>
  <property name="Title" type="s" access="read"/>
  <property name="Status" type="s" access="read"/>
  <property name="WindowId" type="i" access="read"/>
  <property name="IconName" type="s" access="read"/>
  <property name="IconPixmap" type="a(iiay)" access="read"/>
  <property name="IconAccessibleDesc" type="s" access="read"/>
  <property name="ToolTip" type="(sa(iiay)ss)" access="read"/>
  <property name="ItemIsMenu" type="b" access="read"/>
  <property name="Menu" type="o" access="read"/>
  <property name="XAyatanaLabel" type="s" access="read"/>
  <property name="XAyatanaLabelGuide" type="s" access="read"/>
  <method name="Activate"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
  <method name="ContextMenu"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
  <method name="ProvideXdgActivationToken"><arg type="s" direction="in"/></method>
  <signal name="NewIcon"/>
  <signal name="NewToolTip"/>
  <signal name="XAyatanaNewLabel"><arg type="s"/><arg type="s"/></signal>
</interface></node>)xml";

constexpr const char* title = "Marvelode Timer";
constexpr const char* widestLabel = "+59m";

/// The pixels as the protocol wants them: in network byte order.
GVariant* bytesOf(const Picture& picture) {
    std::vector<std::uint32_t> pixels = picture.pixels;
    if constexpr (std::endian::native == std::endian::little) {
        for (std::uint32_t& pixel : pixels) {
            pixel = GUINT32_SWAP_LE_BE(pixel);
        }
    }
    return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, pixels.data(), pixels.size() * sizeof(std::uint32_t), 1);
}

} // namespace

StatusNotifierItem::StatusNotifierItem(GDBusConnection* bus, const Resources& resources, StatusContent content,
                                       std::function<void(bool)> trayChanged, std::function<void()> activated,
                                       ActivationToken& activationToken, ErrorLog& errorLog)
    : _resources{resources}
    , _content{std::move(content)}
    , _interface{
          bus, "/StatusNotifierItem", description,
          [this, activated = std::move(activated), &activationToken](std::string_view method, GVariant* arguments) {
              if (method == "ProvideXdgActivationToken") {
                  const char* token = nullptr;
                  g_variant_get(arguments, "(&s)", &token);
                  return activationToken.keep(token) ? owned(g_variant_new("()")) : VariantHandle{};
              }
              if (method == "Activate" && _host->opensMenuIfRefused) {
                  return VariantHandle{};
              }
              activated();
              return owned(g_variant_new("()"));
          },
          [this](std::string_view name) { return property(name); }}
    , _tray{bus, [this](std::string_view processName) { drawFor(processName); }, std::move(trayChanged), errorLog} {
}

void StatusNotifierItem::show(const StatusContent& content) {
    const bool isPictureOld = _host->needsNewPicture(_content, content);
    const bool isTextOld = _content.text != content.text;
    const bool areWordsOld = _content.words != content.words;
    const std::optional<double> shareLeft = isPictureOld ? content.shareLeft : _content.shareLeft;
    _content = content;
    _content.shareLeft = shareLeft; // what the panel shows, and is compared with next time
    std::vector<ExportedInterface::Signal> changes;
    if (isPictureOld) {
        _pictures.reset();
        changes.push_back({"NewIcon", nullptr});
    }
    if (areWordsOld && !(isPictureOld && _host->readsAllAtOnce)) {
        changes.push_back({"NewToolTip", nullptr});
    }
    if (isTextOld && _host->hasLabel()) {
        changes.push_back(newLabel());
    }
    if (!changes.empty()) {
        announce(changes);
    }
}

/// A panel asks several questions after each change, mostly one after the other.
void StatusNotifierItem::announce(const std::vector<ExportedInterface::Signal>& changes) {
    if (_tray.isPresent()) {
        if (!_pictures) {
            _pictures = drawPictures();
        }
        _interface.delegate(changes);
        return;
    }
    _pictures.reset();
    _interface.answerInPerson();
    for (const auto& [name, arguments] : changes) {
        _interface.emit(name, arguments.get());
    }
}

std::string StatusNotifierItem::panelInWords() const {
    if (!_tray.isPresent()) {
        return "none, so a small window stands in";
    }
    return (_process.empty() ? "unknown" : _process) + ", which gets " + std::string{_host->inWords()};
}

void StatusNotifierItem::drawFor(std::string_view processName) {
    _process = processName;
    _pictures.reset();
    _interface.answerInPerson();
    const TrayHost& host = TrayHost::ofProcess(processName);
    if (_host != &host) {
        _host = &host;
        _interface.emit("NewIcon");
        const ExportedInterface::Signal label = newLabel();
        _interface.emit(label.name, label.arguments.get());
    }
}

ExportedInterface::Signal StatusNotifierItem::newLabel() const {
    const bool isOffered = _host->hasLabel();
    return {"XAyatanaNewLabel",
            owned(g_variant_new("(ss)", isOffered ? _content.text.c_str() : "", isOffered ? widestLabel : ""))};
}

VariantHandle StatusNotifierItem::property(std::string_view name) const {
    const auto text = [](const char* value) { return owned(g_variant_new_string(value)); };
    if (name == "Category") {
        return text("ApplicationStatus");
    }
    if (name == "Id") {
        return text("marvelode-timer");
    }
    if (name == "Title") {
        return text(title);
    }
    if (name == "Status") {
        return text("Active");
    }
    if (name == "WindowId") {
        return owned(g_variant_new_int32(0));
    }
    if (name == "IconName") {
        return text(_host->pictureFile(_content, _resources).c_str()); // never looked up in a theme
    }
    if (name == "IconPixmap") {
        return _pictures ? owned(_pictures.get()) : drawPictures();
    }
    if (name == "IconAccessibleDesc") {
        return text(_content.words.c_str());
    }
    if (name == "ToolTip") {
        // The words first: some panels show the first of the two lines only.
        return owned(g_variant_new("(sa(iiay)ss)", "", nullptr, _content.words.c_str(), title));
    }
    if (name == "ItemIsMenu") {
        return owned(g_variant_new_boolean(TRUE));
    }
    if (name == "Menu") {
        return owned(g_variant_new_object_path(menuPath));
    }
    if (!_host->hasLabel()) {
        return nullptr;
    }
    return text(name == "XAyatanaLabel" ? _content.text.c_str() : widestLabel);
}

VariantHandle StatusNotifierItem::drawPictures() const {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a(iiay)"));
    _host->draw(_content, _resources, [&](const Picture& picture) {
        g_variant_builder_add(&builder, "(ii@ay)", picture.width, picture.height, bytesOf(picture));
    });
    return owned(g_variant_builder_end(&builder));
}

} // namespace platform::linux
