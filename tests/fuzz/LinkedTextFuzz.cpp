// Texts with links: no character of them is lost or made up.

#include "platform/View.hpp"
#include "tests/fuzz/Fuzz.hpp"

#include <string>

namespace {

std::string markdownOf(const platform::node::TextRun& run) {
    return run.link ? "[" + run.string + "](" + *run.link + ")" : run.string;
}

} // namespace

void fuzz::check(std::string_view input) {
    const platform::View text = platform::Text(std::string{input});
    std::string markdown;
    for (const platform::node::TextRun& run : std::get<platform::node::Text>(text.node).runs) {
        require(run.link || !run.string.empty(), "no piece is empty");
        markdown += markdownOf(run);
    }
    require(markdown == input, "the pieces together are the text");
}
