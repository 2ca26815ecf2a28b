#include "platform/linux/window/helper/Likeness.hpp"

#include <algorithm>
#include <variant>

namespace platform::linux {
namespace {

/// Compares a node with another of its kind.
class AsOther {
public:
    explicit AsOther(const Node& other)
        : _other{other} {}

    bool operator()(const node::Text&) const { return true; }
    bool operator()(const node::Image& one) const { return one.image == other<node::Image>().image; }
    bool operator()(const node::TextField& one) const {
        return one.placeholder == other<node::TextField>().placeholder;
    }
    bool operator()(const node::Toggle& one) const { return one.title == other<node::Toggle>().title; }
    bool operator()(const node::Picker& one) const {
        return one.title == other<node::Picker>().title && one.items == other<node::Picker>().items;
    }
    bool operator()(const node::Button& one) const { return one.label == other<node::Button>().label; }
    bool operator()(const node::Stack& one) const {
        return one.axis == other<node::Stack>().axis && one.children.size() == other<node::Stack>().children.size();
    }

private:
    template <typename Kind>
    const Kind& other() const {
        return std::get<Kind>(_other);
    }

    const Node& _other;
};

} // namespace

bool isAlike(const View& one, const View& other) {
    const auto isSameKind = [](const Modifier& left, const Modifier& right) {
        return left.index() == right.index();
    };
    return std::equal(one.modifiers.begin(), one.modifiers.end(), other.modifiers.begin(), other.modifiers.end(),
                      isSameKind) &&
           one.node.index() == other.node.index() && std::visit(AsOther{other.node}, one.node);
}

} // namespace platform::linux
