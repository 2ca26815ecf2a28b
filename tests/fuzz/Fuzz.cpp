#include "tests/fuzz/Fuzz.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace fuzz {

void require(bool holds, const char* property) {
    if (!holds) {
        std::fprintf(stderr, "broken: %s\n", property);
        std::abort();
    }
}

Parts cut(std::string_view text, std::string_view separator) {
    const std::size_t position = text.find(separator);
    if (position == std::string_view::npos) {
        return {text, text.substr(text.size())}; // GLib wants no null pointer, whatever the length
    }
    return {text.substr(0, position), text.substr(position + separator.size())};
}

} // namespace fuzz

/// What libFuzzer calls with each input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::check({reinterpret_cast<const char*>(data), size});
    return 0;
}
