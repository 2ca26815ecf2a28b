#include "platform/View.hpp"

#include "platform/Fatal.hpp"
#include "platform/Overloaded.hpp"

#include <charconv>
#include <string_view>

namespace platform {
namespace {

/// Cuts "[label](address)" out of `markdown`; everything else is plain text.
std::vector<node::TextRun> runsOf(const std::string& markdown) {
    std::vector<node::TextRun> runs;
    const auto addPlain = [&](std::string string) {
        if (!string.empty()) {
            runs.push_back({std::move(string), std::nullopt});
        }
    };
    std::size_t position = 0;
    for (;;) {
        const std::size_t label = markdown.find('[', position);
        const std::size_t middle = markdown.find("](", label);
        const std::size_t end = markdown.find(')', middle);
        if (end == std::string::npos) {
            addPlain(markdown.substr(position));
            return runs;
        }
        addPlain(markdown.substr(position, label - position));
        runs.push_back(
            {markdown.substr(label + 1, middle - label - 1), markdown.substr(middle + 2, end - middle - 2)});
        position = end + 1;
    }
}

/// Replaces each "%@" in the texts of `runs` by the next of `arguments`.
void interpolate(std::vector<node::TextRun>& runs, const std::vector<std::string>& arguments) {
    constexpr std::string_view placeholder = "%@";
    auto argument = arguments.begin();
    for (node::TextRun& run : runs) {
        std::size_t position = 0;
        while (argument != arguments.end() &&
               (position = run.string.find(placeholder, position)) != std::string::npos) {
            run.string.replace(position, placeholder.size(), *argument);
            position += argument->size();
            ++argument;
        }
    }
}

template <typename Kind>
Kind& the(Node& node) {
    Kind* const kind = std::get_if<Kind>(&node);
    if (!kind) {
        fatal();
    }
    return *kind;
}

} // namespace

std::string NumberFormatter::string(std::int64_t number) const { return std::to_string(number); }

std::optional<std::int64_t> NumberFormatter::number(const std::string& text) const {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) {
        return std::nullopt;
    }
    const char* const begin = text.data() + first;
    const char* const end = text.data() + text.find_last_not_of(' ') + 1;
    std::int64_t number = 0;
    const auto [parsedTo, error] = std::from_chars(begin, end, number);
    return error == std::errc{} && parsedTo == end ? std::optional{number} : std::nullopt;
}

void node::TextField::commit(const std::string& text) const {
    if (const std::optional<std::int64_t> number = formatter.number(text)) {
        value.set(*number);
    }
}

void node::TextField::submit(const std::string& text) const {
    commit(text);
    if (onSubmit) {
        onSubmit();
    }
}

void node::Picker::select(std::size_t index) const {
    const std::size_t previous = selection.get();
    selection.set(index);
    if (index != previous && onChange) {
        onChange();
    }
}

View View::onSubmit(std::function<void()> action) && {
    the<node::TextField>(node).onSubmit = std::move(action);
    return std::move(*this);
}

View View::onChange(std::function<void()> action) && {
    the<node::Picker>(node).onChange = std::move(action);
    return std::move(*this);
}

void View::appear() const {
    for (const Modifier& each : modifiers) {
        if (const auto* onAppear = std::get_if<modifier::OnAppear>(&each)) {
            onAppear->action();
        }
    }
    for (const View& child : childrenOf(node)) {
        child.appear();
    }
}

std::span<const View> childrenOf(const Node& node) {
    using Children = std::span<const View>;
    return std::visit(Overloaded{[](const node::Stack& stack) { return Children{stack.children}; },
                                 [](const OneOf<node::Text, node::Image, node::TextField, node::Toggle,
                                                node::Picker, node::Button> auto&) { return Children{}; }},
                      node);
}

View Text(const std::string& key, const std::vector<std::string>& arguments) {
    node::Text text{runsOf(key)};
    interpolate(text.runs, arguments);
    return View{std::move(text), {}};
}

View VerbatimText(std::string string) { return View{node::Text{{{std::move(string), std::nullopt}}}, {}}; }

View Image(NSImage image) { return View{node::Image{std::move(image)}, {}}; }

View TextField(std::string placeholder, Binding<std::int64_t> value, NumberFormatter formatter) {
    return View{node::TextField{std::move(placeholder), std::move(value), formatter, nullptr}, {}};
}

View Toggle(std::string title, Binding<bool> isOn) {
    return View{node::Toggle{std::move(title), std::move(isOn)}, {}};
}

View Button(std::string label, double labelPadding, std::function<void()> action) {
    return View{node::Button{std::move(label), labelPadding, std::move(action)}, {}};
}

View HStack(std::vector<View> children) {
    return View{node::Stack{Axis::Horizontal, Alignment::Center, std::move(children)}, {}};
}

View VStack(std::vector<View> children) { return VStack(Alignment::Center, std::move(children)); }

View VStack(Alignment alignment, std::vector<View> children) {
    return View{node::Stack{Axis::Vertical, alignment, std::move(children)}, {}};
}

} // namespace platform
