#include "platform/linux/SettingsFile.hpp"

#include "platform/linux/RegularFile.hpp"

#include <glib/gstdio.h>
#include <sys/stat.h>

#include <utility>

namespace platform::linux {
namespace {

constexpr const char* group = "Settings";
constexpr const char* desktopGroup = "Desktop";
constexpr std::int64_t secondsBetweenAttempts = 30;

/// The text that a value is written as.
TextHandle written(const DefaultsValue& value) {
    struct ToVariant {
        GVariant* operator()(bool truth) const { return g_variant_new_boolean(truth); }
        GVariant* operator()(std::int64_t number) const { return g_variant_new_int64(number); }
        GVariant* operator()(double number) const { return g_variant_new_double(number); }
        GVariant* operator()(const std::string& text) const { return g_variant_new_string(text.c_str()); }
    };
    return TextHandle{g_variant_print(owned(std::visit(ToVariant{}, value)).get(), FALSE)};
}

/// What a text in the file stands for: a value as it is written, or else, when a hand forgot the quotes, itself.
DefaultsValue parsed(const char* text) {
    if (const VariantHandle whole{g_variant_parse(G_VARIANT_TYPE_INT64, text, nullptr, nullptr, nullptr)}) {
        return g_variant_get_int64(whole.get());
    }
    const VariantHandle variant{g_variant_parse(nullptr, text, nullptr, nullptr, nullptr)};
    if (variant && g_variant_is_of_type(variant.get(), G_VARIANT_TYPE_BOOLEAN)) {
        return g_variant_get_boolean(variant.get()) != FALSE;
    }
    if (variant && g_variant_is_of_type(variant.get(), G_VARIANT_TYPE_DOUBLE)) {
        return g_variant_get_double(variant.get());
    }
    if (variant && g_variant_is_of_type(variant.get(), G_VARIANT_TYPE_STRING)) {
        return g_variant_get_string(variant.get(), nullptr);
    }
    return text;
}

} // namespace

SettingsFile::SettingsFile(std::filesystem::path path, ErrorLog& errorLog, Values assumed)
    : _path{std::move(path)}
    , _errorLog{errorLog}
    , _assumed{std::move(assumed)}
    , _file{g_key_file_new()} {}

SettingsFile::~SettingsFile() {
    if (hasUnwritten()) {
        read(); // for the last time, so it is worth another attempt
        write();
    }
}

void SettingsFile::clearUp() const { removeLeftovers(_path); }

std::optional<DefaultsValue> SettingsFile::value(std::string_view key) {
    readIfChanged();
    if (hasUnwritten() && isTimeForAnotherAttempt()) {
        write();
    }
    const Values& stored = _knowledge == Knowledge::Lacking ? _assumed : _stored;
    for (const Values* values : {&std::as_const(_unwritten), &std::as_const(_standIns), &stored}) {
        if (const auto found = values->find(key); found != values->end()) {
            return found->second;
        }
    }
    return std::nullopt;
}

void SettingsFile::set(DefaultsValue newValue, std::string_view key) {
    if (value(key) == newValue && _knowledge == Knowledge::Full) {
        return; // while the file cannot be read, it may hold another value than the one assumed
    }
    ++_state;
    _unwritten.insert_or_assign(std::string{key}, std::move(newValue));
    write();
}

std::optional<std::string> SettingsFile::desktopText(const char* key) const {
    const TextHandle text{g_key_file_get_value(_file.get(), desktopGroup, key, nullptr)};
    return text ? std::optional<std::string>{text.get()} : std::nullopt;
}

void SettingsFile::readIfChanged() {
    const Fingerprint now = fingerprint();
    const bool isTriedAgain = !_mayWrite && isTimeForAnotherAttempt();
    if (_seen != now || isTriedAgain) {
        ++_state;
        _seen = now;
        read();
    }
}

void SettingsFile::read() {
    const FileContent content = readRegularFile(_path);
    if (!content.problem.empty()) {
        cannotRead(content.problem);
        return;
    }
    KeyFileHandle file{g_key_file_new()};
    if (!content.bytes.empty()) {
        const auto flags = static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
        const auto length = static_cast<gssize>(content.bytes.size());
        ErrorSlot error;
        const bool isText = g_utf8_validate(content.bytes.data(), length, nullptr);
        if (!isText || !g_key_file_load_from_data(file.get(), content.bytes.data(), content.bytes.size(), flags,
                                                  error.out())) {
            keepAside(linkTarget(_path), isText ? error.message() : "no text");
            return;
        }
    }
    if (content.isMissing && _knowledge == Knowledge::Lacking) {
        assume();
    }
    if (!content.isMissing) {
        _standIns.clear();
    }
    _knowledge = Knowledge::Full;
    _mayWrite = true;
    _file = std::move(file);
    ++_readings;
    parseValues();
}

void SettingsFile::cannotRead(const std::string& reason) {
    if (_knowledge == Knowledge::None) {
        _knowledge = Knowledge::Lacking;
    }
    _mayWrite = false;
    _lastAttempt = g_get_monotonic_time();
    report("Cannot read the settings", reason);
}

/// Keeps the assumed values after a file that was there has gone unread; one that comes back takes their place.
void SettingsFile::assume() { _standIns = _assumed; }

bool SettingsFile::isTimeForAnotherAttempt() const {
    return g_get_monotonic_time() >= _lastAttempt + secondsBetweenAttempts * G_USEC_PER_SEC;
}

/// Goes on with the values known so far: the assumed ones at the start, the last good ones later.
void SettingsFile::keepAside(const std::filesystem::path& file, const std::string& reason) {
    std::filesystem::path aside;
    int number = 0;
    do {
        aside = file.string() + ".damaged" + (number == 0 ? "" : "-" + std::to_string(number));
        ++number;
    } while (g_file_test(aside.c_str(), G_FILE_TEST_EXISTS));
    if (g_rename(file.c_str(), aside.c_str()) != 0) {
        cannotRead(reason);
        return;
    }
    report("The settings are damaged", reason + "; kept as " + aside.string());
    if (_knowledge != Knowledge::Full) {
        assume();
    }
    _knowledge = Knowledge::Full;
    _mayWrite = true;
    _seen = fingerprint();
    if (hasUnwritten() || g_key_file_has_group(_file.get(), group)) {
        write();
    }
}

void SettingsFile::write() {
    if (!_mayWrite) {
        return; // the reason is reported already
    }
    _lastAttempt = g_get_monotonic_time();
    for (const Values* values : {&std::as_const(_standIns), &std::as_const(_unwritten)}) {
        for (const auto& [key, value] : *values) {
            g_key_file_set_value(_file.get(), group, key.c_str(), written(value).get());
        }
    }
    std::size_t length = 0;
    const TextHandle content{g_key_file_to_data(_file.get(), &length, nullptr)};
    if (const std::string problem = replaceRegularFile(_path, {content.get(), length}); !problem.empty()) {
        report("Cannot write the settings", problem);
        return;
    }
    _standIns.clear();
    _unwritten.clear();
    _reported.clear();
    _seen = fingerprint();
    parseValues();
}

void SettingsFile::parseValues() {
    _stored.clear();
    const TextsHandle keys{g_key_file_get_keys(_file.get(), group, nullptr, nullptr)};
    for (char** key = keys.get(); key && *key; ++key) {
        const TextHandle text{g_key_file_get_value(_file.get(), group, *key, nullptr)};
        _stored.insert_or_assign(*key, parsed(text.get()));
    }
}

SettingsFile::Fingerprint SettingsFile::fingerprint() const {
    struct stat status{};
    if (stat(_path.c_str(), &status) != 0) {
        return {};
    }
    return {status.st_dev, status.st_ino, status.st_size, // the change time tells of permissions
            status.st_ctim.tv_sec, status.st_ctim.tv_nsec};
}

/// Reports a problem, unless it is the one at hand: its reason may read differently at each attempt.
void SettingsFile::report(const std::string& problem, const std::string& reason) {
    if (_reported != problem) {
        _reported = problem;
        _errorLog.add(problem + ": " + reason);
    }
}

} // namespace platform::linux
