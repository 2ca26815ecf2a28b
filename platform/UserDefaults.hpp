#pragma once

// The user's settings: typed values under text keys, kept by the desktop across runs. Readers name the type that
// they want and get the stored value converted to it, whatever it was stored as.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace platform {

/// A value as it is stored.
using DefaultsValue = std::variant<bool, std::int64_t, double, std::string>;

/// The defaults of the running program.
class UserDefaults {
public:
    /// The defaults that the desktop keeps for this program.
    static UserDefaults& standard();

    /// The truth of the value under `key`: of a number whether it differs from zero, of a text whether it begins
    /// with Y, y, T, t or a number other than zero; false when absent.
    bool boolForKey(std::string_view key) const;

    /// The value under `key` as an integer: a fraction is cut off, a boolean is 0 or 1, a text counts up to its
    /// first character that is no digit; values out of range are clamped. 0 when absent.
    std::int64_t integerForKey(std::string_view key) const;

    /// The value under `key` as text: a number in decimal, a boolean as "0" or "1"; nothing when absent.
    std::optional<std::string> stringForKey(std::string_view key) const;

    /// Stores `value` under `key` for this and later runs. Cannot fail from the caller's point of view.
    void set(DefaultsValue value, std::string_view key);
};

/// The conversions promised by `UserDefaults`, for desktops whose system does not bring them.
bool boolFromDefaults(const DefaultsValue& value);
std::int64_t integerFromDefaults(const DefaultsValue& value);
std::string stringFromDefaults(const DefaultsValue& value);

/// Settings given as "-Key value" pairs on the command line: texts that are read ahead of stored values and are
/// never stored. A word that begins with a dash and a letter starts a pair; without a value it counts as nothing.
std::map<std::string, std::string, std::less<>> argumentDomain(const std::vector<std::string>& arguments);

} // namespace platform
